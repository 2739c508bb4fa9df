#include "XeFileSystem.h"

#include "FileTree.h"
#include "MemoryFileSystem.h"
#include "OpenDescriptors.h"
#include "OrdinaryUser.h"
#include "ResultCodes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

class CopyFile : public testing::Test {
protected:
    XeResult copy(const std::string& from, const std::string& to, bool failIfExists = false) const
    {
        return XeFileSystem::copyFile(m_tree.wide(from).c_str(), m_tree.wide(to).c_str(),
                                      failIfExists);
    }
    std::string bytes(const std::string& name) const
    {
        return FileTree::contents(m_tree.path(name));
    }

    /// The call fails with that code and changes nothing.
    void refuses(XeResult code, const std::string& from, const std::string& to,
                 bool failIfExists = false) const
    {
        SCOPED_TRACE(from + " to " + to);
        const auto before = m_tree.items();
        EXPECT_EQ(copy(from, to, failIfExists), code);
        EXPECT_EQ(m_tree.items(), before);
    }

    const FileTree m_tree;
};

TEST_F(CopyFile, CopiesBytesAndRights)
{
    const std::string all = m_tree.write("a", std::string(300000, 'x') + std::string("\0\n", 2));
    fs::permissions(all, fs::perms(0640));
    for (const bool failIfExists : {false, true}) {
        const std::string name = failIfExists ? "b" : "c";
        EXPECT_EQ(copy("a", name, failIfExists), kOk);
        EXPECT_EQ(bytes(name), bytes("a"));
        EXPECT_EQ(fs::status(m_tree / name).permissions(), fs::perms(0640));
    }
    m_tree.write("empty", "");
    EXPECT_EQ(copy("empty", "also empty"), kOk);
    EXPECT_TRUE(fs::is_empty(m_tree / "also empty"));
}

TEST_F(CopyFile, ReplacesADestinationOnlyWhenAllowed)
{
    m_tree.write("a", "new");
    m_tree.write("b", "a longer old one");
    refuses(kGeneral, "a", "b", true);
    EXPECT_EQ(copy("a", "b"), kOk);
    EXPECT_EQ(bytes("b"), "new");
}

// The presence of the destination is looked at first.
TEST_F(CopyFile, AMissingSourceCostsNoDestination)
{
    m_tree.write("b", "old");
    refuses(kOperationFailed, "missing", "b");
    refuses(kOperationFailed, "missing", "c");
    refuses(kGeneral, "missing", "b", true);
}

TEST_F(CopyFile, AFileIsNotCopiedOntoItself)
{
    m_tree.write("a", "bytes");
    m_tree.makeLink("link", "a");
    fs::create_hard_link(m_tree / "a", m_tree / "hard");
    fs::create_directory_symlink(m_tree.path(), m_tree / "here");
    for (const bool failIfExists : {false, true}) {
        for (const char* to : {"a", "link", "hard", "./a", "here/a"}) {
            refuses(kGeneral, "a", to, failIfExists);
            refuses(kGeneral, to, "a", failIfExists);
        }
    }
}

TEST_F(CopyFile, FollowsLinksInTheSource)
{
    m_tree.write("a", "bytes");
    m_tree.makeLink("link", "a");
    EXPECT_EQ(copy("link", "b"), kOk);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(m_tree / "b")));
    EXPECT_EQ(bytes("b"), "bytes");
}

TEST_F(CopyFile, ALinkAtTheDestinationIsReplacedAndItsFileKept)
{
    m_tree.write("a", "new");
    m_tree.write("kept", "old");
    m_tree.makeLink("link", "kept");
    EXPECT_EQ(copy("a", "link"), kOk);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(m_tree / "link")));
    EXPECT_EQ(bytes("link"), "new");
    EXPECT_EQ(bytes("kept"), "old");
}

TEST_F(CopyFile, OnlyRegularFilesAreCopied)
{
    m_tree.makeFolder("folder");
    m_tree.makePipe("pipe");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makeLink("loop", "loop");
    m_tree.write("b", "old");
    for (const char* from : {"folder", "pipe", "dangling", "loop", ""}) {
        refuses(kOperationFailed, from, "new");
        refuses(kOperationFailed, from, "b");
    }
    EXPECT_EQ(XeFileSystem::copyFile(L"/dev/null", m_tree.wide("new").c_str(), false),
              kOperationFailed);
}

