#pragma once

#import <AppKit/AppKit.h>

#include <string>

@protocol HostContentViewDelegate
/// Files were dropped on the window; the path of the first one.
- (void)contentViewDidReceiveFile:(const std::string&)path;
@end

/// Background of the host's window, which takes files that are dropped on it. [main]
@interface HostContentView : NSView {
@private
    id<HostContentViewDelegate> m_delegate; // not owned
    BOOL m_isTarget;                        // files are held over it
}
- (void)setDelegate:(id<HostContentViewDelegate>)delegate;
@end
