#include "SourceTree.h"
#include "TemporaryTree.h"

#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Layering, NoIncludePointsAgainstTheDirectionOfDependencies)
{
    const SourceTree tree(TARVEL_SOURCE_DIR);
    ASSERT_THAT(tree.headersIn("shared/XeKernel/inc/"), Contains("shared/XeKernel/inc/XeString.h"));
    EXPECT_THAT(tree.forbiddenIncludes(), IsEmpty());
}

// The set-up object must exist before any static of the unit, in whatever order units are loaded.
TEST(Layering, EveryKernelSourceCarriesTheSetUpObject)
{
    const SourceTree tree(TARVEL_SOURCE_DIR);
    EXPECT_THAT(tree.sourcesWithout("shared/XeKernel/", "shared/XeKernel/inc/XeSafeCRT.h"),
                IsEmpty());
}

// ---- the check itself, on small trees ----

const std::map<std::string, std::string> kHeaders = {
    {"compat/linux/inc/AudioUnit/AudioUnit.h", ""},
    {"compat/linux/inc/AudioUnit/AUCocoaUIView.h", "#import <AppKit/AppKit.h>\n"},
    {"compat/linux/inc/AudioUnitCompat/Testing.h", ""},
    {"compat/linux/src/Registry.h", ""},
    {"shared/XeKernel/inc/XeString.h", ""},
    {"shared/XeKernel/core/XePrivate.h", ""},
    {"shared/XeControls/Slider/XeSlider.h", ""},
    {"AudioPlugins/xenon/Tarvel/Tarvel/TarvelParameters.h", ""},
    {"host/effect/TarvelEffect.h", ""},
    {"host/app/AppWindow.h", ""},
};

struct Arrow {
    const char* file;
    const char* include;
};

std::vector<std::string> forbiddenWith(const Arrow& arrow)
{
    auto files = kHeaders;
    files[arrow.file] = std::string("#include ") + arrow.include + "\n";
    return SourceTree(TemporaryTree(files).root()).forbiddenIncludes();
}

TEST(LayeringCheck, FindsEveryArrowThatTurnsRound)
{
    const Arrow kRows[] = {
        // the kernel uses nothing above it
        {"shared/XeKernel/core/a.cpp", "\"XeSlider.h\""},
        {"shared/XeKernel/core/a.cpp", "\"TarvelParameters.h\""},
        {"shared/XeKernel/core/a.cpp", "\"effect/TarvelEffect.h\""},
        {"shared/XeKernel/core/a.mm", "<AppKit/AppKit.h>"},
        {"shared/XeKernel/inc/a.h", "<Cocoa/Cocoa.h>"},
        {"shared/XeKernel/core/a.mm", "<AudioUnit/AUCocoaUIView.h>"},
        {"shared/XeKernel/core/a.cpp", "<AudioUnitCompat/Testing.h>"},
        // a public header keeps private ones out
        {"shared/XeKernel/inc/a.h", "\"core/XePrivate.h\""},
        // the controls do not know the editor or the host, and the kernel only from outside
        {"shared/XeControls/Slider/a.mm", "\"TarvelParameters.h\""},
        {"shared/XeControls/Slider/a.mm", "\"TarvelEffect.h\""},
        {"shared/XeControls/Slider/a.mm", "\"core/XePrivate.h\""},
        {"shared/XeControls/Slider/a.mm", "<AudioUnitCompat/Testing.h>"},
        // the editor knows no host
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "\"TarvelEffect.h\""},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "\"../../../../host/effect/TarvelEffect.h\""},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "\"core/XePrivate.h\""},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "<AudioUnitCompat/Testing.h>"},
        // the host knows neither editor nor controls, and only its application the kernel
        {"host/effect/a.cpp", "\"TarvelParameters.h\""},
        {"host/effect/a.cpp", "\"XeString.h\""},
        {"host/loader/a.mm", "\"XeSlider.h\""},
        {"host/loader/a.mm", "\"XeString.h\""},
        {"host/loader/a.mm", "\"app/AppWindow.h\""},
        {"host/app/a.mm", "\"TarvelParameters.h\""},
        {"host/app/a.mm", "\"XeSlider.h\""},
        {"host/app/a.mm", "\"core/XePrivate.h\""},
        // the compatibility layer stands below all
        {"compat/linux/src/a.cpp", "\"XeString.h\""},
        {"compat/linux/src/a.cpp", "\"TarvelEffect.h\""},
        {"compat/linux/src/a.mm", "<AppKit/AppKit.h>"},
        {"compat/linux/inc/AudioUnit/a.h", "<AudioUnitCompat/Testing.h>"},
    };
    for (const Arrow& row : kRows) {
        SCOPED_TRACE(std::string(row.file) + " includes " + row.include);
        EXPECT_EQ(forbiddenWith(row).size(), 1u);
    }
}

