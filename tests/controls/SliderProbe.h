#pragma once

#import "XeSlider.h"

#import <AppKit/NSResponder.h>

#include <string>
#include <vector>

/// What a slider did, in order: "hook" for valueDidChange, "action 0.5", "down" and "up" for the
/// two notifications, "key q" for a key passed on.
using SliderLog = std::vector<std::string>;

/// A slider whose valueDidChange is logged.
@interface SliderProbe : XeSlider {
    SliderLog* m_log; // not owned
}
@property (nonatomic) SliderLog* log;
@end

/// Target of a slider and observer of its notifications. Logs both, and as a next responder the
/// keys that the slider passes on.
@interface SliderListener : NSResponder {
    SliderLog* m_log; // not owned
    id m_reply;
}
- (id)initWithLog:(SliderLog*)log;
- (void)replyToNextActionWith:(double)value; // sets the slider or its model
- (void)listenTo:(XeSlider*)slider;          // as its target too
- (void)sliderMoved:(id)sender;
@end

/// The object on the other end of a value binding.
@interface SliderModel : NSObject {
    double level;
}
@property (nonatomic) double level;
@end
