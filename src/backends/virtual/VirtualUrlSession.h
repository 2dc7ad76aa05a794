#pragma once

#include "backends/virtual/Trace.h"
#include "platform/UrlSession.h"

#include <memory>
#include <utility>
#include <vector>

namespace nocta {

/// A network in memory. A request stays pending until a test answers it.
class VirtualUrlSession final : public UrlSession {
public:
    explicit VirtualUrlSession(Trace& trace) : trace_(trace) {}

    /// Returns the last pending request, or null if no request is pending. `answer` applies
    /// to this request.
    const UrlRequest* waiting() const { return tasks_.empty() ? nullptr : &tasks_.back()->request; }
    void answer(const UrlResponse& response) {
        const auto task = tasks_.back();
        tasks_.pop_back();
        task->completion(response);
    }

    Subscription dataTask(const UrlRequest& request, Completion completion) override {
        trace_.record("dataTask " + request.method + " " + request.url);
        tasks_.push_back(std::make_shared<Task>(Task{request, std::move(completion)}));
        return Subscription(
            [this, task = std::weak_ptr(tasks_.back())] { std::erase(tasks_, task.lock()); });
    }

private:
    struct Task {
        UrlRequest request;
        Completion completion;
    };

    Trace& trace_;
    std::vector<std::shared_ptr<Task>> tasks_; ///< pending requests
};

} // namespace nocta
