<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Nocta</name>
    <message>
        <source>Seconds left: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time for a break</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Snooze 5 min</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look at something far away for 20 seconds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Press Space to skip</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> K</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Candlelight</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Very warm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Slightly warm</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cool</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Neutral</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1s left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1m left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1%</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Break: %1s</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In meeting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Paused</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Snoozed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Using your location for accurate sunrise/sunset times.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Using default times (6:30 AM / 6:30 PM).</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Every %n min</source>
        <translation>
            <numerusform>Every %n min</numerusform>
            <numerusform>Every %n min</numerusform>
        </translation>
    </message>
    <message>
        <source>No location service is available on this desktop.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Continue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finish</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Permissions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta needs a few permissions to work properly.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Location</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>For sunrise/sunset calculation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You can always change these in System Preferences.</source>
        <translation>You can always change these in the system settings.</translation>
    </message>
    <message>
        <source>Allow</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Allow: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Allowed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(Optional)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Eye Relief</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You&apos;re All Set</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta lives in your menu bar — click the eye icon anytime to adjust your settings.</source>
        <translation>Nocta lives in your panel — click the eye icon anytime to adjust your settings.</translation>
    </message>
    <message>
        <source>Launch Nocta at login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose Your Style</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pick a starting point. You can adjust everything later.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Adjust settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warmth</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Eye Relief mode</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Break reminders</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Welcome to Nocta</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take care of your eyes, without thinking about it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Extended Brightness</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Go dimmer than macOS allows</source>
        <translation>Go dimmer than your system allows</translation>
    </message>
    <message>
        <source>Automatic Warmth at Sunset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your screen adapts to the time of day</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smart Break Reminders</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Customizable intervals, pauses during meetings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Manual</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Adjusts with sunset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Break Timer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit Nocta</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable break reminders</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Interval</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Every %n minutes</source>
        <translation>
            <numerusform>Every %n minute</numerusform>
            <numerusform>Every %n minutes</numerusform>
        </translation>
    </message>
    <message>
        <source>Break duration</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n seconds</source>
        <translation>
            <numerusform>%n second</numerusform>
            <numerusform>%n seconds</numerusform>
        </translation>
    </message>
    <message>
        <source>Suspend during meetings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smart Features</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatically pauses break reminders when Zoom, Google Meet, or Teams is active.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Statistics</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Breaks completed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Breaks skipped</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Completion rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>How It Works</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta extends your brightness range beyond what macOS allows. The setting applies to all your displays at once.</source>
        <translation>Nocta extends your brightness range beyond what your system allows. The setting applies to all your displays at once.</translation>
    </message>
    <message>
        <source>On your built-in display:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>100% → 50%: Adjusts hardware brightness</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>49% → 0%: Dims further using a software overlay</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>On external monitors:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>100% → 0%: Dims using a software overlay</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Current Level</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Allow completely black screen</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Safety</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When off, a faint glow is kept at minimum so the screen is never fully dark.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color settings are disabled while Grayscale mode is active.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Manual Warmth</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto-adjust based on time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Use my location</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Day</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Night</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color Temperature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta transitions smoothly between your day and night temperatures at sunrise and sunset.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Leaf</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sparkles</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Eye</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Launch at login</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Startup</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Menu Bar Icon</source>
        <translation>Panel Icon</translation>
    </message>
    <message>
        <source>Switches your display to black &amp; white, reducing eye strain and making apps less appealing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset to Defaults</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>General</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Breaks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feedback</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Everyday</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Balanced for daily use</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Night Owl</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Warmer &amp; dimmer for night</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Focus</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Minimal distractions</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Closed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop&apos;s settings do not let Nocta use your location.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Category</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What&apos;s on your mind?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Email (optional)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help shape Nocta — share a suggestion, report a bug, or tell us what you think.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Only if you&apos;d like a reply.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send feedback</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send another</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Thanks for your feedback!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Suggestion</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bug report</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Other</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to prepare request</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to send. Please try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This build of Nocta has no address for updates.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system&apos;s package manager updates Nocta.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatically check for updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Automatically download updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Version %1 (%2)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for Updates Now</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>It took too long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The address does not use HTTPS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed is too long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed gives no valid length for the file</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file&apos;s address does not use HTTPS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is not a package</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is not signed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is not signed by the publisher</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is longer than the feed says</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is shorter than the feed says</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Software Update</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for updates automatically?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta can look for a newer version once a day. The preferences let you change this at any time.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Don&apos;t Check</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check Automatically</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Checking for updates…</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta is up to date</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta %1 is available</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You have version %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What&apos;s new</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remind Me Later</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Install</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Downloading Nocta %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The connection was lost</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server was not found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server cannot be reached</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server cannot be trusted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Too many redirects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No version newer than %1 is available for this system.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta %1 is open in the installer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit Nocta and start it again once it is installed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta could not check for updates</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta %1 could not be installed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>nocta-fetch cannot be started</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server answered with an error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package could not be opened</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file cannot be saved</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta can dim the displays of this desktop, but not warm them.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta warms the displays through KDE&apos;s Night Light.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed is not RSS</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed contains a document type declaration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed is malformed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package does not contain Nocta</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package is for another kind of computer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package contains another version than the feed says</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The package is not newer than this version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta cannot darken the picture in this session.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta cannot warm the displays in this session.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The warmth of a style shows when Warmth is set to Manual.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turn Break Timer off and on to start again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nocta cannot turn this desktop gray.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your location is unknown, so the default times apply.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This build of Nocta has no address for feedback.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This desktop has no tray for the icon. To adjust your settings, start Nocta again.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
