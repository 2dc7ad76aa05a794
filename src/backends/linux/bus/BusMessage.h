#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nocta {

/// A method call with strings as arguments.
struct BusQuestion {
    std::string service = "org.freedesktop.DBus";
    std::string path = "/org/freedesktop/DBus";
    std::string interface = "org.freedesktop.DBus.Peer";
    std::string method = "Ping";
    std::vector<std::string> arguments = {};
};

/// Encodes the question in the wire format of D-Bus. The flag NO_AUTO_START keeps the bus from
/// starting the service.
std::string busCall(std::uint32_t serial, const BusQuestion& question);

/// The parts of a received message that are needed to read an answer. Nothing in the message is
/// trusted.
class BusMessage {
public:
    /// Parses the message at the start of `bytes`. Returns nothing while part of the message is
    /// missing, and a damaged message if the bytes cannot be the start of a message.
    static std::optional<BusMessage> read(std::string_view bytes);

    bool isDamaged() const { return isDamaged_; }
    std::size_t size() const { return size_; }
    bool isError() const { return type_ == error; }
    std::uint32_t replySerial() const { return replySerial_; }

    /// The message's only value. Returns nothing if the message has several values, or if the value
    /// has another type.
    std::optional<std::string> string() const;
    std::optional<bool> booleanInVariant() const;

private:
    static constexpr unsigned char error = 3;

    explicit BusMessage(std::string_view bytes);
    std::uint32_t number(std::size_t position) const;
    void readFields(std::size_t end);

    std::string bytes_;
    std::size_t size_ = 0;
    std::size_t bodyStart_ = 0;
    bool isDamaged_ = false;
    unsigned char type_ = 0;
    std::uint32_t replySerial_ = 0;
    std::string signature_;
};

} // namespace nocta
