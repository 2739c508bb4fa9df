#include "XeFileSystem.h"

#include "FileTree.h"
#include "ForEachFailingCall.h"
#include "OpenDescriptors.h"
#include "ResultCodes.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

namespace {

namespace fs = std::filesystem;
using Text = _XeString<wchar_t>;

std::string g_victim;

void replaceByPipe()
{
    unlink(g_victim.c_str());
    mkfifo(g_victim.c_str(), 0666);
}

/// Before each call in turn that an operation makes, a pipe takes the place of a file; whoever
/// waits for its other end waits for ever. (A pipe that was copied to in time may be gone.)
/// @param operation  Given the tree and where in it the file is.
void meetPipe(const std::string& name,
              const std::function<void(const FileTree&, const std::string&)>& operation)
{
    constexpr unsigned kLimitSeconds = 10;
    SCOPED_TRACE(name);
    const auto calls = forEachFailingCall(
        kFailAll, {.mode = kFailMeanwhile, .meanwhile = replaceByPipe}, [&](Fault& fault) {
            const FileTree tree;
            tree.makeFolder("folder");
            tree.write("folder/file", "bytes");
            tree.write("other", "other");
            g_victim = tree.path(name);
            const std::size_t descriptors = openDescriptors();
            alarm(kLimitSeconds);
            fault.during([&] { operation(tree, name); });
            alarm(0);
            EXPECT_EQ(openDescriptors(), descriptors);
        });
    EXPECT_GT(calls, 0u);
}

void expectWhole(const FileTree& tree, const std::string& copy, XeResult result)
{
    EXPECT_EQ(fs::exists(fs::symlink_status(tree / copy)), result == kOk) << result;
    EXPECT_TRUE(result != kOk || FileTree::contents(tree.path(copy)) == "bytes");
}

TEST(APipeInPlaceOfAFile, IsNotCopied)
{
    meetPipe("folder/file", [](const FileTree& tree, const std::string& name) {
        const XeResult result =
            XeFileSystem::copyFile(tree.wide(name).c_str(), tree.wide("copy").c_str(), false);
        EXPECT_TRUE(result == kOk || result == kOperationFailed) << result;
        expectWhole(tree, "copy", result);
    });
    meetPipe("folder/file", [](const FileTree& tree, const std::string&) {
        const XeResult result = XeFileSystem::copyFolder(tree.wide("folder").c_str(),
                                                         tree.wide("copy").c_str(), kCopyMerge);
        EXPECT_TRUE(result == kOk || result == kOperationFailed) << result;
        expectWhole(tree, "copy/file", result);
    });
}

TEST(APipeInPlaceOfAFile, IsNotCopiedTo)
{
    meetPipe("other", [](const FileTree& tree, const std::string& name) {
        const XeResult result = XeFileSystem::copyFile(tree.wide("folder/file").c_str(),
                                                       tree.wide(name).c_str(), false);
        EXPECT_TRUE(result == kOk || fs::is_fifo(fs::symlink_status(tree / name))) << result;
    });
}

TEST(APipeInPlaceOfAFile, GivesAFailedStream)
{
    meetPipe("folder/file", [](const FileTree& tree, const std::string& name) {
        const auto stream = XeFileSystem::openIStream(tree.wide(name));
        std::string bytes;
        *stream >> bytes;
        EXPECT_EQ(bytes, stream->bad() || bytes.empty() ? "" : "bytes");
    });
    meetPipe("folder/file", [](const FileTree& tree, const std::string& name) {
        const auto stream = XeFileSystem::openOStream(tree.wide(name));
        *stream << "new" << std::flush;
    });
}

TEST(APipeInPlaceOfAFile, IsNoArchive)
{
    meetPipe("folder/file", [](const FileTree& tree, const std::string& name) {
        EXPECT_FALSE(XeFileSystem::isArchive(tree.wide(name)));
    });
}

// Nor is it opened where only its name and its facts are asked for.
TEST(APipeInPlaceOfAFile, HoldsUpNoOtherFunction)
{
    meetPipe("folder/file", [](const FileTree& tree, const std::string& name) {
        XeFileSystem::moveFile(tree.wide(name).c_str(), tree.wide("moved").c_str());
        XeFileSystem::linkFile(tree.wide(name).c_str(), tree.wide("link").c_str(), false);
        XeFileSystem::setLockFile(tree.wide("link"), false);
        XeFileSystem::setFileReadonly(tree.wide("link").c_str(), true);
        XeFileSystem::touchLastModified(tree.wide("link").c_str());
        tFileAtrribute attribute;
        XeFileSystem::getFileAttribute(tree.wide("link").c_str(), attribute);
        Text text;
        XeFileSystem::getStrictFileName(tree.wide("link"), text);
        XeFileSystem::deleteFile(tree.wide(name));
        XeFileSystem::deleteFolder(tree.wide("folder").c_str(), false);
    });
}

} // namespace
