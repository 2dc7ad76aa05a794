#pragma once

#include "backends/virtual/Trace.h"
#include "platform/UrlSession.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace nocta {

/// A network in memory. A request stays pending until a test answers it.
class VirtualUrlSession final : public UrlSession {
public:
    explicit VirtualUrlSession(Trace& trace) : trace_(trace) {}

    /// Returns the last pending request, or null if no request is pending. `send` and `answer`
    /// apply to this request.
    const UrlRequest* waiting() const { return tasks_.empty() ? nullptr : &tasks_.back()->request; }
    /// Delivers a piece of the body before the response is complete.
    void send(std::string_view data) const {
        if (const auto task = tasks_.back(); task->didReceiveData) {
            task->didReceiveData(data);
        }
    }
    void answer(const UrlResponse& response) {
        const auto task = tasks_.back();
        tasks_.pop_back();
        task->completion(response);
    }

    Subscription dataTask(const UrlRequest& request, Completion completion,
                          DidReceiveData didReceiveData) override {
        trace_.record("dataTask " + request.method + " " + request.url);
        tasks_.push_back(std::make_shared<Task>(
            Task{request, std::move(completion), std::move(didReceiveData)}));
        return Subscription(
            [this, task = std::weak_ptr(tasks_.back())] { std::erase(tasks_, task.lock()); });
    }

private:
    struct Task {
        UrlRequest request;
        Completion completion;
        DidReceiveData didReceiveData;
    };

    Trace& trace_;
    std::vector<std::shared_ptr<Task>> tasks_; ///< pending requests
};

} // namespace nocta
