#import "host/app/MenuKeys.h"

#import "GuiTest.h"

#include <cstdlib>
#include <string>

/// Remembers what was chosen.
@interface MenuChoice : NSObject {
@public
    std::string titles;
}
@end

@implementation MenuChoice

- (void)choose:(id)sender
{
    titles += [[sender title] UTF8String];
    titles += ' ';
}

@end

namespace {

NSString* const kUp = @"\uF700";
NSString* const kDown = @"\uF701";
NSString* const kHome = @"\uF729";
NSString* const kEnd = @"\uF72B";
NSString* const kReturn = @"\r";
NSString* const kEscape = @"\x1B";

/// A context menu "a", "b", a line, "c" that cannot be chosen, and "d".
class MenuKeysTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        // The pointer highlights too.
        ASSERT_EQ(std::system("xdotool mousemove 0 0"), 0);
        window = gui_test::makeWindow(NSMakeSize(200, 200));
        choice = [[MenuChoice alloc] init];
        menu = [[NSMenu alloc] initWithTitle:@"Menu"];
        for (NSString* title in @[ @"a", @"b", @"", @"c", @"d" ]) {
            if ([title length] == 0) {
                [menu addItem:[NSMenuItem separatorItem]];
                continue;
            }
            id<NSMenuItem> const item = [menu addItemWithTitle:title
                                                        action:@selector(choose:)
                                                 keyEquivalent:@""];
            [item setTarget:choice];
        }
        [menu setAutoenablesItems:NO];
        [[menu itemWithTitle:@"c"] setEnabled:NO];
    }

    void TearDown() override
    {
        [window close];
        [window release];
        [menu release];
        [choice release];
    }

    /// Opens the menu with these keys already typed; gives what was chosen.
    std::string chosenBy(NSArray* keys)
    {
        choice->titles.clear();
        for (NSString* key in keys) {
            [NSApp postEvent:gui_test::keyDown(window, key) atStart:NO];
        }
        NSEvent* const click =
            gui_test::mouseEvent(window, NSRightMouseDown, NSMakePoint(100, 100));
        [NSMenu popUpContextMenu:menu
                       withEvent:click
                         forView:static_cast<NSView*>([window contentView])];
        gui_test::pump(0.05);
        return choice->titles;
    }

    NSWindow* window = nil;
    NSMenu* menu = nil;
    MenuChoice* choice = nil;
};

TEST_F(MenuKeysTest, ArrowsMoveOverItemsThatCanBeChosen)
{
    EXPECT_EQ(chosenBy(@[ kHome, kReturn ]), "a ");
    EXPECT_EQ(chosenBy(@[ kHome, kDown, kReturn ]), "b ");
    EXPECT_EQ(chosenBy(@[ kHome, kDown, kDown, kReturn ]), "d ");
    EXPECT_EQ(chosenBy(@[ kEnd, kReturn ]), "d ");
    EXPECT_EQ(chosenBy(@[ kEnd, kUp, kReturn ]), "b ");
}

TEST_F(MenuKeysTest, HighlightStopsAtTheEnds)
{
    EXPECT_EQ(chosenBy(@[ kHome, kUp, kUp, kReturn ]), "a ");
    EXPECT_EQ(chosenBy(@[ kEnd, kDown, kReturn ]), "d ");
}

TEST_F(MenuKeysTest, FirstArrowGoesToTheTickedItem)
{
    [[menu itemWithTitle:@"b"] setState:NSOnState];
    EXPECT_EQ(chosenBy(@[ kDown, kReturn ]), "b ");
    EXPECT_EQ(chosenBy(@[ kUp, kDown, kReturn ]), "d ");
}

TEST_F(MenuKeysTest, EnterAndSpaceChooseToo)
{
    EXPECT_EQ(chosenBy(@[ kHome, @"\x03" ]), "a ");
    EXPECT_EQ(chosenBy(@[ kEnd, @" " ]), "d ");
}

TEST_F(MenuKeysTest, EscapeChoosesNothing)
{
    EXPECT_EQ(chosenBy(@[ kHome, kDown, kEscape ]), "");
    EXPECT_FALSE([[[menu menuRepresentation] window] isVisible]);
}

TEST_F(MenuKeysTest, OtherKeysAndReturnWithoutHighlightAreSwallowed)
{
    EXPECT_EQ(chosenBy(@[ @"x", @"é", kHome, @"q", kReturn ]), "a ");
}

// The keyboard is the window's again.
TEST_F(MenuKeysTest, KeysOutsideAMenuPass)
{
    MenuKeys* const keys = [[[MenuKeys alloc] init] autorelease];
    EXPECT_FALSE([keys isInUse]);
    EXPECT_EQ(chosenBy(@[ kEscape ]), "");
    [NSApp postEvent:gui_test::keyDown(window, kDown) atStart:NO];
    NSEvent* const event = [NSApp nextEventMatchingMask:NSKeyDownMask
                                              untilDate:[NSDate dateWithTimeIntervalSinceNow:5]
                                                 inMode:NSEventTrackingRunLoopMode
                                                dequeue:YES];
    EXPECT_TRUE([[event characters] isEqual:kDown]);
}

} // namespace
