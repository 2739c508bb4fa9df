#include "XeNetStream.h"

#include "MemoryFileSystem.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using xenon::network::XeNetOStream;
using xenon::network::XeNetOStreamBuf;
using xenon::network::XeNetStream;
using xenon::network::XeNetStreamBuf;

constexpr std::size_t kMiB = 1u << 20;
constexpr std::size_t kBlock = 16 * kMiB;
const _XeString<wchar_t> kPath = L"/mount/take.wav";

/// Bytes in which no two blocks are alike, with lines of different lengths.
std::string sample(std::size_t size)
{
    std::string data(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : data) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    return data;
}

std::shared_ptr<MemoryFileSystem> remoteWith(std::string data)
{
    auto remote = std::make_shared<MemoryFileSystem>();
    remote->files[kPath] = std::move(data);
    return remote;
}

std::string allOf(std::istream& stream)
{
    std::ostringstream out;
    out << stream.rdbuf();
    return out.str();
}

/// Ends a test that used `remote`: every handle closed once, no handle used after that.
void expectClean(const MemoryFileSystem& remote)
{
    EXPECT_THAT(remote.openHandles, IsEmpty());
    EXPECT_THAT(remote.misuse, IsEmpty());
}

// Reading -------------------------------------------------------------------------------------

TEST(NetInput, TwentyMebibytesTakeTwoReadsAndTheHandleClosesAfterTheSecond)
{
    const std::string data = sample(20 * kMiB);
    const auto remote = remoteWith(data);
    XeNetStream<char> stream(remote, kPath, true);
    EXPECT_TRUE(remote->lastFlag);
    std::string read(data.size(), '\0');
    stream.read(read.data(), static_cast<std::streamsize>(read.size()));
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(read == data);
    EXPECT_THAT(remote->calls, ElementsAre("size", "openRead", "read 16777216 -> 16777216",
                                           "read 16777216 -> 4194304", "closeRead"));
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_EQ(stream.close(), 0);
    EXPECT_EQ(remote->calls.size(), 5u);
    expectClean(*remote);
}

// The file's size, and the remote reads that fetch it.
TEST(NetInput, EverySizeArrivesInAsFewReadsAsThereAreBlocks)
{
    const std::pair<std::size_t, std::size_t> rows[] = {
        {0, 0}, {1, 1}, {kBlock - 1, 1}, {kBlock, 1}, {kBlock + 1, 2},
    };
    for (const auto& [size, reads] : rows) {
        SCOPED_TRACE(size);
        const std::string data = sample(size);
        const auto remote = remoteWith(data);
        {
            XeNetStream<char> stream(remote, kPath, false);
            EXPECT_FALSE(remote->lastFlag);
            EXPECT_TRUE(stream.is_open());
            EXPECT_TRUE(allOf(stream) == data);
            EXPECT_EQ(stream.get(), EOF);
        }
        EXPECT_EQ(remote->calls.size(), 3 + reads);
        expectClean(*remote);
    }
}

TEST(NetInput, ABlockIsAsLargeAsASmallFileAndNeverEmpty)
{
    const auto remote = remoteWith("abcde");
    XeNetStream<char> stream(remote, kPath, false);
    EXPECT_EQ(stream.get(), 'a');
    EXPECT_THAT(remote->calls, ElementsAre("size", "openRead", "read 5 -> 5", "closeRead"));
}

TEST(NetInput, WithoutAFileSystemTheEndComesAtOnce)
{
    XeNetStream<char> stream(nullptr, kPath, false);
    EXPECT_FALSE(stream.is_open());
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_TRUE(stream.eof());
    EXPECT_LT(stream.close(), 0);
}

TEST(NetInput, AFileThatDoesNotOpenIsAtItsEndAndHasNoPosition)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    XeNetStreamBuf<char> buffer(remote, kPath, false);
    EXPECT_FALSE(buffer.is_open());
    EXPECT_EQ(buffer.sgetc(), EOF);
    EXPECT_EQ(buffer.sputc('x'), EOF);
    EXPECT_EQ(buffer.pubseekoff(0, std::ios::cur), std::streampos(-1));
    EXPECT_EQ(buffer.pubseekpos(0), std::streampos(-1));
    EXPECT_EQ(buffer.pubsync(), 0);
    EXPECT_EQ(buffer.close(), MemoryFileSystem::kFault);
    EXPECT_THAT(remote->calls, ElementsAre("size", "openRead"));
}

