#import "HostApplication.h"

#import "HelpText.h"
#import "HostMenu.h"
#import "HostTheme.h"
#import "Snapshot.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <XeFileSystem.h>
#include <XeHelp.h>
#include <XeNativePath.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace host {

void prepareFrameworks(const char* programName, double scale)
{
    char* words[] = {const_cast<char*>(programName), nullptr};
    [NSProcessInfo initializeWithArguments:words count:1 environment:environ];
    [[NSProcessInfo processInfo] setProcessName:@"Tarvel"];
    [[NSUserDefaults standardUserDefaults] registerDefaults:@{
        // Alt is Option and Super is Command.
        @"GSAlternateKeyString" : @"Alt+",
        @"GSCommandKeyString" : @"Super+",
        @"GSFirstAlternateKey" : @"Alt_L",
        @"GSFirstCommandKey" : @"Super_L",
        @"GSShiftKeyString" : @"Shift+",
        // Glyphs and their widths unfitted to pixels: fitted at scale 1, they collide at scale 2.
        @"GSFontHinting" : @(0x11),
        @"GSScaleFactor" : @(scale),
        @"GSSuppressAppIcon" : @(YES),
        @"NSBoldFont" : @"Inter-SemiBold",
        // Exceptions that reach the event loop go to reportException:, else they vanish.
        @"NSExceptionHandlerMask" : @(1),
        @"NSFont" : @"Inter-Regular",
        @"NSFontSize" : @"12",
        @"NSMenuInterfaceStyle" : @"NSWindows95InterfaceStyle",
    }];
}

} // namespace host

namespace {

// How long an event may lie unnoticed; an application at rest looks less often.
constexpr NSTimeInterval kLookSecondsTracking = 0.02;
constexpr NSTimeInterval kLookSeconds = 0.25;

} // namespace

// The connection to the X server.
@interface NSObject (Mouse)
- (void)initializeMouse;
@end

@implementation HostApplication

// At the first press of a button the connection asks the notification daemon to tell it of new
// mouse settings. The release that arrives before the daemon's answer would be queued before the
// press, and the control that was clicked would wait for it. So this is done before there are
// presses.
- (void)finishLaunching
{
    GSDisplayServer* const server = GSCurrentServer();
    if ([server respondsToSelector:@selector(initializeMouse)]) {
        [server initializeMouse];
    }
    m_menuKeys = [[MenuKeys alloc] init];
    [super finishLaunching];
}

// What the run loop finds already read from the X server when it begins to wait, say by drawing, it
// queues and then waits for more without looking at it. That would be the release of a button, and
// the control that waits for it would seem to hang until the mouse is moved.
- (NSEvent*)_lookForEventMatchingMask:(NSUInteger)mask
                            untilDate:(NSDate*)limit
                               inMode:(NSString*)mode
                              dequeue:(BOOL)flag
{
    const BOOL isTracking = [mode isEqualToString:NSEventTrackingRunLoopMode];
    const NSTimeInterval pause = isTracking ? kLookSecondsTracking : kLookSeconds;
    NSDate* const end = limit != nil ? limit : [NSDate distantFuture];
    NSEvent* event = nil;
    do {
        NSDate* const nextLook = [NSDate dateWithTimeIntervalSinceNow:pause];
        event = [super nextEventMatchingMask:mask
                                   untilDate:[nextLook earlierDate:end]
                                      inMode:mode
                                     dequeue:flag];
    } while (event == nil && [end timeIntervalSinceNow] > 0);
    return event;
}

- (NSEvent*)nextEventMatchingMask:(NSUInteger)mask
                        untilDate:(NSDate*)limit
                           inMode:(NSString*)mode
                          dequeue:(BOOL)flag
{
    const BOOL isForMenu =
        [m_menuKeys isInUse] && flag && [mode isEqualToString:NSEventTrackingRunLoopMode];
    NSEvent* event = nil;
    NSEvent* taken = nil;
    do {
        event = [self _lookForEventMatchingMask:isForMenu ? mask | NSKeyDownMask : mask
                                      untilDate:limit
                                         inMode:mode
                                        dequeue:flag];
        taken = isForMenu && event != nil ? [m_menuKeys eventForMenu:event] : event;
    } while (event != nil && taken == nil);
    return taken;
}

