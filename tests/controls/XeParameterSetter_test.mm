#import "XeParameterSetter.h"

#import "EffectLog.h"
#import "GuiTest.h"
#import "SliderProbe.h"
#import "XeSlider.h"

#include <gmock/gmock.h>

#include <cstring>
#include <vector>

using gui_test::drag;
using testing::ElementsAre;
using testing::IsEmpty;

/// Sends what a slider shows to a parameter, as an editor's action does.
@interface SliderWriter : NSObject {
    XeParameterSetter* m_setter; // not owned
    UInt32 m_parameter;
}
- (id)initWithSetter:(XeParameterSetter*)setter parameter:(UInt32)parameter;
- (void)sliderMoved:(id)sender;
@end

@implementation SliderWriter

- (id)initWithSetter:(XeParameterSetter*)setter parameter:(UInt32)parameter
{
    self = [super init];
    m_setter = setter;
    m_parameter = parameter;
    return self;
}

- (void)sliderMoved:(id)sender
{
    [m_setter setParameter:m_parameter toValue:[sender doubleValue] fromObject:sender];
}

@end

namespace {

constexpr const char* kEventEncoding = "{AudioUnitEvent=I(?={AudioUnitParameter=^{"
                                       "ComponentInstanceRecord}III}{AudioUnitProperty=^{"
                                       "ComponentInstanceRecord}III})}";
constexpr UInt32 kHighId = 0xFFFFFFFE;
constexpr UInt32 kUnknownId = 3;

// A setter for parameters 1, 2, 7 and 0xFFFFFFFE, a text field, and two sliders of which only
// the first is attached, to parameter 1.
class ParameterSetter : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_pool = [[NSAutoreleasePool alloc] init];
        const UInt32 ids[] = {1, 2, 7, kHighId};
        m_setter = [[XeParameterSetter alloc] initWithAudioUnit:m_log.effect()
                                                       listener:m_log.listener()
                                                   parameterIds:ids
                                                       andCount:4];
        m_field = [[NSTextField alloc] initWithFrame:NSMakeRect(20, 60, 80, 24)];
        m_slider = makeSlider();
        m_other = makeSlider();
        [m_setter addXeSlider:m_slider forParameter:1];
        m_log.name(m_field, "field");
        m_log.name(m_slider, "slider");
        m_log.name(m_other, "other");
    }

    void TearDown() override
    {
        [m_setter release];
        [m_slider release];
        [m_other release];
        [m_field release];
        [m_pool drain];
    }

    static XeSlider* makeSlider()
    {
        XeSlider* const slider = [[XeSlider alloc] initWithFrame:NSMakeRect(20, 20, 200, 24)];
        [slider setMinValue:-60];
        [slider setMaxValue:0];
        return slider;
    }

    static void post(NSString* name, id object)
    {
        [[NSNotificationCenter defaultCenter] postNotificationName:name object:object];
    }

    static void postDrag(id slider)
    {
        post(@"XeSliderMouseDownNotification", slider);
        post(@"XeSliderMouseUpNotification", slider);
    }

    Float32 value(UInt32 parameter, UInt32 scope = 0, UInt32 element = 0)
    {
        return m_log.effect()->values().at({parameter, scope, element});
    }

    void releaseSetter()
    {
        [m_setter release];
        m_setter = nil;
    }

    EffectLog m_log;
    XeParameterSetter* m_setter = nil;
    NSTextField* m_field = nil;
    XeSlider* m_slider = nil;
    XeSlider* m_other = nil;

private:
    NSAutoreleasePool* m_pool = nil;
};

// --- writes --------------------------------------------------------------------------------------

TEST_F(ParameterSetter, WriteFromAFieldIsAWholeGesture)
{
    [m_setter setParameter:7 toValue:12.5f fromObject:m_field];
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify begin-gesture 7 from field",
                                          "AUParameterSet 7 12.5 from field",
                                          "AUEventListenerNotify end-gesture 7 from field"));
    EXPECT_EQ(value(7), 12.5f);
}

TEST_F(ParameterSetter, WriteFromAnAttachedSliderIsTheValueAlone)
{
    [m_setter setParameter:1 toValue:-6 fromObject:m_slider];
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 1 -6 from slider"));
    EXPECT_EQ(value(1), -6);
}