TEST(NetInput, WritingIsAcceptedAndChangesNothing)
{
    const auto remote = remoteWith("abc");
    XeNetStreamBuf<char> buffer(remote, kPath, false);
    EXPECT_EQ(buffer.sputc('x'), 'x');
    EXPECT_EQ(buffer.pubsync(), 0);
    EXPECT_EQ(buffer.sgetc(), 'a');
    EXPECT_EQ(remote->files[kPath], "abc");
}

TEST(NetInput, ShortReadsAreJoined)
{
    const std::string data = sample(1000);
    const auto remote = remoteWith(data);
    remote->mostBytes = 7;
    XeNetStream<char> stream(remote, kPath, false);
    EXPECT_TRUE(allOf(stream) == data);
    EXPECT_EQ(remote->calls.size(), 2u + 143 + 1);
    EXPECT_EQ(stream.close(), 0);
    expectClean(*remote);
}

// Each call of a whole transfer fails once. What arrives is a true part of the file, and only a
// complete one passes for success.
TEST(NetInput, AnyFailedCallLeavesTrueDataAndIsReported)
{
    const std::string data = sample(100);
    for (std::size_t failAt = 1;; ++failAt) {
        SCOPED_TRACE(failAt);
        const auto remote = remoteWith(data);
        remote->mostBytes = 30;
        remote->failAt = failAt;
        XeNetStream<char> stream(remote, kPath, false);
        const std::string read = allOf(stream);
        EXPECT_EQ(read, data.substr(0, read.size()));
        const XeResult result = stream.close();
        expectClean(*remote);
        if (remote->calls.size() < failAt) {
            EXPECT_EQ(result, 0);
            EXPECT_EQ(failAt, 8u); // size, openRead, four reads, closeRead
            EXPECT_EQ(read, data);
            break;
        }
        EXPECT_EQ(result, MemoryFileSystem::kFault);
    }
}

// The broken handle may have moved: going on with it could leave out bytes unseen.
TEST(NetInput, AReadAfterAFailedOneStartsWithANewHandle)
{
    const std::string data = sample(100);
    const auto remote = remoteWith(data);
    remote->mostBytes = 30;
    remote->failAt = 4; // the second read
    XeNetStream<char> stream(remote, kPath, false);
    std::string read = allOf(stream);
    EXPECT_EQ(read.size(), 30u);
    remote->failAt = 0;
    stream.clear();
    read += allOf(stream);
    EXPECT_EQ(read, data);
    EXPECT_EQ(stream.close(), MemoryFileSystem::kFault);
    expectClean(*remote);
}

TEST(NetInput, AFailedReadLeavesNoStaleBytesToSeekBackTo)
{
    const std::string data = sample(90);
    const auto remote = remoteWith(data);
    remote->mostBytes = 30;
    remote->failAt = 4;
    XeNetStream<char> stream(remote, kPath, false);
    EXPECT_EQ(allOf(stream), data.substr(0, 30));
    stream.clear();
    stream.seekg(10);
    EXPECT_EQ(allOf(stream), data.substr(10));
}

/// Answers reads with a count of its own.
class WrongCount : public MemoryFileSystem {
public:
    XeResult read(Handle, void*, int length, int& count) override
    {
        count = beyond ? length + 1 : 0;
        return kXeOk;
    }
    XeResult write(Handle, const void*, int length, int& count) override
    {
        count = beyond ? length + 1 : 0;
        return kXeOk;
    }
    bool beyond = false;
};

TEST(NetInput, ReadingNothingOrTooMuchIsAFailure)
{
    for (const bool beyond : {false, true}) {
        SCOPED_TRACE(beyond);
        const auto remote = std::make_shared<WrongCount>();
        remote->files[kPath] = "abc";
        remote->beyond = beyond;
        XeNetStream<char> stream(remote, kPath, false);
        EXPECT_EQ(stream.get(), EOF);
        EXPECT_EQ(stream.close(), static_cast<XeResult>(0x80000008));
        expectClean(*remote);
    }
}

