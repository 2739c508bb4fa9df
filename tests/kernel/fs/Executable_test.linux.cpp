#include "XeFileSystem.h"

#include "ChangedEnvironment.h"
#include "ProgramBeside.linux.h"
#include "TemporaryFolder.h"
#include "XeNativePath.h"
#include "fs/ChildProcess.linux.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A copy of the probe in a folder of its own: path, folder, resource folder and name, as the
/// running copy tells them.
class Executable : public testing::Test {
protected:
    fs::path place(const std::string& name) const
    {
        const fs::path copy = m_folder / name;
        fs::create_directories(copy.parent_path());
        fs::copy_file(besideThisProgram("file_system_probe"), copy);
        return copy;
    }

    std::vector<std::string> ask(const fs::path& program, const std::string& what = "") const
    {
        std::vector<std::string> arguments = {program, "executable", m_folder.path("answer")};
        if (!what.empty()) {
            arguments.push_back(what);
        }
        // The sanitizer's own child loses its way in a path with quotation marks.
        ChangedEnvironment environment;
        environment.set("ASAN_OPTIONS", "symbolize=0");
        EXPECT_EQ(runChildProcess(arguments, m_folder.path()), 0);
        std::ifstream answer(m_folder / "answer");
        std::vector<std::string> lines;
        for (std::string line; std::getline(answer, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    const TemporaryFolder m_folder;
};

using Lines = std::vector<std::string>;

TEST_F(Executable, TellsItsPathsWhateverTheName)
{
    for (const char* name : {"plain/probe", "with space/it's \"it\"", "caf\xC3\xA9/\xE9\xFF",
                             "dots.d/program.name.exe", "marked/probe (deleted)"}) {
        SCOPED_TRACE(name);
        const fs::path program = place(name);
        const std::string folder = program.parent_path();
        EXPECT_EQ(ask(program), (Lines{program, folder, folder, program.filename()}));
    }
}

TEST_F(Executable, ResourcesLieBesideIt)
{
    const fs::path program = place("bin/probe");
    std::ofstream(m_folder / "bin/Resources") << "a file is no folder";
    EXPECT_EQ(ask(program)[2], m_folder.path("bin"));
    fs::remove(m_folder / "bin/Resources");
    fs::create_directory(m_folder / "bin/Resources");
    EXPECT_EQ(ask(program)[2], m_folder.path("bin/Resources"));
}

TEST_F(Executable, ALinkToItIsNotIt)
{
    const fs::path program = place("bin/probe");
    fs::create_symlink(program, m_folder / "link");
    EXPECT_EQ(ask(m_folder / "link")[0], program);
}

TEST_F(Executable, CalledLikeADeletedOneIsStillItself)
{
    place("bin/probe");
    const fs::path program = place("bin/probe (deleted)");
    EXPECT_EQ(ask(program)[0], program);
}

TEST_F(Executable, ReplacedWhileItRunsKeepsItsPath)
{
    const fs::path program = place("bin/probe");
    EXPECT_EQ(ask(program, "replace")[0], program);
}

// The system's mark stays where it is the truth: there is nothing at the plain path.
TEST_F(Executable, DeletedWhileItRunsIsMarked)
{
    const fs::path program = place("bin/probe");
    const Lines lines = ask(program, "unlink");
    EXPECT_EQ(lines[0], program.string() + " (deleted)");
    EXPECT_EQ(lines[1], m_folder.path("bin"));
    EXPECT_EQ(lines[3], "probe (deleted)");
}

TEST(ExecutableHere, IsThisProgram)
{
    const fs::path program = fs::read_symlink("/proc/self/exe");
    _XeString<wchar_t> text;
    EXPECT_EQ(XeFileSystem::getExecutablePath(text), 0);
    EXPECT_EQ(xenon::path::toNative(text).value(), program.native());
    EXPECT_EQ(XeFileSystem::getExecutableFolder(text), 0);
    EXPECT_EQ(xenon::path::toNative(text).value(), program.parent_path().native());
    EXPECT_EQ(XeFileSystem::getExecutableName(text), 0);
    EXPECT_EQ(xenon::path::toNative(text).value(), program.filename().native());
}

} // namespace