// Being attached at all counts, not to which parameter.
TEST_F(ParameterSetter, WriteOfAnotherParameterFromAnAttachedSliderIsTheValueAloneToo)
{
    [m_setter setParameter:2 toValue:-6 fromObject:m_slider];
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 2 -6 from slider"));
}

TEST_F(ParameterSetter, WriteFromASliderThatIsNotAttachedIsAWholeGesture)
{
    [m_setter setParameter:1 toValue:-6 fromObject:m_other];
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify begin-gesture 1 from other",
                                          "AUParameterSet 1 -6 from other",
                                          "AUEventListenerNotify end-gesture 1 from other"));
}

TEST_F(ParameterSetter, WriteFromNobodyIsAWholeGesture)
{
    [m_setter setParameter:1 toValue:-6 fromObject:nil];
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify begin-gesture 1 from nobody",
                                          "AUParameterSet 1 -6 from nobody",
                                          "AUEventListenerNotify end-gesture 1 from nobody"));
}

TEST_F(ParameterSetter, IdsAreUnsignedThirtyTwoBits)
{
    [m_setter setParameter:kHighId toValue:1 fromObject:m_slider];
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 4294967294 1 from slider"));
}

TEST_F(ParameterSetter, ValuesAreNotClamped)
{
    [m_setter setParameter:1 toValue:1e6f fromObject:m_field];
    EXPECT_EQ(value(1), 1e6f);
}

TEST_F(ParameterSetter, UnknownIdSendsAndSetsNothing)
{
    [m_setter addXeSlider:m_other forParameter:kUnknownId];
    for (const id sender :
         {static_cast<id>(m_field), static_cast<id>(m_slider), static_cast<id>(m_other)}) {
        [m_setter setParameter:kUnknownId toValue:1 fromObject:sender];
        [m_setter setParameter:kUnknownId toValue:1 fromObject:sender forElement:1 withScope:2];
    }
    EXPECT_THAT(m_log.take(), IsEmpty());
    EXPECT_THAT(m_log.effect()->values(), IsEmpty());
}

TEST_F(ParameterSetter, OfNoIdsWritesNothing)
{
    XeParameterSetter* const setter = [[[XeParameterSetter alloc] initWithAudioUnit:m_log.effect()
                                                                           listener:m_log.listener()
                                                                       parameterIds:nullptr
                                                                           andCount:0] autorelease];
    ASSERT_NE(setter, nil);
    for (const UInt32 parameter : {0u, 1u}) {
        [setter setParameter:parameter toValue:1 fromObject:m_field];
    }
    EXPECT_THAT(m_log.take(), IsEmpty());
}

TEST_F(ParameterSetter, OtherScopeOrElementIsSetDirectlyAndThenAnnounced)
{
    // clang-format off
    const struct { UInt32 element, scope; const char* direct; } rows[] = {
        { 1, 0, "AudioUnitSetParameter 2 0.5 scope 0 element 1" },
        { 0, 1, "AudioUnitSetParameter 2 0.5 scope 1 element 0" },
        { 3, 2, "AudioUnitSetParameter 2 0.5 scope 2 element 3" },
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.direct);
        [m_setter setParameter:2
                       toValue:0.5f
                    fromObject:m_field
                    forElement:row.element
                     withScope:row.scope];
        // Gestures and announcement name scope 0 and element 0, or the lines would tell.
        EXPECT_THAT(m_log.take(),
                    ElementsAre("AUEventListenerNotify begin-gesture 2 from field", row.direct,
                                "AUEventListenerNotify value-change 2 from field",
                                "AUEventListenerNotify end-gesture 2 from field"));
        EXPECT_EQ(value(2, row.scope, row.element), 0.5f);
    }
}

TEST_F(ParameterSetter, OtherScopeFromAnAttachedSliderHasNoGesture)
{
    [m_setter setParameter:1 toValue:-3 fromObject:m_slider forElement:0 withScope:1];
    EXPECT_THAT(m_log.take(), ElementsAre("AudioUnitSetParameter 1 -3 scope 1 element 0",
                                          "AUEventListenerNotify value-change 1 from slider"));
}