TEST(NetInput, AFileThatShrankIsReported)
{
    const auto remote = remoteWith("abcdef");
    XeNetStream<char> stream(remote, kPath, false);
    remote->files[kPath] = "abc";
    EXPECT_EQ(allOf(stream), "abc");
    EXPECT_EQ(stream.close(), static_cast<XeResult>(0x80000008));
}

TEST(NetInput, WhatAFileGrowsByIsNotRead)
{
    const std::string data = sample(kBlock + 10);
    const auto remote = remoteWith(data);
    XeNetStream<char> stream(remote, kPath, false);
    remote->files[kPath] += "more";
    EXPECT_TRUE(allOf(stream) == data);
    EXPECT_EQ(stream.tellg(), std::streampos(kBlock + 10));
    EXPECT_EQ(stream.close(), 0);
}

TEST(NetInput, ClosingEndsTheStreamAndASecondTimeFails)
{
    const auto remote = remoteWith("abc");
    XeNetStream<char> stream(remote, kPath, false);
    EXPECT_EQ(stream.close(), 0);
    EXPECT_FALSE(stream.is_open());
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_EQ(stream.close(), static_cast<XeResult>(0x80000008));
    EXPECT_THAT(remote->calls, ElementsAre("size", "openRead", "closeRead"));
}

TEST(NetInput, DestructionClosesAHandleThatIsStillOpen)
{
    const auto remote = remoteWith(sample(kBlock + 1));
    {
        XeNetStream<char> stream(remote, kPath, false);
        stream.get();
        EXPECT_EQ(remote->openHandles.size(), 1u);
    }
    expectClean(*remote);
}

/// A file of any size, of zeros but for a digit at each mebibyte.
class SparseFileSystem : public MemoryFileSystem {
public:
    XeResult getFileSize(const Path&, std::int64_t& size) override
    {
        size = fileSize;
        return kXeOk;
    }
    XeResult read(Handle handle, void* buffer, int length, int& count) override
    {
        std::int64_t at = static_cast<std::int64_t>(m_positions[handle]);
        count = static_cast<int>(std::min<std::int64_t>(length, fileSize - at));
        std::memset(buffer, 0, static_cast<std::size_t>(count));
        const std::int64_t mebibyte = kMiB;
        for (std::int64_t mark = (at + mebibyte - 1) / mebibyte * mebibyte; mark < at + count;
             mark += mebibyte) {
            static_cast<char*>(buffer)[mark - at] = digitAt(mark);
        }
        m_positions[handle] = static_cast<std::size_t>(at + count);
        ++reads;
        return kXeOk;
    }
    static char digitAt(std::int64_t mark)
    {
        return static_cast<char>('0' + (mark / static_cast<std::int64_t>(kMiB)) % 7);
    }

    std::int64_t fileSize = 5LL << 30;
    int reads = 0;
};

TEST(NetInput, FiveGibibytesAreReadWithCorrectPositions)
{
    const auto remote = std::make_shared<SparseFileSystem>();
    remote->files[kPath];
    const std::int64_t size = remote->fileSize;
    XeNetStream<char> stream(remote, kPath, false);
    const std::int64_t last = size - static_cast<std::int64_t>(kMiB);
    stream.ignore(last);
    EXPECT_EQ(stream.tellg(), std::streampos(last));
    EXPECT_EQ(stream.get(), SparseFileSystem::digitAt(last));
    stream.ignore(size);
    EXPECT_EQ(stream.gcount(), static_cast<std::streamsize>(kMiB - 1));
    EXPECT_EQ(remote->reads, 5 * 64);
    expectClean(*remote);
}

TEST(NetInput, AskingForTheSizeOfALargeFileReadsNothing)
{
    const auto remote = std::make_shared<SparseFileSystem>();
    remote->files[kPath];
    XeNetStream<char> stream(remote, kPath, false);
    stream.seekg(0, std::ios::end);
    EXPECT_EQ(stream.tellg(), std::streampos(5LL << 30));
    stream.seekg(0);
    EXPECT_EQ(stream.get(), SparseFileSystem::digitAt(0));
    EXPECT_EQ(remote->reads, 1);
}

// Seeking -------------------------------------------------------------------------------------

