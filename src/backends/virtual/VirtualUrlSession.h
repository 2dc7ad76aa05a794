#pragma once

#include "backends/virtual/Trace.h"
#include "platform/UrlSession.h"

#include <memory>
#include <string_view>
#include <utility>

namespace nocta {

/// A network in memory. A request waits until a test answers it.
class VirtualUrlSession final : public UrlSession {
public:
    explicit VirtualUrlSession(Trace& trace) : trace_(trace) {}

    /// The last request that waits for an answer; null if none does.
    const UrlRequest* waiting() const { return task_ == nullptr ? nullptr : &task_->request; }
    /// A piece of the body, before the answer is complete.
    void send(std::string_view data) const {
        if (const auto task = task_; task->didReceiveData) {
            task->didReceiveData(data);
        }
    }
    void answer(const UrlResponse& response) {
        const auto task = std::exchange(task_, nullptr);
        task->completion(response);
    }

    Subscription dataTask(const UrlRequest& request, Completion completion,
                          DidReceiveData didReceiveData) override {
        trace_.record("dataTask " + request.method + " " + request.url);
        task_ =
            std::make_shared<Task>(Task{request, std::move(completion), std::move(didReceiveData)});
        return Subscription([this, task = std::weak_ptr(task_)] {
            if (task_ != nullptr && task_ == task.lock()) {
                task_ = nullptr;
            }
        });
    }

private:
    struct Task {
        UrlRequest request;
        Completion completion;
        DidReceiveData didReceiveData;
    };

    Trace& trace_;
    std::shared_ptr<Task> task_;
};

} // namespace nocta
