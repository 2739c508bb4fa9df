#pragma once

#import <AppKit/AppKit.h>

/// The window of the help. From the time it is made it shows the page that anyone in the process
/// asks for by an "XeHelpNotification", whose "anchor" is the number of the topic. [main]
@interface HelpWindow : NSObject {
@private
    NSWindow* m_window; // owned; nil until a page is shown
    NSTextView* m_text; // owned by the window
    int m_topic;
}

/// Shows a page in front of the other windows.
- (void)showTopic:(int)topic;

/// Nil before the first page.
- (NSWindow*)window;

/// What the page says; nil before the first one.
- (NSString*)text;

/// Number of the page that was asked for last.
- (int)topic;

@end