+ (HostApplication*)prepare
{
    HostApplication* const application = (HostApplication*)[self sharedApplication];
    // The frameworks' handlers wait for the event loop; there is nothing to save.
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    [HostTheme install];
    host::installMainMenu();
    [application setDelegate:application];
    application->m_help = [[HelpWindow alloc] init];
    application->m_recentFiles =
        std::make_unique<host::RecentFiles>(host::RecentFiles::defaultPath());
    const auto show = [files = application->m_recentFiles.get()] {
        host::showRecentFiles(files->paths());
    };
    application->m_recentFiles->setObserver(show);
    show();
    return application;
}

- (void)dealloc
{
    [m_hostWindow release];
    [m_menuKeys release];
    [m_help release];
    [super dealloc];
}

- (void)setHostWindow:(HostWindow*)hostWindow
{
    [hostWindow retain];
    [m_hostWindow release];
    m_hostWindow = hostWindow;
    [m_hostWindow setRecentFiles:m_recentFiles.get()];
}

- (void)setSnapshotPath:(const std::string&)path
{
    m_snapshotPath = path;
}

// An error of an editor must not end its host, nor stop it with a panel.
- (void)reportException:(NSException*)exception
{
    std::fprintf(stderr, "tarvel-host: %s: %s\n", [[exception name] UTF8String],
                 [[exception reason] UTF8String]);
}

// Menu actions reach the window's owner through the application's delegate.

- (BOOL)validateMenuItem:(NSMenuItem*)item
{
    return [m_hostWindow validateMenuItem:item];
}

- (void)openDocument:(id)sender
{
    [m_hostWindow openDocument:sender];
}

// The actions of the list change the list, and with it the menu that sends them. They wait until
// the menu has let go of its items.

- (void)openRecentDocument:(id)sender
{
    const auto index = static_cast<std::size_t>([sender tag]);
    if (index >= m_recentFiles->paths().size()) {
        return;
    }
    const std::string& path = m_recentFiles->paths()[index];
    [self performSelector:@selector(_openRecentPath:)
               withObject:[NSData dataWithBytes:path.data() length:path.size()]
               afterDelay:0];
}

- (void)_openRecentPath:(NSData*)bytes
{
    const std::string path(static_cast<const char*>([bytes bytes]), [bytes length]);
    if (!XeFileSystem::isFilePresent(xenon::path::fromNative(path))) {
        m_recentFiles->remove(path);
    }
    [m_hostWindow openFileForUser:path];
}

- (void)clearRecentDocuments:(id)sender
{
    [self performSelector:@selector(_clearRecentPaths) withObject:nil afterDelay:0];
}

- (void)_clearRecentPaths
{
    m_recentFiles->clear();
}

- (void)exportDocument:(id)sender
{
    [m_hostWindow exportDocument:sender];
}

- (void)undoEdit:(id)sender
{
    [m_hostWindow undoEdit:sender];
}

- (void)redoEdit:(id)sender
{
    [m_hostWindow redoEdit:sender];
}

- (void)editMusic:(id)sender
{
    [m_hostWindow editMusic:sender];
}

- (void)showHelp:(id)sender
{
    XeHelp::GotoHome();
}

- (void)showEditorHelp:(id)sender
{
    XeHelp::Goto(host::kEditorTopic, nullptr);
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification
{
    NSWindow* const window = [m_hostWindow window];
    [window center];
    [window makeKeyAndOrderFront:nil];
    if (!m_snapshotPath.empty()) {
        // Events that were under way when the editor opened are delivered within this time.
        constexpr NSTimeInterval kSettleSeconds = 0.3;
        [self performSelector:@selector(_writeSnapshotAndEnd)
                   withObject:nil
                   afterDelay:kSettleSeconds];
    }
}

- (void)_writeSnapshotAndEnd
{
    const std::string problem = host::writeSnapshot([m_hostWindow window], m_snapshotPath);
    [m_hostWindow close];
    if (!problem.empty()) {
        std::fprintf(stderr, "tarvel-host: %s\n", problem.c_str());
        std::exit(1);
    }
    std::printf("%s\n", m_snapshotPath.c_str());
    std::exit(0);
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application
{
    return YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification
{
    [m_hostWindow close];
}

@end
