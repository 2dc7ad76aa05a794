#pragma once

#include "support/Process.h"

#include <string>
#include <thread>

namespace nocta {

/// A fake message bus that accepts every connection and then stops answering.
class MuteBus {
public:
    enum class After { accepting, authentication, hello };

    /// The first `answeredClients` clients get answers up to their first call after `Hello`.
    explicit MuteBus(After after, int answeredClients = 0);
    MuteBus(const MuteBus&) = delete;
    MuteBus& operator=(const MuteBus&) = delete;
    ~MuteBus();

    std::string address() const { return "unix:path=" + folder_.path() + "/bus"; }

private:
    void serve();

    TemporaryFolder folder_;
    After after_;
    int answeredClients_;
    int listener_ = -1;
    int end_[2] = {-1, -1};
    std::thread thread_;
};

} // namespace nocta
