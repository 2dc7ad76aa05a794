#pragma once

namespace nocta {

/// What the desktop tells the program of its own life.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;

    /// The user started the program while it runs.
    virtual void applicationDidReopen() = 0;

    /// The user asked the desktop for the program's preferences, where it has a key or a menu for
    /// them. Stands for showPreferencesWindow:.
    virtual void showPreferencesWindow() = 0;

    /// The last call: no timer fires and no event arrives after it.
    virtual void applicationWillTerminate() = 0;
};

/// The process as the desktop sees it.
class Application {
public:
    virtual ~Application() = default;

    /// Serves the program until it ends and returns the process's exit status. The end may come
    /// from `terminate`, a signal or the end of the session; the delegate is told of each.
    virtual int run(ApplicationDelegate& delegate) = 0;

    /// Brings the program to the front, whatever is there. Stands for
    /// activateIgnoringOtherApps:.
    virtual void activateIgnoringOtherApps() = 0;

    /// Ends `run` after the work that runs now. Stands for terminate:.
    virtual void terminate() = 0;
};

} // namespace nocta