struct Seek {
    std::int64_t offset;
    std::ios_base::seekdir direction;
    std::int64_t target; // -1: refused
};

TEST(NetSeek, TargetsAreClampedToTheFile)
{
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    const Seek rows[] = {
        {0, std::ios::beg, 0},       {7, std::ios::beg, 7},      {10, std::ios::beg, 10},
        {11, std::ios::beg, 10},     {kMost, std::ios::beg, 10}, {-1, std::ios::beg, -1},
        {kLeast, std::ios::beg, -1}, {0, std::ios::cur, 4},      {3, std::ios::cur, 7},
        {-4, std::ios::cur, 0},      {-5, std::ios::cur, 0},     {6, std::ios::cur, 10},
        {7, std::ios::cur, 10},      {kMost, std::ios::cur, 10}, {kLeast, std::ios::cur, 0},
        {0, std::ios::end, 10},      {-1, std::ios::end, 9},     {-10, std::ios::end, 0},
        {-11, std::ios::end, 0},     {1, std::ios::end, 10},     {kLeast, std::ios::end, 0},
        {kMost, std::ios::end, 10},
    };
    for (const Seek& row : rows) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.direction);
        const auto remote = remoteWith("0123456789");
        XeNetStreamBuf<char> buffer(remote, kPath, false);
        char four[4];
        ASSERT_EQ(buffer.sgetn(four, 4), 4);
        EXPECT_EQ(buffer.pubseekoff(row.offset, row.direction), std::streampos(row.target));
        const std::int64_t now = row.target == -1 ? 4 : row.target;
        EXPECT_EQ(buffer.pubseekoff(0, std::ios::cur), std::streampos(now));
        EXPECT_EQ(buffer.sgetc(), now == 10 ? EOF : static_cast<int>('0' + now));
        EXPECT_EQ(remote->calls.size(), 4u) << "the block that is held serves every target";
    }
}

TEST(NetSeek, AnOutputPositionIsRefused)
{
    XeNetStreamBuf<char> buffer(remoteWith("abc"), kPath, false);
    EXPECT_EQ(buffer.pubseekoff(1, std::ios::beg, std::ios::out), std::streampos(-1));
    EXPECT_EQ(buffer.pubseekpos(1, std::ios::out), std::streampos(-1));
    EXPECT_EQ(buffer.pubseekpos(1, std::ios::in), std::streampos(1));
}

// From every boundary to every other, in a file of three blocks.
TEST(NetSeek, EveryBoundaryIsReachedFromEveryOther)
{
    const std::string data = sample(2 * kBlock + 100);
    const std::size_t boundaries[] = {0,
                                      1,
                                      kBlock - 1,
                                      kBlock,
                                      kBlock + 1,
                                      2 * kBlock - 1,
                                      2 * kBlock,
                                      2 * kBlock + 99,
                                      2 * kBlock + 100};
    const auto remote = remoteWith(data);
    {
        XeNetStream<char> stream(remote, kPath, false);
        for (const std::size_t from : boundaries) {
            for (const std::size_t to : boundaries) {
                SCOPED_TRACE(testing::Message() << from << " to " << to);
                for (const std::size_t position : {from, to}) {
                    stream.clear();
                    stream.seekg(static_cast<std::streamoff>(position));
                    EXPECT_EQ(stream.tellg(), std::streampos(position));
                    const int expected =
                        position == data.size() ? EOF : static_cast<unsigned char>(data[position]);
                    EXPECT_EQ(stream.get(), expected);
                }
            }
        }
        EXPECT_EQ(stream.close(), 0);
    }
    expectClean(*remote);
}

TEST(NetSeek, OnwardSkipsWithTheSameHandleAndBackOpensAnew)
{
    const auto remote = remoteWith(sample(3 * kBlock));
    XeNetStream<char> stream(remote, kPath, false);
    stream.get();
    stream.seekg(static_cast<std::streamoff>(kBlock + 5));
    EXPECT_EQ(remote->calls.size(), 3u) << "a seek itself calls nobody";
    stream.get();
    EXPECT_THAT(remote->calls, ElementsAre("size", "openRead", "read 16777216 -> 16777216",
                                           "read 5 -> 5", "read 16777216 -> 16777216"));
    remote->calls.clear();
    stream.seekg(2);
    stream.get();
    EXPECT_THAT(remote->calls,
                ElementsAre("closeRead", "openRead", "read 2 -> 2", "read 16777216 -> 16777216"));
}

