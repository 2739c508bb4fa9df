#import "EditorTest.h"

#include <cstdlib>
#include <filesystem>

namespace {

using editor_test::EditorTest;

// Pictures of the face in its states, for people to look at; in the folder named by
// EDITOR_PICTURES, else beside the test program's other output.
class EditorPictures : public EditorTest {
protected:
    void save(const std::string& name)
    {
        const char* const chosen = std::getenv("EDITOR_PICTURES");
        const std::filesystem::path folder = chosen != nullptr ? chosen : EDITOR_PICTURE_FOLDER;
        std::filesystem::create_directories(folder);
        gui_test::pump(0.05);
        EXPECT_TRUE(
            editor_test::savePicture(editor().view(), folder / ("editor-" + name + ".png")));
    }

    void focus(const char* name) { [editor().window() makeFirstResponder:editor().outlet(name)]; }
};

TEST_F(EditorPictures, EachFunctionMode)
{
    open();
    const char* const names[] = {"trim", "remove-silence", "crop", "fades-only"};
    for (int mode = 0; mode < 4; ++mode) {
        automateAndDeliver(kTarvelParam_Function, static_cast<float>(mode));
        save(names[mode]);
    }
}

TEST_F(EditorPictures, ThresholdsInBothUnits)
{
    open();
    automateAndDeliver(kTarvelParam_AttackThreshold, -60);
    automateAndDeliver(kTarvelParam_ReleaseThreshold, -18.25F);
    save("minus-infinity");
    editor().click("gainUnitsButtons", 0.4);
    save("percent");
}

TEST_F(EditorPictures, EachCurveAndSomeFormats)
{
    open();
    automateAndDeliver(kTarvelParam_Function, 2);
    for (int curve = 0; curve < 5; ++curve) {
        const int format[] = {0, 8, 5, 15, 2};
        automateAndDeliver(kTarvelParam_FadeInType, static_cast<float>(curve));
        automateAndDeliver(kTarvelParam_FadeOutType, static_cast<float>(4 - curve));
        setTimeFormat(static_cast<UInt32>(format[curve]));
        deliver();
        save("format-" + std::to_string(format[curve]));
    }
}

TEST_F(EditorPictures, FocusOnEachKindOfControl)
{
    open();
    automateAndDeliver(kTarvelParam_Function, 2);
    for (const char* name :
         {"functionPopupButton", "gainUnitsButtons", "attackSlider", "attackTextField",
          "fadeInTypePopupButton", "cropStartTextField", "cropLengthStepper"}) {
        focus(name);
        save(std::string("focus-") + name);
    }
    for (NSControl* control in [editor().view() subviews]) {
        if (sel_isEqual([control action], @selector(helpButtonClicked:))) {
            [editor().window() makeFirstResponder:control];
        }
    }
    save("focus-help");
}

} // namespace
