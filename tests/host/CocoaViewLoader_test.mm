#import "host/effect/EffectProbe.h"
#import "host/effect/TarvelEffect.h"
#import "host/loader/CocoaViewLoader.h"

#import "GuiTest.h"

#include <gmock/gmock.h>

using namespace host;
using testing::ElementsAre;

namespace {

class CocoaViewLoaderTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        effect.setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory"});
    }

    CocoaView open() { return openCocoaView(&effect, NSMakeSize(400, 300)); }

    /// Why the view of that class does not open.
    std::string problemOf(const char* className)
    {
        effect.setViewBundle(TEST_VIEW_BUNDLE, {className});
        return problem();
    }

    std::string problem()
    {
        const CocoaView opened = open();
        EXPECT_EQ(opened.view, nil);
        EXPECT_EQ(effect.outstandingReferences(), 0U);
        return opened.problem == nil ? "none" : [opened.problem UTF8String];
    }

    TarvelEffect effect;
};

} // namespace

TEST_F(CocoaViewLoaderTest, OpensTheViewOfTheFirstClass)
{
    effect.setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory", "HostTestNilView"});
    @autoreleasepool {
        const CocoaView opened = open();
        ASSERT_NE(opened.view, nil) << [opened.problem UTF8String];
        EXPECT_EQ(opened.problem, nil);
        EXPECT_TRUE([opened.name isEqual:@"Test View"]);
        EXPECT_TRUE(NSEqualRects([opened.view frame], NSMakeRect(7, 8, 320, 200)));
    }
    EXPECT_EQ(effect.outstandingReferences(), 0U);
}

TEST_F(CocoaViewLoaderTest, AsksForSizeThenValue)
{
    effect.setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory", "Second"});
    EffectProbe probe;
    open();
    EXPECT_THAT(probe.log().take(), ElementsAre("AudioUnitGetPropertyInfo 31 global/0",
                                                "AudioUnitGetProperty 31 global/0 size 24"));
}

TEST_F(CocoaViewLoaderTest, EachCallGivesANewView) { EXPECT_NE(open().view, open().view); }

TEST_F(CocoaViewLoaderTest, EffectWithoutAView)
{
    constexpr const char* kExpected = "The effect offers no view of its own.";
    effect.setViewBundle(TEST_VIEW_BUNDLE, {});
    EXPECT_EQ(problem(), kExpected);
    effect.setViewBundle(TEST_VIEW_BUNDLE, {"HostTestViewFactory"});
    EffectProbe probe;
    probe.inject({.function = "AudioUnitGetProperty", .id = 31});
    EXPECT_EQ(problem(), kExpected);
}

TEST_F(CocoaViewLoaderTest, MissingBundle)
{
    effect.setViewBundle("/nowhere/Gone.bundle", {"HostTestViewFactory"});
    EXPECT_EQ(problem(), "There is no bundle at “/nowhere/Gone.bundle”.");
}

TEST_F(CocoaViewLoaderTest, FaultsOfTheFactory)
{
    struct Row {
        const char* className;
        const char* expected;
    };
    const Row rows[] = {
        {"HostTestGone", "The bundle “HostTestView.bundle” has no class “HostTestGone”."},
        {"HostTestNoProtocol", "The class “HostTestNoProtocol” is no view factory."},
        {"HostTestNoMethod", "The class “HostTestNoMethod” is no view factory."},
        {"HostTestNilFactory", "The view factory “HostTestNilFactory” could not be made."},
        {"HostTestNewerInterface",
         "The view factory “HostTestNewerInterface” follows an interface this host does not know."},
        {"HostTestNilView", "The view factory “HostTestNilView” gave no view."},
        {"HostTestNoView", "The view factory “HostTestNoView” gave no view."},
        {"HostTestRaises", "The view could not be opened: "
                           "NSInternalInconsistencyException: no window today."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(problemOf(row.className), row.expected);
    }
}