TEST_F(ParameterSetter, ScopeAndElementZeroIsTheShortForm)
{
    [m_setter setParameter:2 toValue:-3 fromObject:m_slider forElement:0 withScope:0];
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 2 -3 from slider"));
}

TEST_F(ParameterSetter, RefusedWriteStillEndsItsGesture)
{
    m_log.failCallsWith(kAudioUnitErr_InvalidParameter);
    [m_setter setParameter:1 toValue:-3 fromObject:m_field];
    EXPECT_EQ(m_log.take().back(), "AUEventListenerNotify end-gesture 1 from field");
    [m_setter setParameter:1 toValue:-3 fromObject:m_field forElement:1 withScope:0];
    EXPECT_EQ(m_log.take().back(), "AUEventListenerNotify end-gesture 1 from field");
}

// The prototype a write starts from is never changed by it.
TEST_F(ParameterSetter, WritesDoNotDisturbEachOther)
{
    for (int i = 0; i < 3; ++i) {
        [m_setter setParameter:1 toValue:-3 fromObject:m_field forElement:1 withScope:1];
        m_log.take();
        [m_setter setParameter:1 toValue:-3 fromObject:m_slider];
        EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 1 -3 from slider"));
    }
}

// --- prototypes ----------------------------------------------------------------------------------

TEST_F(ParameterSetter, KeepsOnePrototypeEventOfEachParameter)
{
    NSDictionary* const events = [m_setter valueForKey:@"m_events"];
    ASSERT_EQ([events count], 4u);
    for (const UInt32 parameter : {1u, 2u, 7u, kHighId}) {
        SCOPED_TRACE(parameter);
        NSValue* const boxed = [events objectForKey:@(parameter)];
        ASSERT_NE(boxed, nil);
        EXPECT_STREQ([boxed objCType], kEventEncoding);
        AudioUnitEvent event;
        std::memset(&event, 0xAA, sizeof event);
        [boxed getValue:&event];
        EXPECT_EQ(event.mEventType, 0u);
        EXPECT_EQ(event.mArgument.mParameter.mAudioUnit, m_log.effect());
        EXPECT_EQ(event.mArgument.mParameter.mParameterID, parameter);
        EXPECT_EQ(event.mArgument.mParameter.mScope, 0u);
        EXPECT_EQ(event.mArgument.mParameter.mElement, 0u);
    }
}

// --- gestures of sliders -------------------------------------------------------------------------

TEST_F(ParameterSetter, SliderNotificationsBeginAndEndTheGesture)
{
    post(@"XeSliderMouseDownNotification", m_slider);
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify begin-gesture 1 from slider"));
    post(@"XeSliderMouseUpNotification", m_slider);
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify end-gesture 1 from slider"));
}

TEST_F(ParameterSetter, OtherSlidersBeginNoGesture)
{
    postDrag(m_other);
    postDrag(nil);
    EXPECT_THAT(m_log.take(), IsEmpty());
}

TEST_F(ParameterSetter, NotificationOfAStrangerIsPassedOver)
{
    NSNotification* const notification = [NSNotification notificationWithName:@"any"
                                                                       object:m_other];
    [m_setter handleSliderMouseDown:notification];
    [m_setter handleSliderMouseUp:notification];
    EXPECT_THAT(m_log.take(), IsEmpty());
}

TEST_F(ParameterSetter, SliderOfAnUnknownIdBeginsNoGesture)
{
    [m_setter addXeSlider:m_other forParameter:kUnknownId];
    postDrag(m_other);
    EXPECT_THAT(m_log.take(), IsEmpty());
}

TEST_F(ParameterSetter, EachSliderHasItsOwnGesture)
{
    [m_setter addXeSlider:m_other forParameter:2];
    postDrag(m_slider);
    postDrag(m_other);
    EXPECT_THAT(m_log.take(), ElementsAre("AUEventListenerNotify begin-gesture 1 from slider",
                                          "AUEventListenerNotify end-gesture 1 from slider",
                                          "AUEventListenerNotify begin-gesture 2 from other",
                                          "AUEventListenerNotify end-gesture 2 from other"));
}

