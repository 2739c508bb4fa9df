#pragma once

#import "GuiTest.h"

/// Target of a control: remembers what it was sent.
@interface ActionCounter : NSObject {
    int m_count;
    id m_lastValue;  // retained objectValue of the last sender
    id m_lastSender; // not retained
}
- (void)act:(id)sender;
- (int)count;
- (id)lastValue;
- (id)lastSender;
@end

/// A window with one control in it, which sends its action to a counter. [main]
template <typename Control>
class ControlsTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_window = gui_test::makeWindow(NSMakeSize(300, 200));
        m_counter = [[ActionCounter alloc] init];
        m_control = makeControl();
        [m_control setTarget:m_counter];
        [m_control setAction:@selector(act:)];
        [[m_window contentView] addSubview:m_control];
    }

    void TearDown() override
    {
        [m_window close];
        [m_window release];
        [m_counter release];
    }

    /// Autoreleased; override where a frame is not enough.
    virtual Control* makeControl()
    {
        return [[[Control alloc] initWithFrame:NSMakeRect(50, 80, 160, 22)] autorelease];
    }

    void press(unichar key, NSUInteger modifiers = 0)
    {
        // Keys that stand for no character carry this mark, as the ones of a real keyboard do.
        const NSUInteger mark = key >= 0xF700 ? NSFunctionKeyMask : 0;
        gui_test::pressKey(m_window, [NSString stringWithCharacters:&key length:1],
                           modifiers | mark);
    }

    void type(NSString* text)
    {
        for (NSUInteger i = 0; i < [text length]; ++i) {
            press([text characterAtIndex:i]);
        }
    }

    void focus() { [m_window makeFirstResponder:m_control]; }

    NSTextView* editor() { return (NSTextView*)[(NSControl*)m_control currentEditor]; }

    NSWindow* m_window = nil;
    ActionCounter* m_counter = nil;
    Control* m_control = nil; // owned by the window
};
