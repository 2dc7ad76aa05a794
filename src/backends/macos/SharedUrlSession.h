#pragma once

#include "backends/macos/Strings.h"
#include "base/RunLoop.h"
#include "platform/UrlSession.h"

#include <memory>

namespace nocta {

/// For a program in a bundle, the system itself refuses addresses that are not encrypted.
class SharedUrlSession final : public UrlSession {
public:
    explicit SharedUrlSession(RunLoop& runLoop) : runLoop_(runLoop) {}

    Subscription dataTask(const UrlRequest& request, Completion completion) override {
        const auto isWanted = std::make_shared<bool>(true); // only used on the main thread
        RunLoop& runLoop = runLoop_;
        const auto finish = [&runLoop, isWanted, completion](NSURLResponse* response,
                                                             NSError* error) {
            runLoop.post([isWanted, completion, response, error] {
                if (*isWanted) { // not canceled in the meantime
                    completion(urlResponse(response, error));
                }
            });
        };
        NSURLSessionDataTask* task = nil;
        if (NSURLRequest* const native = nsUrlRequest(request)) {
            task = [NSURLSession.sharedSession
                dataTaskWithRequest:native
                  completionHandler:^(NSData*, NSURLResponse* response, NSError* error) {
                    finish(response, error);
                  }];
            [task resume];
        } else {
            finish(nil, nsUrlError(NSURLErrorBadURL));
        }
        return Subscription([isWanted, task] {
            *isWanted = false;
            [task cancel];
        });
    }

private:
    /// Returns nil if the address is invalid.
    static NSURLRequest* nsUrlRequest(const UrlRequest& request) {
        NSURL* const url = [NSURL URLWithString:nsString(request.url)];
        if (url == nil) {
            return nil;
        }
        NSMutableURLRequest* const native = [NSMutableURLRequest
             requestWithURL:url
                cachePolicy:NSURLRequestUseProtocolCachePolicy
            timeoutInterval:std::chrono::duration<double>(request.timeout).count()];
        native.HTTPMethod = nsString(request.method);
        for (const auto& [name, value] : request.headers) {
            [native setValue:nsString(value) forHTTPHeaderField:nsString(name)];
        }
        native.HTTPBody = [NSData dataWithBytes:request.body.data() length:request.body.size()];
        return native;
    }

    static NSError* nsUrlError(NSInteger code) {
        return [NSError errorWithDomain:NSURLErrorDomain code:code userInfo:nil];
    }

    static UrlResponse urlResponse(NSURLResponse* response, NSError* error) {
        if (error == nil && [response isKindOfClass:NSHTTPURLResponse.class]) {
            return {.statusCode = static_cast<int>(((NSHTTPURLResponse*)response).statusCode)};
        }
        NSError* const reason = error != nil ? error : nsUrlError(NSURLErrorBadServerResponse);
        return {.error = stdString(reason.localizedDescription)};
    }

    RunLoop& runLoop_;
};

} // namespace nocta