TEST_F(CopyFile, OnlyRegularFilesAreReplaced)
{
    m_tree.write("a", "bytes");
    m_tree.makeFolder("folder");
    m_tree.makePipe("pipe");
    m_tree.makeLink("dangling", "nowhere");
    m_tree.makeLink("loop", "loop");
    m_tree.makeLink("to folder", "folder");
    for (const char* to : {"folder", "pipe", "dangling", "loop", "to folder", "no/folder", "a/b"}) {
        refuses(kOperationFailed, "a", to);
        refuses(kOperationFailed, "a", to, true);
    }
    refuses(kOperationFailed, "a", std::string(300, 'n'));
}

TEST_F(CopyFile, NullEmptyAndUnencodablePathsFail)
{
    m_tree.write("a", "bytes");
    const auto before = m_tree.items();
    const Text a = m_tree.wide("a");
    const Text bad = a + L'\xD800';
    for (wchar_t const* path : {static_cast<wchar_t const*>(nullptr), L"", bad.c_str()}) {
        EXPECT_EQ(XeFileSystem::copyFile(path, m_tree.wide("b").c_str(), false), kOperationFailed);
        EXPECT_EQ(XeFileSystem::copyFile(a.c_str(), path, false), kOperationFailed);
    }
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(CopyFile, NamesAreTakenAsTheirBytes)
{
    m_tree.write("caf\xC3\xA9 \xE9\xFF", "bytes");
    EXPECT_EQ(copy("caf\xC3\xA9 \xE9\xFF", "\xFF"), kOk);
    EXPECT_EQ(bytes("\xFF"), "bytes");
}

TEST_F(CopyFile, WithoutRightsNothingIsLost)
{
    fs::permissions(m_tree.path(), fs::perms(0777));
    fs::permissions(m_tree.write("secret", "x"), fs::perms(0));
    fs::permissions(m_tree.write("old", "old"), fs::perms(0666));
    m_tree.makeFolder("closed");
    m_tree.write("closed/kept", "x");
    fs::permissions(m_tree.makeFolder("fixed"), fs::perms(0777));
    fs::permissions(m_tree.write("fixed/old", "fixed"), fs::perms(0666));
    m_tree.write("a", "bytes");
    fs::permissions(m_tree / "fixed", fs::perms(0555));
    fs::permissions(m_tree / "closed", fs::perms(0));
    const auto before = m_tree.items();
    asOrdinaryUser([&] {
        EXPECT_EQ(copy("secret", "old"), kOperationFailed);
        EXPECT_EQ(copy("secret", "new"), kOperationFailed);
        EXPECT_EQ(copy("a", "closed/new"), kOperationFailed);
        EXPECT_EQ(copy("a", "closed/kept"), kOperationFailed);
        EXPECT_EQ(copy("closed/kept", "new"), kOperationFailed);
        EXPECT_EQ(copy("a", "fixed/new"), kOperationFailed);
        EXPECT_EQ(copy("a", "fixed/old"), kGeneral); // cannot be deleted
    });
    EXPECT_EQ(m_tree.items(), before);
}

TEST_F(CopyFile, ClosesItsDescriptors)
{
    m_tree.write("a", "bytes");
    const std::size_t before = openDescriptors();
    EXPECT_EQ(copy("a", "b"), kOk);
    EXPECT_EQ(copy("a", "no/folder"), kOperationFailed);
    EXPECT_EQ(openDescriptors(), before);
}

// Remote ---------------------------------------------------------------------------------------

class RemoteCopyFile : public CopyFile {
protected:
    RemoteCopyFile()
    {
        m_remote->addFolder(m_root);
        m_remote->addFile(file("take"), kBytes);
    }
    ~RemoteCopyFile() override { EXPECT_EQ(m_remote->openHandles(), 0u); }

    Text file(const char* name) const { return m_root + L'/' + xenon::path::fromNative(name); }
    static XeResult copy(const Text& from, const Text& to, bool failIfExists = false)
    {
        return XeFileSystem::copyFile(from.c_str(), to.c_str(), failIfExists);
    }

    inline static const std::string kBytes = std::string(70000, 'r') + "end";

    const Text m_root = L"/remote/copied";
    const std::shared_ptr<MemoryFileSystem> m_remote = std::make_shared<MemoryFileSystem>();
    const RemoteMount m_mount{m_root, m_remote};
};

TEST_F(RemoteCopyFile, CopiesEachWay)
{
    EXPECT_EQ(copy(file("take"), m_tree.wide("local")), kOk);
    EXPECT_EQ(bytes("local"), kBytes);
    EXPECT_EQ(copy(m_tree.wide("local"), file("back")), kOk);
    EXPECT_EQ(m_remote->bytesOf(file("back")), kBytes);
    EXPECT_EQ(copy(file("back"), file("third"), true), kOk);
    EXPECT_EQ(m_remote->bytesOf(file("third")), kBytes);
}

TEST_F(RemoteCopyFile, CopiesEmptyFiles)
{
    m_tree.write("empty", "");
    EXPECT_EQ(copy(m_tree.wide("empty"), file("empty")), kOk);
    EXPECT_EQ(m_remote->bytesOf(file("empty")), "");
    EXPECT_EQ(copy(file("empty"), m_tree.wide("back")), kOk);
    EXPECT_TRUE(fs::is_empty(m_tree / "back"));
}

TEST_F(RemoteCopyFile, CopiesMoreThanOneBufferFull)
{
    m_remote->addFile(file("large"), std::string((33u << 20) + 5, 'l'));
    m_remote->mostBytes = (1 << 20) + 1;
    EXPECT_EQ(copy(file("large"), file("again")), kOk);
    EXPECT_TRUE(m_remote->bytesOf(file("again")) == m_remote->bytesOf(file("large")));
}

TEST_F(RemoteCopyFile, BetweenTwoVolumes)
{
    const auto other = std::make_shared<MemoryFileSystem>();
    other->addFolder(L"/remote/other");
    const RemoteMount mount(L"/remote/other", other);
    EXPECT_EQ(copy(file("take"), L"/remote/other/take"), kOk);
    EXPECT_EQ(other->bytesOf(L"/remote/other/take"), kBytes);
}

TEST_F(RemoteCopyFile, ReplacesADestinationOnlyWhenAllowed)
{
    m_tree.write("local", "local");
    EXPECT_EQ(copy(m_tree.wide("local"), file("take"), true), kGeneral);
    EXPECT_EQ(copy(file("take"), m_tree.wide("local"), true), kGeneral);
    EXPECT_EQ(bytes("local"), "local");
    EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
    EXPECT_EQ(copy(m_tree.wide("local"), file("take")), kOk);
    EXPECT_EQ(m_remote->bytesOf(file("take")), "local");
}

TEST_F(RemoteCopyFile, AMissingSourceCostsNoDestination)
{
    m_tree.write("local", "local");
    EXPECT_EQ(copy(file("missing"), m_tree.wide("local")), kOperationFailed);
    EXPECT_EQ(copy(m_tree.wide("missing"), file("take")), kOperationFailed);
    EXPECT_EQ(bytes("local"), "local");
    EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
}

TEST_F(RemoteCopyFile, AFileIsNotCopiedOntoItself)
{
    EXPECT_EQ(copy(file("take"), file("take")), kGeneral);
    EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
}

// Where the mount point is real, its files are on the local system too.
TEST_F(RemoteCopyFile, AFileIsNotCopiedOntoItselfThroughTheLocalSystem)
{
    m_tree.makeFolder("mounted");
    m_tree.write("mounted/take", "bytes");
    m_tree.makeLink("link", "mounted/take");
    m_remote->addFile(m_tree.wide("mounted/take"), "bytes");
    const RemoteMount mount(m_tree.wide("mounted"), m_remote);
    EXPECT_EQ(copy(m_tree.wide("mounted/take"), m_tree.wide("link")), kGeneral);
    EXPECT_EQ(bytes("link"), "bytes");
    EXPECT_TRUE(m_remote->holds(m_tree.wide("mounted/take")));
}

TEST_F(RemoteCopyFile, TheFailureToDeleteTheDestinationIsHandedOn)
{
    m_tree.write("local", "local");
    m_remote->failures["deleteFile"] = -7;
    EXPECT_EQ(copy(m_tree.wide("local"), file("take")), -7);
    EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
}

TEST_F(RemoteCopyFile, ABrokenTransferLeavesNoDestination)
{
    m_tree.write("local", kBytes);
    for (const char* operation :
         {"openRead", "read", "closeRead", "openWrite", "write", "closeWrite"}) {
        for (const XeResult failure : {kGeneral, kVolumeGone}) {
            SCOPED_TRACE(operation);
            m_remote->failures = {{operation, failure}};
            const bool reading = std::string(operation).find("ead") != std::string::npos;
            const Text from = reading ? file("take") : m_tree.wide("local");
            const Text to = reading ? m_tree.wide("new") : file("new");
            EXPECT_EQ(copy(from, to), kOperationFailed);
            EXPECT_FALSE(fs::exists(m_tree / "new"));
            EXPECT_FALSE(m_remote->holds(file("new")));
        }
    }
}

TEST_F(RemoteCopyFile, AFileThatEndsEarlyIsABrokenTransfer)
{
    class Shrinking : public MemoryFileSystem {
    public:
        XeResult getFileSize(const Path& path, std::int64_t& size) override
        {
            const XeResult result = MemoryFileSystem::getFileSize(path, size);
            ++size;
            return result;
        }
    };
    const auto shrinking = std::make_shared<Shrinking>();
    shrinking->addFile(L"/remote/shrinking/take", kBytes);
    const RemoteMount mount(L"/remote/shrinking", shrinking);
    EXPECT_EQ(copy(L"/remote/shrinking/take", m_tree.wide("new")), kOperationFailed);
    EXPECT_FALSE(fs::exists(m_tree / "new"));
}

TEST_F(RemoteCopyFile, ALocalFileThatBecomesShorterMeanwhileIsABrokenTransfer)
{
    class Shortening : public MemoryFileSystem {
    public:
        XeResult openWrite(const Path& path, Handle& handle, bool exclusive) override
        {
            fs::resize_file(file, 10);
            return MemoryFileSystem::openWrite(path, handle, exclusive);
        }
        std::string file;
    };
    const auto shortening = std::make_shared<Shortening>();
    shortening->addFolder(L"/remote/shortening");
    shortening->file = m_tree.write("local", kBytes);
    const RemoteMount mount(L"/remote/shortening", shortening);
    EXPECT_EQ(copy(m_tree.wide("local"), L"/remote/shortening/new"), kOperationFailed);
    EXPECT_FALSE(shortening->holds(L"/remote/shortening/new"));
}

// Every call of the remote fails once, one after the other.
TEST_F(RemoteCopyFile, WhereverTheRemoteFailsNothingIsHalfDone)
{
    for (std::size_t calls = 0;; ++calls) {
        SCOPED_TRACE(calls);
        m_remote->callsLeft = calls;
        const XeResult result = copy(file("take"), m_tree.wide("new"));
        m_remote->callsLeft = static_cast<std::size_t>(-1);
        EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
        EXPECT_EQ(m_remote->openHandles(), 0u);
        if (result == kOk) {
            EXPECT_EQ(bytes("new"), kBytes);
            EXPECT_GT(calls, 3u);
            break;
        }
        EXPECT_EQ(result, kOperationFailed);
        EXPECT_FALSE(fs::exists(m_tree / "new"));
        ASSERT_LT(calls, 100u);
    }
}

TEST_F(RemoteCopyFile, WhatIsNoFileLocallyIsNeitherOpenedNorReplaced)
{
    m_tree.makeFolder("folder");
    m_tree.makePipe("pipe");
    m_tree.makeLink("dangling", "nowhere");
    const auto before = m_tree.items();
    for (const char* name : {"folder", "pipe", "dangling", "no/folder"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(copy(file("take"), m_tree.wide(name)), kOperationFailed);
        EXPECT_EQ(copy(m_tree.wide(name), file("new")), kOperationFailed);
        EXPECT_EQ(copy(m_tree.wide(name), file("take")), kOperationFailed);
    }
    EXPECT_EQ(m_tree.items(), before);
    EXPECT_FALSE(m_remote->holds(file("new")));
    EXPECT_EQ(m_remote->bytesOf(file("take")), kBytes);
}

} // namespace