TEST(LayeringCheck, LetsTheOtherArrowsStand)
{
    const Arrow kRows[] = {
        {"shared/XeKernel/core/a.cpp", "\"XeString.h\""},
        {"shared/XeKernel/core/a.cpp", "\"core/XePrivate.h\""},
        {"shared/XeKernel/core/a.cpp", "<AudioUnit/AudioUnit.h>"},
        {"shared/XeKernel/core/a.mm", "<Foundation/Foundation.h>"},
        {"shared/XeControls/Slider/a.mm", "\"XeString.h\""},
        {"shared/XeControls/Slider/a.mm", "<AppKit/AppKit.h>"},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "\"Slider/XeSlider.h\""},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "\"XeString.h\""},
        {"AudioPlugins/xenon/Tarvel/Tarvel/a.mm", "<AudioUnit/AUCocoaUIView.h>"},
        {"host/effect/a.cpp", "<AudioUnitCompat/Testing.h>"},
        {"host/loader/a.mm", "\"TarvelEffect.h\""},
        {"host/app/a.mm", "\"XeString.h\""},
        {"host/app/a.mm", "\"TarvelEffect.h\""},
        {"compat/linux/src/a.cpp", "\"Registry.h\""},
    };
    for (const Arrow& row : kRows) {
        SCOPED_TRACE(std::string(row.file) + " includes " + row.include);
        EXPECT_THAT(forbiddenWith(row), IsEmpty());
    }
}

TEST(LayeringCheck, ReadsEveryFormOfAnIncludeLine)
{
    for (const char* line : {"#import \"XeSlider.h\"", "#include <XeSlider.h>",
                             "  #include \"XeSlider.h\"", "#  import   \"XeSlider.h\" // why"}) {
        SCOPED_TRACE(line);
        auto files = kHeaders;
        files["host/effect/a.mm"] = std::string("// first line\n") + line + "\n";
        EXPECT_THAT(SourceTree(TemporaryTree(files).root()).forbiddenIncludes(),
                    ElementsAre("host/effect/a.mm includes shared/XeControls/Slider/XeSlider.h"));
    }
}

TEST(LayeringCheck, FindsSourcesWithoutAHeaderTheyNeed)
{
    const TemporaryTree files({
        {"shared/XeKernel/inc/XeSafeCRT.h", ""},
        {"shared/XeKernel/inc/XeString.h", "#include \"XeSafeCRT.h\"\n"},
        {"shared/XeKernel/core/direct.cpp", "#include \"XeSafeCRT.h\"\n"},
        {"shared/XeKernel/core/indirect.cpp", "#include \"XeString.h\"\n"},
        {"shared/XeKernel/core/without.cpp", "#include <string>\n"},
        {"host/effect/without.cpp", ""},
    });
    EXPECT_THAT(SourceTree(files.root())
                    .sourcesWithout("shared/XeKernel/", "shared/XeKernel/inc/XeSafeCRT.h"),
                ElementsAre("shared/XeKernel/core/without.cpp"));
}

} // namespace
