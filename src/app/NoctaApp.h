#pragma once

#include "app/AppDelegate.h"

namespace nocta {

/// The program: runs the application delegate on a desktop. It does not open a window itself.
class NoctaApp {
public:
    NoctaApp(SharedInstances& instances, Views& views)
        : application_(instances.desktop().application), appDelegate_(instances, views) {}

    /// Runs until the program ends and returns the process's exit status.
    int run() { return application_.run(appDelegate_); }

private:
    Application& application_;
    AppDelegate appDelegate_;
};

} // namespace nocta
