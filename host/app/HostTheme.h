#pragma once

#import <GNUstepGUI/GSTheme.h>

/// Dark menus, panels and windows of tarvel-host. Only the host has a theme: it is for the whole
/// process, and an editor must not restyle its host. [main]
@interface HostTheme : GSTheme
/// Makes it the theme of the process. Call once there is an application object.
+ (void)install;
@end