TEST(NetSeek, AFileThatDoesNotOpenAgainIsAtItsEndAndReported)
{
    const auto remote = remoteWith(sample(2 * kBlock));
    XeNetStream<char> stream(remote, kPath, false);
    EXPECT_TRUE(allOf(stream).size() == 2 * kBlock);
    remote->failAt = remote->calls.size() + 1;
    stream.clear();
    stream.seekg(0);
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_EQ(stream.close(), MemoryFileSystem::kFault);
    expectClean(*remote);
}

// The same operations on a plain file stream over the same data.
class BesideAFile : public testing::Test {
protected:
    /// Short lines and long ones, the last without its end.
    static std::string lines()
    {
        std::string text;
        for (int line = 0; text.size() < 40000; ++line) {
            text += std::to_string(line) + std::string(static_cast<std::size_t>(line % 97), '.');
            text += '\n';
        }
        return text + "the end";
    }

    std::shared_ptr<MemoryFileSystem> makeRemote()
    {
        std::ofstream(m_folder / "file", std::ios::binary) << m_data;
        auto remote = remoteWith(m_data);
        remote->mostBytes = 1009;
        return remote;
    }

    void expectSame()
    {
        ASSERT_EQ(m_net.rdstate(), m_file.rdstate());
        ASSERT_EQ(m_net.tellg(), m_file.tellg());
    }

    const TemporaryFolder m_folder;
    const std::string m_data = lines();
    const std::shared_ptr<MemoryFileSystem> m_remote = makeRemote();
    std::ifstream m_file{m_folder / "file", std::ios::binary};
    XeNetStream<char> m_net{m_remote, kPath, false};
};

TEST_F(BesideAFile, GetlineGivesTheSameLines)
{
    std::string netLine, fileLine;
    while (std::getline(m_file, fileLine)) {
        ASSERT_TRUE(std::getline(m_net, netLine));
        ASSERT_EQ(netLine, fileLine);
        expectSame();
    }
    EXPECT_FALSE(std::getline(m_net, netLine));
    expectSame();
}

TEST_F(BesideAFile, ReadsOfEveryLengthGiveTheSameBytes)
{
    for (std::streamsize length = 0; m_file; length += 13) {
        std::string net(static_cast<std::size_t>(length), '\0');
        std::string file = net;
        m_net.read(net.data(), length);
        m_file.read(file.data(), length);
        ASSERT_EQ(m_net.gcount(), m_file.gcount());
        ASSERT_EQ(net, file);
        expectSame();
    }
}

TEST_F(BesideAFile, CopyGivesTheSameBytes)
{
    std::string net, file;
    std::copy(std::istreambuf_iterator<char>(m_net), {}, std::back_inserter(net));
    std::copy(std::istreambuf_iterator<char>(m_file), {}, std::back_inserter(file));
    EXPECT_EQ(net, file);
    expectSame();
}

TEST_F(BesideAFile, SeeksWithinTheFileGiveTheSamePositionsAndBytes)
{
    const Seek rows[] = {
        {100, std::ios::beg, 0},  {5, std::ios::cur, 0},    {-50, std::ios::cur, 0},
        {-1, std::ios::end, 0},   {0, std::ios::beg, 0},    {20000, std::ios::cur, 0},
        {-7, std::ios::end, 0},   {0, std::ios::cur, 0},    {0, std::ios::end, 0},
        {1009, std::ios::beg, 0}, {1008, std::ios::beg, 0}, {2018, std::ios::beg, 0},
    };
    for (const Seek& row : rows) {
        SCOPED_TRACE(testing::Message() << row.offset << " from " << row.direction);
        m_net.clear();
        m_file.clear();
        m_net.seekg(row.offset, row.direction);
        m_file.seekg(row.offset, row.direction);
        expectSame();
        char net[30] = {};
        char file[30] = {};
        m_net.read(net, sizeof net);
        m_file.read(file, sizeof file);
        ASSERT_EQ(std::string(net, sizeof net), std::string(file, sizeof file));
        ASSERT_EQ(m_net.gcount(), m_file.gcount());
    }
}

