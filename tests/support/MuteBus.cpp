#include "support/MuteBus.h"

#include <array>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <set>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace nocta {

namespace {

void say(int client, std::string_view bytes) {
    send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

/// The reply to `Hello`, with the unique name ":1.1".
constexpr std::string_view welcome("l\2\1\1"
                                   "\11\0\0\0\1\0\0\0\17\0\0\0"
                                   "\5\1u\0\1\0\0\0"
                                   "\10\1g\0\1s\0\0"
                                   "\4\0\0\0:1.1\0",
                                   41);

/// An empty reply to the call after `Hello`.
constexpr std::string_view reply("l\2\1\1"
                                 "\0\0\0\0\2\0\0\0\10\0\0\0"
                                 "\5\1u\0\2\0\0\0",
                                 24);

} // namespace

MuteBus::MuteBus(After after, int answeredClients)
    : after_(after), answeredClients_(answeredClients) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder_.path() + "/bus").copy(address.sun_path, sizeof address.sun_path - 1);
    listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    listen(listener_, 100);
    [[maybe_unused]] const auto made = pipe2(end_, O_CLOEXEC);
    thread_ = std::thread([this] { serve(); });
}

MuteBus::~MuteBus() {
    close(end_[1]);
    thread_.join();
    close(end_[0]);
    close(listener_);
}

void MuteBus::serve() {
    std::map<int, std::string> received; // by client
    std::set<int> answered;
    for (bool isOver = false; !isOver;) {
        std::vector<pollfd> readable = {{end_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
        for (const auto& [client, text] : received) {
            readable.push_back({client, POLLIN, 0});
        }
        poll(readable.data(), readable.size(), -1);
        isOver = readable[0].revents != 0;
        if (readable[1].revents != 0) {
            const auto client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            received[client];
            if (answeredClients_ > 0) {
                --answeredClients_;
                answered.insert(client);
            }
        }
        for (std::size_t i = 2; i < readable.size(); ++i) {
            const auto client = readable[i].fd;
            std::array<char, 4096> block{};
            const auto length = readable[i].revents == 0
                                    ? -1
                                    : recv(client, block.data(), block.size(), MSG_DONTWAIT);
            if (readable[i].revents == 0) {
                continue;
            }
            if (length <= 0) {
                close(client);
                received.erase(client);
                answered.erase(client);
                continue;
            }
            auto& text = received[client];
            text.append(block.data(), static_cast<std::size_t>(length));
            const auto isAnswered = answered.contains(client);
            if (after_ == After::accepting && !isAnswered) {
                continue;
            }
            if (text.find("AUTH EXTERNAL 3") != std::string::npos) {
                say(client, "OK 0123456789abcdef0123456789abcdef\r\n");
                text.clear();
            } else if (text.find("NEGOTIATE_UNIX_FD\r\n") != std::string::npos) {
                say(client, "AGREE_UNIX_FD\r\n");
                text.clear();
            } else if ((after_ == After::hello || isAnswered) &&
                       text.find("Hello") != std::string::npos) {
                say(client, welcome);
                if (isAnswered) {
                    say(client, reply);
                }
                text.clear();
            }
        }
    }
    for (const auto& [client, text] : received) {
        close(client);
    }
}

} // namespace nocta
