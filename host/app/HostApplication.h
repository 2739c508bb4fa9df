#pragma once

#import <AppKit/AppKit.h>

#import "HelpWindow.h"
#import "HostWindow.h"
#import "MenuKeys.h"
#import "RecentFiles.h"

#include <memory>
#include <string>

namespace host {

/// Tells the frameworks how tarvel-host wants fonts, keys and menus. Call before there is an
/// application object.
/// @param programName  Shown by the frameworks; they see no other word of the command line, which
///                     they would open as a document.
/// @param scale        Pixels a point.
void prepareFrameworks(const char* programName, double scale);

} // namespace host

/// The application. It ends when its window closes, and at once when it is told to by a signal.
/// It looks for events from time to time while it waits, because the run loop may overlook one, and
/// lets the keyboard choose in open menus.
@interface HostApplication : NSApplication {
@private
    HostWindow* m_hostWindow; // owned
    HelpWindow* m_help;       // owned
    MenuKeys* m_menuKeys;     // owned
    std::unique_ptr<host::RecentFiles> m_recentFiles;
    std::string m_snapshotPath;
}

/// Makes the application object. Call after prepareFrameworks().
+ (HostApplication*)prepare;

/// The window, which from now on fills the list of recent files.
- (void)setHostWindow:(HostWindow*)hostWindow;

/// Has the application write a picture of its window once the editor is drawn and up to date,
/// print the path, and end.
- (void)setSnapshotPath:(const std::string&)path;

@end
