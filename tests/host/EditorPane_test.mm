#import "host/effect/TarvelEffect.h"
#import "host/loader/EditorPane.h"

#import "GuiTest.h"

@interface PaneWatcher : NSObject <EditorPaneDelegate> {
@public
    int resized;
    NSSize size;
}
@end

@implementation PaneWatcher

- (void)editorPaneDidResize:(EditorPane*)pane
{
    ++resized;
    size = [pane frame].size;
}

@end

namespace {

class EditorPaneTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        effect = new TarvelEffect;
        effect->setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory"});
        window = gui_test::makeWindow(NSMakeSize(600, 400));
        pane = [[EditorPane alloc] initWithFrame:NSMakeRect(0, 0, 500, 100)];
        watcher = [[PaneWatcher alloc] init];
        [pane setDelegate:watcher];
        [[window contentView] addSubview:pane];
    }

    void TearDown() override
    {
        [pane removeFromSuperview];
        [pane release];
        [watcher release];
        [window close];
        [window release];
        delete effect;
    }

    TarvelEffect* effect = nullptr;
    NSWindow* window = nil;
    EditorPane* pane = nil;
    PaneWatcher* watcher = nil;
};

} // namespace

TEST_F(EditorPaneTest, TakesTheSizeOfItsEditor)
{
    EXPECT_TRUE([pane openEditorForUnit:effect]);
    ASSERT_NE([pane editor], nil);
    EXPECT_EQ([pane problem], nil);
    EXPECT_EQ([[pane editor] window], window);
    EXPECT_TRUE(NSEqualRects([[pane editor] frame], NSMakeRect(0, 0, 320, 200)));
    EXPECT_TRUE(NSEqualSizes([pane frame].size, NSMakeSize(320, 200)));
    EXPECT_EQ(watcher->resized, 1);
}

TEST_F(EditorPaneTest, FollowsAnEditorThatResizesItself)
{
    [pane openEditorForUnit:effect];
    [[pane editor] setFrameSize:NSMakeSize(350, 260)];
    EXPECT_TRUE(NSEqualSizes([pane frame].size, NSMakeSize(350, 260)));
    EXPECT_EQ(watcher->resized, 2);
    EXPECT_TRUE(NSEqualSizes(watcher->size, NSMakeSize(350, 260)));
    [[pane editor] setFrameSize:NSMakeSize(350, 260)];
    EXPECT_EQ(watcher->resized, 2);
}

// Else an editor that follows its container and a container that follows its editor would chase
// each other.
TEST_F(EditorPaneTest, NeverResizesItsEditor)
{
    [pane openEditorForUnit:effect];
    [[pane editor] setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    [pane setFrameSize:NSMakeSize(900, 900)];
    EXPECT_TRUE(NSEqualSizes([[pane editor] frame].size, NSMakeSize(320, 200)));
}

TEST_F(EditorPaneTest, ClosesBeforeTheEffect)
{
    [pane openEditorForUnit:effect];
    [pane closeEditor];
    EXPECT_EQ([pane editor], nil);
    EXPECT_EQ([[pane subviews] count], 0U);
    [pane closeEditor];
}

TEST_F(EditorPaneTest, ClosesAfterTheEffect)
{
    [pane openEditorForUnit:effect];
    delete effect;
    effect = nullptr;
    [pane closeEditor];
    EXPECT_EQ([pane editor], nil);
}

TEST_F(EditorPaneTest, ForgetsAClosedEditor)
{
    [pane openEditorForUnit:effect];
    NSView* const editor = [[pane editor] retain];
    [pane closeEditor];
    [editor setFrameSize:NSMakeSize(1, 1)];
    EXPECT_TRUE(NSEqualSizes([pane frame].size, NSMakeSize(320, 200)));
    [editor release];
}

TEST_F(EditorPaneTest, OpeningAgainReplacesTheEditor)
{
    @autoreleasepool {
        [pane openEditorForUnit:effect];
        NSView* const first = [pane editor];
        EXPECT_TRUE([pane openEditorForUnit:effect]);
        EXPECT_NE([pane editor], first);
        EXPECT_EQ([[pane subviews] count], 1U);
    }
}

// With the editor of the first pane gone the second one's must be left alone.
TEST_F(EditorPaneTest, TwoEditorsOfOneEffect)
{
    EditorPane* const second = [[EditorPane alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)];
    EXPECT_TRUE([pane openEditorForUnit:effect]);
    EXPECT_TRUE([second openEditorForUnit:effect]);
    [pane closeEditor];
    EXPECT_NE([second editor], nil);
    [[second editor] setFrameSize:NSMakeSize(99, 98)];
    EXPECT_TRUE(NSEqualSizes([second frame].size, NSMakeSize(99, 98)));
    [second release];
}

TEST_F(EditorPaneTest, ShowsWhyThereIsNoEditor)
{
    effect->setViewBundle("/nowhere/Gone.bundle", {"HostTestViewFactory"});
    EXPECT_FALSE([pane openEditorForUnit:effect]);
    EXPECT_EQ([pane editor], nil);
    EXPECT_TRUE([[pane problem] isEqual:@"There is no bundle at “/nowhere/Gone.bundle”."]);
    EXPECT_TRUE(NSEqualSizes([pane frame].size, NSMakeSize(500, 100)));
    EXPECT_EQ(watcher->resized, 0);

    effect->setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory"});
    EXPECT_TRUE([pane openEditorForUnit:effect]);
    EXPECT_EQ([pane problem], nil);
}