// Writing -------------------------------------------------------------------------------------

// What is written, and the lengths that the remote calls are given: the buffer holds one byte less
// than 16 MiB, and the byte that overflows it goes along.
TEST(NetOutput, EverySizeIsSentInFullBlocks)
{
    const std::pair<std::size_t, std::vector<std::string>> rows[] = {
        {0, {}},
        {1, {"write 1 -> 1"}},
        {kBlock - 1, {"write 16777215 -> 16777215"}},
        {kBlock, {"write 16777216 -> 16777216"}},
        {kBlock + 1, {"write 16777216 -> 16777216", "write 1 -> 1"}},
    };
    for (const auto& [size, writes] : rows) {
        SCOPED_TRACE(size);
        const std::string data = sample(size);
        const auto remote = std::make_shared<MemoryFileSystem>();
        {
            XeNetOStream<char> stream(remote, kPath, true);
            EXPECT_TRUE(stream.is_open());
            EXPECT_TRUE(remote->lastFlag);
            stream.write(data.data(), static_cast<std::streamsize>(size));
            EXPECT_TRUE(stream.good());
        }
        std::vector<std::string> calls = {"openWrite"};
        calls.insert(calls.end(), writes.begin(), writes.end());
        calls.push_back("closeWrite");
        EXPECT_EQ(remote->calls, calls);
        EXPECT_TRUE(remote->files[kPath] == data);
        expectClean(*remote);
    }
}

TEST(NetOutput, SingleCharactersFillTheWholeBuffer)
{
    const std::string data = sample(kBlock + 3);
    const auto remote = std::make_shared<MemoryFileSystem>();
    {
        XeNetOStream<char> stream(remote, kPath, false);
        for (const char c : data) {
            stream.rdbuf()->sputc(c);
        }
    }
    EXPECT_THAT(remote->calls, ElementsAre("openWrite", "write 16777216 -> 16777216",
                                           "write 3 -> 3", "closeWrite"));
    EXPECT_TRUE(remote->files[kPath] == data);
}

TEST(NetOutput, ShortWritesAreOfferedTheRest)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->mostBytes = 4;
    XeNetOStream<char> stream(remote, kPath, false);
    stream << "0123456789" << std::flush;
    EXPECT_TRUE(stream.good());
    EXPECT_THAT(remote->calls,
                ElementsAre("openWrite", "write 10 -> 4", "write 6 -> 4", "write 2 -> 2"));
    EXPECT_EQ(remote->files[kPath], "0123456789");
}

TEST(NetOutput, FlushingNothingReportsAFailedSync)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    const auto buffer = std::make_unique<XeNetOStreamBuf<char>>(remote, kPath, false);
    EXPECT_EQ(buffer->pubsync(), -1);
    EXPECT_EQ(buffer->sputc('a'), 'a');
    EXPECT_EQ(buffer->pubsync(), 0);
    EXPECT_EQ(buffer->pubsync(), -1);
    EXPECT_EQ(buffer->close(), 0);
    EXPECT_EQ(buffer->pubsync(), -1);
    EXPECT_EQ(remote->files[kPath], "a");
}

TEST(NetOutput, WithoutAFileSystemEveryFlushFails)
{
    XeNetOStream<char> stream(nullptr, kPath, false);
    EXPECT_FALSE(stream.is_open());
    stream << "lost";
    EXPECT_TRUE(stream.good());
    stream.flush();
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(stream.close(), static_cast<XeResult>(0x80000008));
}

TEST(NetOutput, AFileThatDoesNotOpenIsNeverWrittenOrClosed)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->failAt = 1;
    {
        XeNetOStream<char> stream(remote, kPath, false);
        stream << "lost";
        const std::string more = sample(kBlock);
        stream.write(more.data(), static_cast<std::streamsize>(more.size()));
        EXPECT_TRUE(stream.bad());
        stream.clear();
        stream << "still lost";
        EXPECT_TRUE(stream.bad());
    }
    EXPECT_THAT(remote->calls, ElementsAre("openWrite"));
}