// Each attachment observes the slider once more; all of them speak of the highest ID.
TEST_F(ParameterSetter, SliderOfSeveralParametersGesturesTheHighest)
{
    for (const UInt32 parameter : {2u, kHighId, 7u}) {
        [m_setter addXeSlider:m_other forParameter:parameter];
    }
    post(@"XeSliderMouseDownNotification", m_other);
    const char* const begin = "AUEventListenerNotify begin-gesture 4294967294 from other";
    EXPECT_THAT(m_log.take(), ElementsAre(begin, begin, begin));
}

TEST_F(ParameterSetter, ReplacedSliderIsAttachedNoMore)
{
    [m_setter addXeSlider:m_other forParameter:1];
    postDrag(m_slider);
    EXPECT_THAT(m_log.take(), IsEmpty());
    [m_setter setParameter:1 toValue:-3 fromObject:m_slider];
    EXPECT_EQ(m_log.take().size(), 3u);
    [m_setter setParameter:1 toValue:-3 fromObject:m_other];
    EXPECT_EQ(m_log.take().size(), 1u);
}

TEST_F(ParameterSetter, IsGoneFromTheNotificationCentreWhenReleased)
{
    releaseSetter();
    postDrag(m_slider);
    EXPECT_THAT(m_log.take(), IsEmpty());
}

TEST_F(ParameterSetter, LetsItsSlidersGoWhenReleased)
{
    const NSUInteger attached = [m_slider retainCount];
    releaseSetter();
    EXPECT_EQ([m_slider retainCount], attached - 1);
}

// --- with the mouse and the keyboard -------------------------------------------------------------

class ParameterSetterInAWindow : public ParameterSetter {
protected:
    void SetUp() override
    {
        ParameterSetter::SetUp();
        if (IsSkipped()) {
            return;
        }
        m_window = gui_test::makeWindow(NSMakeSize(240, 100));
        [[m_window contentView] addSubview:m_slider];
        m_writer = [[SliderWriter alloc] initWithSetter:m_setter parameter:1];
        [m_slider setDoubleValue:-30];
        [m_slider setTarget:m_writer];
        [m_slider setAction:@selector(sliderMoved:)];
        [m_window makeFirstResponder:m_slider];
        [m_window display];
    }

    void TearDown() override
    {
        [m_slider removeFromSuperview];
        [m_slider setTarget:nil];
        [m_writer release];
        [m_window close];
        [m_window release];
        ParameterSetter::TearDown();
    }

    NSPoint at(double fraction) const
    {
        const NSRect bounds = [m_slider bounds];
        return [m_slider convertPoint:NSMakePoint(bounds.size.width * fraction, NSMidY(bounds))
                               toView:nil];
    }

    NSWindow* m_window = nil;

private:
    SliderWriter* m_writer = nil;
};

TEST_F(ParameterSetterInAWindow, DragIsOneGestureAroundItsValues)
{
    drag(m_window, {at(0.5), at(0.6), at(0.75)});
    const std::vector<std::string> lines = m_log.take();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines.front(), "AUEventListenerNotify begin-gesture 1 from slider");
    EXPECT_EQ(lines.back(), "AUEventListenerNotify end-gesture 1 from slider");
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
        EXPECT_THAT(lines[i], testing::StartsWith("AUParameterSet 1 -"));
    }
    EXPECT_EQ(value(1), static_cast<Float32>([m_slider doubleValue]));
    EXPECT_GT(value(1), -30);
}

TEST_F(ParameterSetterInAWindow, DoubleClickWritesTheDefaultWithoutGesture)
{
    [m_slider setDefaultValue:-18];
    drag(m_window, {at(0.75)}, 2);
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 1 -18 from slider"));
}

TEST_F(ParameterSetterInAWindow, KeyStepWritesTheValueWithoutGesture)
{
    const unichar up = NSUpArrowFunctionKey;
    gui_test::pressKey(m_window, [NSString stringWithCharacters:&up length:1], NSFunctionKeyMask);
    EXPECT_THAT(m_log.take(), ElementsAre("AUParameterSet 1 -29 from slider"));
}

} // namespace
