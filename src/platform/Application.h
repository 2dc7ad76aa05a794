#pragma once

namespace nocta {

/// Receives the program's life-cycle events from the desktop.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;

    /// Called when the user starts the program while it is already running.
    virtual void applicationDidReopen() = 0;

    /// Called when the user opens the preferences with a key or menu that the desktop provides.
    /// Corresponds to the action showPreferencesWindow: on macOS.
    virtual void showPreferencesWindow() = 0;

    /// The last call to the delegate. After this call, no timer fires and no event arrives.
    virtual void applicationWillTerminate() = 0;
};

/// The process, from the desktop's point of view.
class Application {
public:
    virtual ~Application() = default;

    /// Runs the program until it ends, and returns the exit status of the process. `terminate`, a
    /// signal, or the end of the session ends the program. In each case, the delegate's
    /// `applicationWillTerminate` is called before the process exits.
    virtual int run(ApplicationDelegate& delegate) = 0;

    /// Brings the program to the front, even if another program is active. Corresponds to
    /// activateIgnoringOtherApps: on macOS.
    virtual void activateIgnoringOtherApps() = 0;

    /// Ends `run` after the current work has returned. Corresponds to terminate: on macOS.
    virtual void terminate() = 0;
};

} // namespace nocta