// Whoever asks close() learns of the failure, whichever call it was.
TEST(NetOutput, AnyFailedCallIsReportedByClose)
{
    for (std::size_t failAt = 1;; ++failAt) {
        SCOPED_TRACE(failAt);
        const auto remote = std::make_shared<MemoryFileSystem>();
        remote->mostBytes = 30;
        remote->failAt = failAt;
        XeNetOStream<char> stream(remote, kPath, false);
        stream << sample(100);
        const XeResult result = stream.close();
        EXPECT_FALSE(stream.is_open());
        expectClean(*remote);
        EXPECT_EQ(sample(100).rfind(remote->files[kPath], 0), 0u) << "a true part of the data";
        if (remote->calls.size() < failAt) {
            EXPECT_EQ(failAt, 7u); // openWrite, four writes, closeWrite
            EXPECT_EQ(result, 0);
            EXPECT_EQ(remote->files[kPath], sample(100));
            break;
        }
        const bool notOpened = failAt == 1;
        EXPECT_EQ(result, notOpened ? static_cast<XeResult>(0x80000008) : MemoryFileSystem::kFault);
    }
}

TEST(NetOutput, AFailedFlushKeepsWhatWasNotTaken)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    remote->mostBytes = 4;
    remote->failAt = 3; // the second write
    XeNetOStream<char> stream(remote, kPath, false);
    stream << "0123456789" << std::flush;
    EXPECT_TRUE(stream.bad());
    stream.clear();
    stream << "abc" << std::flush;
    EXPECT_TRUE(stream.good());
    EXPECT_EQ(remote->files[kPath], "0123456789abc");
    EXPECT_EQ(stream.close(), 0);
}

// The character that overflowed lies in the spare element then, and no room is left.
TEST(NetOutput, AFullBufferThatCouldNotBeSentIsSentFirst)
{
    const std::string data = sample(kBlock + 5);
    const auto remote = std::make_shared<MemoryFileSystem>();
    XeNetOStream<char> stream(remote, kPath, false);
    std::streambuf& buffer = *stream.rdbuf();
    ASSERT_EQ(buffer.sputn(data.data(), kBlock - 1), static_cast<std::streamsize>(kBlock - 1));
    remote->failAt = 2;
    EXPECT_EQ(buffer.sputc(data[kBlock - 1]), EOF);
    remote->failAt = 3;
    EXPECT_EQ(buffer.sputn("refused", 7), 0);
    remote->failAt = 0;
    EXPECT_EQ(buffer.sputn(data.data() + kBlock, 5), 5);
    EXPECT_EQ(stream.close(), 0);
    EXPECT_TRUE(remote->files[kPath] == data);
    EXPECT_THAT(remote->calls,
                ElementsAre("openWrite", "write 16777216", "write 16777216",
                            "write 16777216 -> 16777216", "write 5 -> 5", "closeWrite"));
}

TEST(NetOutput, TakingNothingOrTooMuchIsAFailure)
{
    for (const bool beyond : {false, true}) {
        SCOPED_TRACE(beyond);
        const auto remote = std::make_shared<WrongCount>();
        remote->beyond = beyond;
        XeNetOStream<char> stream(remote, kPath, false);
        stream << "abc" << std::flush;
        EXPECT_TRUE(stream.bad());
        EXPECT_EQ(stream.close(), static_cast<XeResult>(0x80000008));
        expectClean(*remote);
    }
}

/// Overflow is protected; this is how a stream reaches it.
struct OpenOverflow : XeNetOStreamBuf<char> {
    using XeNetOStreamBuf::overflow;
    using XeNetOStreamBuf::XeNetOStreamBuf;
};

TEST(NetOutput, OverflowWithTheEndTakesAndSendsNothing)
{
    const auto remote = std::make_shared<MemoryFileSystem>();
    const auto buffer = std::make_unique<OpenOverflow>(remote, kPath, false);
    buffer->sputc('a');
    EXPECT_EQ(buffer->overflow(EOF), EOF);
    EXPECT_THAT(remote->calls, ElementsAre("openWrite"));
    EXPECT_EQ(buffer->overflow('b'), 'b') << "and with a character sends all";
    EXPECT_EQ(remote->files[kPath], "ab");
}

} // namespace
