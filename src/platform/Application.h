#pragma once

namespace nocta {

/// Events in the life of the program, which the desktop reports.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;

    /// The user started the program while it was already running.
    virtual void applicationDidReopen() = 0;

    /// The user opened the preferences with the desktop's own key or menu, if it has one. Stands
    /// for showPreferencesWindow:.
    virtual void showPreferencesWindow() = 0;

    /// The last call: afterward no timer fires and no event arrives.
    virtual void applicationWillTerminate() = 0;
};

/// The process as the desktop sees it.
class Application {
public:
    virtual ~Application() = default;

    /// Runs the program until it ends and returns the exit status of the process. `terminate`, a
    /// signal or the end of the session ends it; in each case the delegate is called.
    virtual int run(ApplicationDelegate& delegate) = 0;

    /// Brings the program to the front, whichever program is active. Stands for
    /// activateIgnoringOtherApps:.
    virtual void activateIgnoringOtherApps() = 0;

    /// Ends `run` after the current work. Stands for terminate:.
    virtual void terminate() = 0;
};

} // namespace nocta
