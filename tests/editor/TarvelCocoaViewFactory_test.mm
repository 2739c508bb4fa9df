#import "EditorTest.h"

#include "host/loader/CocoaViewLoader.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

using editor_test::EditorTest;
using editor_test::ivar;
using editor_test::newFactory;
using testing::HasSubstr;

class Factory : public EditorTest {};

TEST_F(Factory, FollowsTheViewProtocol)
{
    TarvelCocoaViewFactory* const factory = newFactory();
    ASSERT_NE(factory, nil);
    EXPECT_TRUE([factory conformsToProtocol:NSProtocolFromString(@"AUCocoaUIBase")]);
    EXPECT_EQ([factory interfaceVersion], 0u);
    EXPECT_STREQ([[factory description] UTF8String], " Cocoa View");
}

TEST_F(Factory, GivesANewBoundViewForEachCall)
{
    TarvelCocoaViewFactory* const factory = newFactory();
    NSView* const first = [factory uiViewForAudioUnit:&effect() withSize:NSZeroSize];
    NSView* const second = [factory uiViewForAudioUnit:&effect() withSize:NSMakeSize(900, 900)];
    ASSERT_NE(first, nil);
    EXPECT_STREQ([[first className] UTF8String], "TarvelCocoaView");
    EXPECT_NE(first, second);
    EXPECT_EQ(ivar<AudioUnit>(first, "mAU"), &effect());
    EXPECT_TRUE(NSEqualRects([first frame], [second frame])); // the size asked for does not matter
}

TEST_F(Factory, KeepsNoReferenceToItsViews)
{
    TarvelCocoaViewFactory* const factory = newFactory();
    @autoreleasepool {
        EXPECT_NE([factory uiViewForAudioUnit:&effect() withSize:NSZeroSize], nil);
        EXPECT_EQ(ivar<id>(factory, "uiFreshlyLoadedView"), nil);
        EXPECT_EQ(audiounit_compat::liveListenerCount(), 1u);
    }
    EXPECT_EQ(audiounit_compat::liveListenerCount(), 0u); // its dealloc has run
}

TEST_F(Factory, MayGoBeforeItsView)
{
    NSView* view = nil;
    @autoreleasepool {
        view = [[newFactory() uiViewForAudioUnit:&effect() withSize:NSZeroSize] retain];
    }
    automateAndDeliver(kTarvelParam_AttackThreshold, -7);
    EXPECT_EQ([[view valueForKey:@"attackSlider"] doubleValue], -7);
    [view release];
}

TEST_F(Factory, IsFoundByAHostThroughTheEffectsOwnProperty)
{
    effect().setViewBundle(EDITOR_BUNDLE, {"TarvelCocoaViewFactory"});
    @autoreleasepool {
        const host::CocoaView opened = host::openCocoaView(&effect(), NSMakeSize(1, 1));
        ASSERT_NE(opened.view, nil) << [opened.problem UTF8String];
        EXPECT_STREQ([opened.name UTF8String], " Cocoa View");
        EXPECT_GT([opened.view frame].size.width, 1);
    }
    EXPECT_EQ(effect().outstandingReferences(), 0u);
}

// --- a bundle without the interface description --------------------------------------------------

std::string readAll(const std::filesystem::path& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

std::size_t occurrences(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// A process has the bundle's classes from one path only, so the one that lacks its description is
// opened by the same test in a process of its own.
TEST_F(Factory, WithoutDescriptionGivesNilAndLogsOnce)
{
    if (std::getenv("EDITOR_TEST_BUNDLE") != nullptr) {
        log().take();
        EXPECT_EQ([newFactory() uiViewForAudioUnit:&effect() withSize:NSZeroSize], nil);
        EXPECT_THAT(log().take(), testing::IsEmpty()); // nothing is bound
        return;
    }
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("editor_test-" + std::to_string(getpid()));
    const fs::path bundle = folder / "Tarvel.bundle";
    fs::create_directories(folder);
    fs::copy(EDITOR_BUNDLE, bundle, fs::copy_options::recursive);
    ASSERT_TRUE(fs::remove(bundle / "Resources" / "TarvelCocoaView.xib"));

    const fs::path output = folder / "output";
    const std::string command = "EDITOR_TEST_BUNDLE='" + bundle.string() +
                                "' timeout -s KILL 60 '" +
                                fs::read_symlink("/proc/self/exe").string() +
                                "' --gtest_filter=Factory.WithoutDescriptionGivesNilAndLogsOnce"
                                " </dev/null >'" +
                                output.string() + "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    const std::string text = readAll(output);
    EXPECT_THAT(text, HasSubstr("1 test from 1 test suite ran")) << text;
    EXPECT_EQ(occurrences(text, "Unable to load nib for view."), 1u) << text;
    fs::remove_all(folder);
}

} // namespace
