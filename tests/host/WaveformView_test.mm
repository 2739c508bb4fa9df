#import "host/app/WaveformView.h"

#import "GuiTest.h"
#import "WaveformPictures.h"
#import "host/app/HostLook.h"

#include <gmock/gmock.h>

using namespace host;
using namespace host_test;

namespace {

constexpr CGFloat kWidth = 400;
constexpr CGFloat kHeight = 220;
constexpr NSInteger kRulerHeight = 20; // at the top

} // namespace

/// Counts how often it is told of the pointer.
@interface CursorWatcher : NSObject <WaveformViewDelegate> {
@public
    int calls;
}
@end

@implementation CursorWatcher

- (void)waveformViewDidMoveCursor:(WaveformView*)view
{
    ++calls;
}

@end

/// Keeps the rectangles it was asked to draw.
@interface RecordingWaveformView : WaveformView {
@public
    std::vector<NSRect> drawn;
}
@end

@implementation RecordingWaveformView

- (void)drawRect:(NSRect)dirtyRect
{
    drawn.push_back(dirtyRect);
    [super drawRect:dirtyRect];
}

@end

namespace {

class WaveformViewTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        window = gui_test::makeWindow(NSMakeSize(kWidth, kHeight));
        view = [[[RecordingWaveformView alloc] initWithFrame:NSMakeRect(0, 0, kWidth, kHeight)]
            autorelease];
        [[window contentView] addSubview:view];
    }

    void TearDown() override
    {
        [view setDelegate:nil];
        [window close];
        [window release];
    }

    void show(unsigned channels)
    {
        [view setEngine:std::make_shared<const TrimEngine>(halfLoud(channels))];
    }

    static TrimPlan keep(std::vector<KeptRegion> regions)
    {
        return {.regions = std::move(regions)};
    }

    /// Thresholds are not drawn with these.
    static TrimSettings fadesOnly()
    {
        TrimSettings settings;
        settings.function = FunctionMode::FadesOnly;
        return settings;
    }

    NSWindow* window = nil;
    RecordingWaveformView* view = nil;
};

TEST_F(WaveformViewTest, DrawsALaneForEachChannel)
{
    for (const unsigned channels : {1U, 2U, 6U}) {
        SCOPED_TRACE(channels);
        show(channels);
        NSBitmapImageRep* const image = pictureOf(view);
        for (unsigned channel = 0; channel < channels; ++channel) {
            const double lane = (kHeight - kRulerHeight) / channels;
            const auto nearTop = kRulerHeight + static_cast<NSInteger>(lane * (channel + 0.2));
            EXPECT_TRUE(isColor(image, 100, nearTop, look::keptGround()));
            EXPECT_TRUE(isColor(image, 300, nearTop, look::waveform()));
        }
    }
}

TEST_F(WaveformViewTest, SilenceIsALine)
{
    show(1);
    NSBitmapImageRep* const image = pictureOf(view);
    bool found = false;
    for (NSInteger y = 118; y <= 122; ++y) {
        found = found || isColor(image, 100, y, look::waveform());
    }
    EXPECT_TRUE(found);
}

TEST_F(WaveformViewTest, WithoutARecordingThereIsNoWaveform)
{
    NSBitmapImageRep* const image = pictureOf(view);
    EXPECT_TRUE(isColor(image, 20, 110, look::well()));
    EXPECT_TRUE(isColor(image, 300, 40, look::well()));
}

TEST_F(WaveformViewTest, CutMaterialIsGreyOnADarkGround)
{
    show(1);
    [view setPlan:keep({{.first = 600, .end = 800}}) settings:fadesOnly()];
    NSBitmapImageRep* const image = pictureOf(view);
    EXPECT_TRUE(isColor(image, 100, 60, look::well()));
    EXPECT_TRUE(isColor(image, 220, 60, look::cutWaveform()));
    EXPECT_TRUE(isColor(image, 280, 60, look::waveform()));
    EXPECT_TRUE(isColor(image, 360, 60, look::cutWaveform()));
}

TEST_F(WaveformViewTest, EdgesOfWhatIsKeptAreLines)
{
    show(1);
    [view setPlan:keep({{.first = 250, .end = 450}}) settings:fadesOnly()];
    NSBitmapImageRep* const image = pictureOf(view);
    EXPECT_TRUE(isColor(image, 100, 60, look::accent()));
    EXPECT_TRUE(isColor(image, 179, 60, look::accent()));
    EXPECT_TRUE(isColor(image, 140, 60, look::keptGround()));
}

