#import "host/app/HelpWindow.h"

#import "GuiTest.h"
#import "host/app/HelpText.h"

#include <XeHelp.h>
#include <gmock/gmock.h>

#include <string>

using namespace host;

namespace {

bool mentions(int topic, const std::string& word)
{
    for (const HelpParagraph& paragraph : helpPage(topic)) {
        if (std::string(paragraph.term).find(word) != std::string::npos ||
            std::string(paragraph.text).find(word) != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST(HelpText, EditorPageExplainsEveryControlAndItsKeys)
{
    for (const char* word : {"Trim Start and End",
                             "Remove Silence",
                             "Crop",
                             "Fades Only",
                             "Attack",
                             "Release",
                             "dB",
                             "percent",
                             "Fade in",
                             "fade out",
                             "Curve",
                             "Minimum silence",
                             "Crop start",
                             "crop length",
                             "Right-click",
                             "Arrows",
                             "Page Up",
                             "Home",
                             "Double-click",
                             "Escape",
                             "Tab",
                             "Up, Down, wheel",
                             "Menu key",
                             "Return, space"}) {
        EXPECT_TRUE(mentions(kEditorTopic, word)) << word;
    }
}

TEST(HelpText, StartPageListsTheShortcuts)
{
    for (const char* word : {"Super+O", "Super+E", "Super+Z", "Super+Shift+Z", "Super+T", "Super+?",
                             "Super+W", "Super+Q"}) {
        EXPECT_TRUE(mentions(kStartTopic, word)) << word;
    }
}

TEST(HelpText, UnknownTopicGivesTheStartPage)
{
    EXPECT_EQ(&helpPage(4711), &helpPage(kStartTopic));
    EXPECT_NE(&helpPage(kEditorTopic), &helpPage(kStartTopic));
}

class HelpWindowTest : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        help = [[HelpWindow alloc] init];
    }
    void TearDown() override { [help release]; }

    HelpWindow* help = nil;
};

TEST_F(HelpWindowTest, OpensThePageThatAnyoneAsksFor)
{
    EXPECT_EQ([help window], nil);
    XeHelp::Goto(11, nullptr);
    ASSERT_NE([help window], nil);
    EXPECT_TRUE([[help window] isVisible]);
    EXPECT_EQ([help topic], 11);
    EXPECT_TRUE([[help text] hasPrefix:@"The editor\n"]);
    XeHelp::GotoHome();
    EXPECT_EQ([help topic], -1);
    EXPECT_TRUE([[help text] hasPrefix:@"Tarvel\n"]);
}

TEST_F(HelpWindowTest, HasNoEmptyPlaceWhereItsTextIs)
{
    [help showTopic:kEditorTopic];
    NSString* const text = [help text];
    for (const HelpParagraph& paragraph : helpPage(kEditorTopic)) {
        EXPECT_NE([text rangeOfString:[NSString stringWithUTF8String:paragraph.text]].location,
                  static_cast<NSUInteger>(NSNotFound));
    }
}

TEST_F(HelpWindowTest, NoLongerListensOnceItIsGone)
{
    [help release];
    help = nil;
    XeHelp::Goto(11, nullptr); // would end the test in a dead object
}

} // namespace
