#pragma once

#import <AppKit/AppKit.h>

namespace nocta {

/// A program that is not in the Dock shows no menu bar, but the keyboard shortcuts of its main menu
/// work while one of its windows is key. `target` implements showPreferencesWindow:.
inline NSMenu* makeMainMenu(id target) {
    NSMenu* const application = [[NSMenu alloc] initWithTitle:@"Nocta"];
    [application addItemWithTitle:@"Settings…"
                           action:@selector(showPreferencesWindow:)
                    keyEquivalent:@","]
        .target = target;
    [application addItemWithTitle:@"Quit Nocta" action:@selector(terminate:) keyEquivalent:@"q"];

    NSMenu* const window = [[NSMenu alloc] initWithTitle:@"Window"];
    [window addItemWithTitle:@"Close" action:@selector(performClose:) keyEquivalent:@"w"];

    NSMenu* const mainMenu = [[NSMenu alloc] init];
    for (NSMenu* menu in @[ application, window ]) {
        NSMenuItem* const item = [[NSMenuItem alloc] init];
        item.submenu = menu;
        [mainMenu addItem:item];
    }
    return mainMenu;
}

} // namespace nocta