// The fade rises from the bottom left to the top right of its stretch; what it takes away is grey.
TEST_F(WaveformViewTest, FadesShowTheirCourseAndTheirLoudness)
{
    show(1);
    [view setPlan:keep({{.first = 500, .end = 1000, .fadeIn = 400, .fadeOut = 0}})
         settings:fadesOnly()];
    NSBitmapImageRep* const image = pictureOf(view);
    const NSInteger quarter = 240; // a quarter into the fade: a quarter as loud
    EXPECT_TRUE(isColor(image, quarter, 120, look::waveform()));
    EXPECT_TRUE(isColor(image, quarter, 90, look::cutWaveform()));
    const NSInteger yOfLine = kRulerHeight + 200 - 50;
    bool found = false;
    for (NSInteger y = yOfLine - 4; y <= yOfLine + 4; ++y) {
        NSColor* const color = [image colorAtX:quarter y:y]; // yellow, blended at its sides
        found = found || [color redComponent] > [color blueComponent];
    }
    EXPECT_TRUE(found);
}

TEST_F(WaveformViewTest, ThresholdsAreLinesWhereTheFunctionUsesThem)
{
    show(1);
    TrimSettings settings;
    settings.attackThresholdDb = -6.0206F; // half of full scale
    settings.releaseThresholdDb = -60;     // minus infinity: no line
    const auto isGroundAt = [this](NSInteger y) {
        NSBitmapImageRep* const image = pictureOf(view);
        bool ground = true;
        for (NSInteger x = 40; x < 60; ++x) {
            ground = ground && isColor(image, x, y, look::keptGround());
        }
        return ground;
    };
    for (const FunctionMode function : {FunctionMode::TrimStartAndEnd, FunctionMode::RemoveSilence,
                                        FunctionMode::Crop, FunctionMode::FadesOnly}) {
        SCOPED_TRACE(static_cast<int>(function));
        settings.function = function;
        [view setPlan:keep({{.first = 0, .end = 1000}}) settings:settings];
        const bool uses =
            function == FunctionMode::TrimStartAndEnd || function == FunctionMode::RemoveSilence;
        EXPECT_EQ(isGroundAt(70), !uses);
        EXPECT_TRUE(isGroundAt(100));
    }
}

TEST_F(WaveformViewTest, DrawsAgainOnlyWhatAPlanChanges)
{
    show(2);
    [view setPlan:keep({{.first = 100, .end = 900}}) settings:fadesOnly()];
    [window displayIfNeeded];
    view->drawn.clear();
    [view setPlan:keep({{.first = 120, .end = 900}}) settings:fadesOnly()];
    [window displayIfNeeded];
    ASSERT_EQ(view->drawn.size(), 1u);
    EXPECT_GE(NSMinX(view->drawn[0]), 36);
    EXPECT_LE(NSMaxX(view->drawn[0]), 52);
    view->drawn.clear();
    [view setPlan:keep({{.first = 120, .end = 900}}) settings:fadesOnly()];
    [window displayIfNeeded];
    EXPECT_TRUE(view->drawn.empty());
}

TEST_F(WaveformViewTest, PartlyDrawnItLooksAsWhenDrawnWhole)
{
    show(2);
    [view setPlan:keep({{.first = 100, .end = 900, .fadeIn = 50, .fadeOut = 200}})
         settings:fadesOnly()];
    [window displayIfNeeded];
    [view setPlan:keep({{.first = 333, .end = 800, .fadeIn = 80, .fadeOut = 100}})
         settings:fadesOnly()];
    NSData* const partly = [pictureOf(view) TIFFRepresentation];
    [view setNeedsDisplay:YES];
    EXPECT_TRUE([partly isEqualToData:[pictureOf(view) TIFFRepresentation]]);
}

TEST_F(WaveformViewTest, TellsTheFrameUnderThePointer)
{
    CursorWatcher* const watcher = [[[CursorWatcher alloc] init] autorelease];
    [view setDelegate:watcher];
    show(1);
    EXPECT_EQ([view cursor], std::nullopt);
    [view mouseMoved:gui_test::mouseEvent(window, NSMouseMoved, NSMakePoint(100, 50))];
    EXPECT_EQ([view cursor], 250u);
    [view mouseMoved:gui_test::mouseEvent(window, NSMouseMoved, NSMakePoint(399.9, 50))];
    EXPECT_EQ([view cursor], 999u);
    EXPECT_EQ(watcher->calls, 2);
    [view mouseExited:gui_test::mouseEvent(window, NSMouseMoved, NSMakePoint(500, 50))];
    EXPECT_EQ([view cursor], std::nullopt);
    EXPECT_EQ(watcher->calls, 3);
}

TEST_F(WaveformViewTest, FramesLieWhereTheyAreDrawn)
{
    show(1);
    EXPECT_EQ([view xOfFrame:0], 0);
    EXPECT_EQ([view xOfFrame:250], 100);
    EXPECT_EQ([view xOfFrame:1000], 400);
}

} // namespace
