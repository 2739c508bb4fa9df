#pragma once

#import <AppKit/AppKit.h>

namespace host {

/// Makes the main menu and gives it to the application: Quit under the program's name, File with
/// Open and Close, and Edit from Undo to Select All. Without it copy and paste would have no keys.
/// Items go to the first responder. [main]
void installMainMenu();

} // namespace host
