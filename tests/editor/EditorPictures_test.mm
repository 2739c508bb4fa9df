#import "EditorTest.h"

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
        EXPECT_TRUE(editor_test::savePicture(editor().view(), folder / (name + ".png")));
    }
};

TEST_F(EditorPictures, EachFunctionMode)
{
    open();
    for (int mode = 0; mode < 4; ++mode) {
        automateAndDeliver(kTarvelParam_Function, static_cast<float>(mode));
        save("editor-mode-" + std::to_string(mode));
    }
}

} // namespace
