#include "XeFileSystem.h"

#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class UserDefinedName : public testing::Test {
protected:
    Text freeName(const wchar_t* name) const
    {
        Text out = L"old";
        EXPECT_EQ(XeFileSystem::getUserDefinedName(wide().c_str(), name, out), 0);
        return out;
    }
    Text wide() const { return xenon::path::fromNative(m_folder.path().native()); }

    static constexpr auto kInvalid = static_cast<XeResult>(0x80000003);
    const TemporaryFolder m_folder;
};

TEST_F(UserDefinedName, FreeNameIsTakenAsItIs)
{
    for (const wchar_t* name :
         {L"take.wav", L".profile", L"...", L"take (2).wav", L"\xDCE9", L" "}) {
        EXPECT_EQ(freeName(name), name);
    }
}

TEST_F(UserDefinedName, TakenNameGetsTheFirstFreeCounterBeforeItsExtension)
{
    m_folder.write("take.wav", "");
    EXPECT_EQ(freeName(L"take.wav"), L"take (2).wav");
    m_folder.write("take (2).wav", "");
    m_folder.write("take (4).wav", "");
    EXPECT_EQ(freeName(L"take.wav"), L"take (3).wav");
    m_folder.write("take (3).wav", "");
    EXPECT_EQ(freeName(L"take.wav"), L"take (5).wav");
    EXPECT_EQ(freeName(L"take (2).wav"), L"take (2) (2).wav");
    EXPECT_EQ(freeName(L"TAKE.wav"), L"TAKE.wav");
}

TEST_F(UserDefinedName, CounterComesBeforeTheLastDotOrAtTheEnd)
{
    for (const char* name : {"folder", "a.tar.gz", ".profile", "dot.", "bad\xE9.wav"}) {
        m_folder.write(name, "");
    }
    EXPECT_EQ(freeName(L"folder"), L"folder (2)");
    EXPECT_EQ(freeName(L"a.tar.gz"), L"a.tar (2).gz");
    EXPECT_EQ(freeName(L".profile"), L".profile (2)");
    EXPECT_EQ(freeName(L"dot."), L"dot (2).");
    EXPECT_EQ(freeName(L"bad\xDCE9.wav"), L"bad\xDCE9 (2).wav");
}

TEST_F(UserDefinedName, EverythingOfThatNameCounts)
{
    fs::create_directory(m_folder / "folder");
    fs::create_symlink("nowhere", m_folder / "dangling");
    fs::create_symlink("loop", m_folder / "loop");
    EXPECT_EQ(freeName(L"folder"), L"folder (2)");
    EXPECT_EQ(freeName(L"dangling"), L"dangling (2)");
    EXPECT_EQ(freeName(L"loop"), L"loop (2)");
}

TEST_F(UserDefinedName, LongNameKeepsItsCounterAndExtension)
{
    const Text longest = Text(251, L'n') + L".wav";
    EXPECT_EQ(freeName(longest.c_str()), longest);
    EXPECT_EQ(freeName((L"n" + longest).c_str()), longest);
    m_folder.write(std::string(251, 'n') + ".wav", "");
    EXPECT_EQ(freeName(longest.c_str()), Text(248, L'n') + L"(2).wav");
    EXPECT_EQ(freeName((L"n" + longest).c_str()), Text(248, L'n') + L"(2).wav");
}

TEST_F(UserDefinedName, NameThatNoItemCanHaveIsRefused)
{
    for (const wchar_t* name : {L"", L".", L"..", L"/", L"a/b", L"a/", L"a\xD800"}) {
        Text out = L"old";
        EXPECT_EQ(XeFileSystem::getUserDefinedName(wide().c_str(), name, out), kInvalid);
        EXPECT_EQ(out, L"old");
    }
    Text out = L"old";
    EXPECT_EQ(XeFileSystem::getUserDefinedName(wide().c_str(), nullptr, out), kInvalid);
    EXPECT_EQ(out, L"old");
}

// In a folder of 1022 characters a name has room for none, and two of "ab." leave a ".".
TEST_F(UserDefinedName, NameThatBoundingMakesInvalidIsRefused)
{
    Text out = L"old";
    EXPECT_EQ(XeFileSystem::getUserDefinedName(Text(1022, L'f').c_str(), L"abc", out), kInvalid);
    EXPECT_EQ(XeFileSystem::getUserDefinedName(Text(1021, L'f').c_str(), L"ab.", out), kInvalid);
    EXPECT_EQ(out, L"old");
}

TEST_F(UserDefinedName, FolderThatCannotBeLookedIntoHasNoSuchItem)
{
    Text out;
    EXPECT_EQ(XeFileSystem::getUserDefinedName(L"/missing folder", L"a", out), 0);
    EXPECT_EQ(out, L"a");
    m_folder.write("a", "");
    fs::permissions(m_folder.path(), fs::perms(0));
    asOrdinaryUser([&] { EXPECT_EQ(freeName(L"a"), L"a"); });
}

TEST_F(UserDefinedName, WithoutAFolderLooksIntoTheWorkingFolder)
{
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.path());
    m_folder.write("a", "");
    for (const wchar_t* folder : {static_cast<const wchar_t*>(nullptr), L"", L".", L"./"}) {
        Text out;
        EXPECT_EQ(XeFileSystem::getUserDefinedName(folder, L"a", out), 0);
        EXPECT_EQ(out, L"a (2)");
    }
    fs::current_path(before);
}

TEST_F(UserDefinedName, ResultMayReplaceTheNamesOwnText)
{
    m_folder.write("a", "");
    Text name = L"a";
    EXPECT_EQ(XeFileSystem::getUserDefinedName(wide().c_str(), name.c_str(), name), 0);
    EXPECT_EQ(name, L"a (2)");
}

} // namespace
