#include "XeFileSystem.h"

#include "HardPaths.h"
#include "InChild.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "SmallVolume.linux.h"
#include "TemporaryFolder.h"
#include "WidePath.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kRefused = static_cast<XeResult>(0x80000008);

XeResult trash(const fs::path& path) { return XeFileSystem::moveFileToTrash(wide(path).c_str()); }

/// A home folder of its own with a trash. GLib reads the environment once, so whatever trashes does
/// so in a child process.
class Trash : public testing::Test {
protected:
    Trash()
    {
        fs::create_directories(m_home / "data");
        fs::create_directory(m_home / "items");
    }

    template <typename Body>
    void inHome(Body body) const
    {
        inChild([&] {
            useHome();
            body();
        });
    }

    void useHome() const
    {
        setenv("HOME", m_home.path().c_str(), 1);
        setenv("XDG_DATA_HOME", m_home.path("data").c_str(), 1);
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    std::string write(const std::string& name, const std::string& bytes = "x") const
    {
        return m_home.write("items/" + name, bytes);
    }

    static bool isThere(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

    std::vector<std::string> trashed() const
    {
        return isThere(m_home / "data/Trash/files") ? m_home.names("data/Trash/files")
                                                    : std::vector<std::string>();
    }
    std::vector<std::string> notes() const
    {
        return isThere(m_home / "data/Trash/info") ? m_home.names("data/Trash/info")
                                                   : std::vector<std::string>();
    }
    std::string note(const std::string& name) const
    {
        return TemporaryFolder::contents(m_home.path("data/Trash/info/" + name + ".trashinfo"));
    }

    const TemporaryFolder m_home;
};

std::string localTime(std::time_t time)
{
    char text[32];
    std::tm parts{};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", localtime_r(&time, &parts));
    return text;
}

TEST_F(Trash, AFileIsMovedThereWithANoteWhereItWas)
{
    const std::string file = write("take one.wav", "samples");
    const std::time_t before = std::time(nullptr);
    inHome([&] { EXPECT_EQ(trash(file), 0); });
    EXPECT_FALSE(isThere(file));
    EXPECT_EQ(TemporaryFolder::contents(m_home.path("data/Trash/files/take one.wav")), "samples");

    const std::string text = note("take one.wav");
    const std::string start =
        "[Trash Info]\nPath=" + m_home.path("items/take%20one.wav") + "\nDeletionDate=";
    ASSERT_EQ(text.substr(0, start.size()), start);
    const std::string date = text.substr(start.size());
    EXPECT_GE(date, localTime(before) + '\n');
    EXPECT_LE(date, localTime(std::time(nullptr)) + '\n');
}

TEST_F(Trash, AFolderIsMovedThereWithItsContents)
{
    fs::create_directories(m_home / "items/folder/inner");
    write("folder/inner/file", "deep");
    inHome([&] {
        EXPECT_EQ(XeFileSystem::moveFolderToTrash(wide(m_home / "items/folder").c_str()), 0);
    });
    EXPECT_THAT(m_home.names("items"), IsEmpty());
    EXPECT_EQ(TemporaryFolder::contents(m_home.path("data/Trash/files/folder/inner/file")), "deep");
    EXPECT_THAT(notes(), ElementsAre("folder.trashinfo"));
}

TEST_F(Trash, EitherFunctionTakesItemsOfBothKinds)
{
    fs::create_directory(m_home / "items/folder");
    const std::string file = write("file");
    inHome([&] {
        EXPECT_EQ(XeFileSystem::moveFileToTrash(wide(m_home / "items/folder/").c_str()), 0);
        EXPECT_EQ(XeFileSystem::moveFolderToTrash(wide(file).c_str()), 0);
    });
    EXPECT_THAT(trashed(), ElementsAre("file", "folder"));
}

TEST_F(Trash, ItemsOfOneNameStaySideBySide)
{
    inHome([&] {
        for (const char* bytes : {"first", "second", "third"}) {
            EXPECT_EQ(trash(write("take.wav", bytes)), 0);
        }
    });
    EXPECT_EQ(trashed().size(), 3u);
    EXPECT_EQ(notes().size(), 3u);
}

TEST_F(Trash, ALinkGoesItself)
{
    write("target");
    fs::create_symlink("target", m_home / "items/link");
    fs::create_symlink("nowhere", m_home / "items/dangling");
    fs::create_symlink("loop", m_home / "items/loop");
    inHome([&] {
        for (const char* name : {"link", "dangling", "loop"}) {
            EXPECT_EQ(trash(m_home / "items" / name), 0) << name;
        }
    });
    EXPECT_THAT(m_home.names("items"), ElementsAre("target"));
    EXPECT_THAT(trashed(), ElementsAre("dangling", "link", "loop"));
    EXPECT_EQ(fs::read_symlink(m_home / "data/Trash/files/dangling"), "nowhere");
}

TEST_F(Trash, APipeGoesUnopened)
{
    ASSERT_EQ(mkfifo(m_home.path("items/pipe").c_str(), 0600), 0);
    inHome([&] { EXPECT_EQ(trash(m_home / "items/pipe"), 0); });
    EXPECT_THAT(trashed(), ElementsAre("pipe"));
}

TEST_F(Trash, NamesAreKeptByteForByte)
{
    const std::string names[] = {"-r", "a\nb", "caf\xC3\xA9", "not utf-8 \xE9\xFF"};
    inHome([&] {
        for (const std::string& name : names) {
            EXPECT_EQ(trash(write(name)), 0) << name;
        }
    });
    EXPECT_THAT(trashed(), testing::ElementsAreArray(names));
    EXPECT_THAT(note("not utf-8 \xE9\xFF"), testing::HasSubstr("/items/not%20utf-8%20%E9%FF\n"));
}

TEST_F(Trash, ARelativePathStartsInTheWorkingFolder)
{
    write("file");
    inHome([&] {
        fs::current_path(m_home / "items");
        EXPECT_EQ(trash("file"), 0);
    });
    EXPECT_THAT(note("file"), testing::HasSubstr("Path=" + m_home.path("items/file") + '\n'));
}

TEST_F(Trash, WhatIsNotThereIsRefused)
{
    const HardPaths paths;
    inHome([&] {
        fs::current_path(m_home / "items"); // which the empty path must not stand for
        EXPECT_EQ(XeFileSystem::moveFileToTrash(nullptr), kRefused);
        EXPECT_EQ(XeFileSystem::moveFolderToTrash(nullptr), kRefused);
        for (const auto& [name, path] : paths.leadingNowhere()) {
            const bool isLink = std::string_view(name) == "loop" || path.ends_with(L"dangling");
            if (!isLink && !path.ends_with(L"file/")) {
                EXPECT_EQ(XeFileSystem::moveFileToTrash(path.c_str()), kRefused) << name;
                EXPECT_EQ(XeFileSystem::moveFolderToTrash(path.c_str()), kRefused) << name;
            }
        }
    });
    EXPECT_TRUE(isThere(m_home / "items"));
    EXPECT_THAT(trashed(), IsEmpty());
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(Trash, WhatTheUserMayNotMoveStays)
{
    const std::string file = write("file");
    fs::permissions(m_home.path(), fs::perms(0777));
    fs::permissions(m_home / "data", fs::perms(0777));
    fs::permissions(m_home / "items", fs::perms(0555));
    asOrdinaryUser([&] {
        useHome();
        EXPECT_EQ(trash(file), kRefused);
    });
    const HardPaths paths;
    asOrdinaryUser([&] {
        useHome();
        for (const auto& [name, path] : paths.withoutRights()) {
            EXPECT_EQ(XeFileSystem::moveFileToTrash(path.c_str()), kRefused) << name;
        }
    });
    fs::permissions(m_home / "items", fs::perms(0755));
    EXPECT_TRUE(isThere(file));
    EXPECT_THAT(trashed(), IsEmpty());
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(Trash, WithoutAPlaceForItEverythingStays)
{
    const std::string file = write("file");
    m_home.write("data/Trash", "a file in the way");
    inHome([&] { EXPECT_EQ(trash(file), kRefused); });
    EXPECT_TRUE(isThere(file));
}

TEST_F(Trash, WithoutAHomeEverythingStays)
{
    const std::string file = write("file");
    inChild([&] {
        setenv("HOME", m_home.path("gone").c_str(), 1);
        setenv("XDG_DATA_HOME", m_home.path("gone/data").c_str(), 1);
        EXPECT_EQ(trash(file), kRefused);
    });
    EXPECT_TRUE(isThere(file));
}

TEST_F(Trash, AVolumeInMemoryHasNone)
{
    const SmallVolume volume(m_home / "volume", "size=64k");
    if (!volume) {
        GTEST_SKIP() << volume.reason();
    }
    m_home.write("volume/file", "x");
    inHome([&] { EXPECT_EQ(trash(volume / "file"), kRefused); });
    EXPECT_EQ(TemporaryFolder::contents((volume / "file").native()), "x");
    EXPECT_THAT(trashed(), IsEmpty());
    EXPECT_THAT(notes(), IsEmpty());
    EXPECT_THAT(m_home.names("volume"), ElementsAre("file"));
}

TEST_F(Trash, AnotherDiskHasItsOwnAtItsTop)
{
    const std::string image = m_home.write("image", "");
    fs::resize_file(image, 16 << 20);
    fs::create_directory(m_home / "disk");
    const std::string make = "mkfs.ext4 -q '" + image + "' >/dev/null 2>&1 && mount -o loop '" +
                             image + "' '" + m_home.path("disk") + "' 2>/dev/null";
    if (std::system(make.c_str()) != 0) {
        GTEST_SKIP() << "no disk image can be mounted here";
    }
    fs::create_directory(m_home / "disk/folder");
    m_home.write("disk/folder/file", "bytes");
    inHome([&] { EXPECT_EQ(trash(m_home / "disk/folder/file"), 0); });
    const std::string top = "disk/.Trash-" + std::to_string(getuid());
    EXPECT_EQ(TemporaryFolder::contents(m_home.path(top + "/files/file")), "bytes");
    EXPECT_THAT(TemporaryFolder::contents(m_home.path(top + "/info/file.trashinfo")),
                testing::HasSubstr("Path=folder/file\n"));
    EXPECT_THAT(trashed(), IsEmpty());
    EXPECT_EQ(umount2(m_home.path("disk").c_str(), MNT_DETACH), 0);
}

TEST_F(Trash, LeavesNoDescriptorOpen)
{
    const std::string file = write("file");
    const std::string second = write("second");
    inHome([&] {
        EXPECT_EQ(trash(file), 0); // GLib keeps some for itself from its first use on
        const std::size_t before = openDescriptors();
        EXPECT_EQ(trash(second), 0);
        EXPECT_EQ(trash(m_home / "absent"), kRefused);
        EXPECT_EQ(openDescriptors(), before);
    });
}

/// Runs a shell's command with the home folder; its status.
int shell(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str());
}

TEST_F(Trash, AnotherProgramPutsTheItemBack)
{
    if (shell("command -v trash-restore") != 0) {
        GTEST_SKIP() << "trash-cli is not installed";
    }
    const std::string file = write("take \xC3\xA9 one.wav", "samples");
    inHome([&] {
        ASSERT_EQ(trash(file), 0);
        ASSERT_FALSE(isThere(file));
        EXPECT_EQ(shell("cd '" + m_home.path("items") + "' && echo 0 | trash-restore"), 0);
    });
    EXPECT_EQ(TemporaryFolder::contents(file), "samples");
    EXPECT_THAT(trashed(), IsEmpty());
    EXPECT_THAT(notes(), IsEmpty());
}

TEST_F(Trash, TheDesktopPutsTheItemBack)
{
    const std::string file = write("take.wav", "samples");
    fs::create_directory(m_home / "run");
    fs::permissions(m_home / "run", fs::perms(0700));
    m_home.write("hasDesktop", "");
    inHome([&] {
        setenv("XDG_RUNTIME_DIR", m_home.path("run").c_str(), 1);
        if (shell("dbus-run-session -- gio info trash:///") != 0) {
            fs::remove(m_home / "hasDesktop");
            return;
        }
        ASSERT_EQ(trash(file), 0);
        EXPECT_EQ(shell("dbus-run-session -- gio trash --restore trash:///take.wav"), 0);
    });
    if (!isThere(m_home / "hasDesktop")) {
        GTEST_SKIP() << "no service of the desktop (gvfs) shows the trash here";
    }
    EXPECT_EQ(TemporaryFolder::contents(file), "samples");
    EXPECT_THAT(trashed(), IsEmpty());
}

} // namespace
