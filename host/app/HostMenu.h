#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

namespace host {

/// Makes the main menu and gives it to the application: Quit under the program's name, File, Edit
/// and Help. Without it copy and paste would have no keys. Items go to the first responder. [main]
void installMainMenu();

/// Fills File, Open Recent, with these paths in their order. Each item sends
/// `openRecentDocument:` and has its place in the list as tag; the last one sends
/// `clearRecentDocuments:`. Paths may be any bytes. [main]
void showRecentFiles(const std::vector<std::string>& paths);

} // namespace host
