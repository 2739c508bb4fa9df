#include "XeFileSystem.h"

#include "ForEachFailingCall.h"
#include "OpenDescriptors.h"
#include "TemporaryFolder.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace {

using Text = _XeString<wchar_t>;

constexpr unsigned kOpening = kFailOpen | kFailAdopt | kFailStat;

std::string sample()
{
    std::string bytes(100000, 'a');
    bytes[70000] = 'b';
    return bytes;
}

class StreamFaults : public testing::Test {
protected:
    Text wide(const char* name) const { return xenon::path::fromNative(m_folder.path(name)); }

    const TemporaryFolder m_folder;
    const std::string m_bytes = sample();
    const std::string m_file = m_folder.write("file", m_bytes);
};

// Looking at the path first is for pipes only: where that fails, opening tells.
TEST_F(StreamFaults, InputThatDoesNotOpenIsFailedAndHoldsNothing)
{
    for (const int error : {EIO, EACCES, EMFILE, ENOTCONN}) {
        const unsigned long calls =
            forEachFailingCall(kOpening, {.error = error}, [&](Fault& fault) {
                const std::size_t before = openDescriptors();
                const Text path = wide("file");
                std::shared_ptr<std::istream> stream;
                fault.during([&] { stream = XeFileSystem::openIStream(path); });
                ASSERT_NE(stream, nullptr);
                if (stream->good()) {
                    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(*stream), {}), m_bytes);
                } else {
                    EXPECT_TRUE(fault.happened());
                    EXPECT_EQ(openDescriptors(), before);
                }
                stream.reset();
                EXPECT_EQ(openDescriptors(), before);
            });
        EXPECT_GE(calls, 3u);
    }
}

TEST_F(StreamFaults, OutputThatDoesNotOpenIsFailedAndHoldsNothing)
{
    const unsigned long calls = forEachFailingCall(kOpening, {.error = EIO}, [&](Fault& fault) {
        const TemporaryFolder folder;
        const std::size_t before = openDescriptors();
        const Text path = xenon::path::fromNative(folder.path("new"));
        std::shared_ptr<std::ostream> stream;
        fault.during([&] { stream = XeFileSystem::openOStream(path); });
        ASSERT_NE(stream, nullptr);
        EXPECT_TRUE(fault.happened() || stream->good());
        if (*stream << m_bytes << std::flush) {
            EXPECT_EQ(TemporaryFolder::contents(folder.path("new")), m_bytes);
        } else {
            EXPECT_EQ(openDescriptors(), before);
        }
        stream.reset();
        EXPECT_EQ(openDescriptors(), before);
    });
    EXPECT_GE(calls, 3u);
}

TEST_F(StreamFaults, InterruptedOpenIsMadeAgain)
{
    EXPECT_GE(forEachFailingCall(kFailOpen, {.error = EINTR},
                                 [&](Fault& fault) {
                                     const Text path = wide("file");
                                     std::shared_ptr<std::istream> stream;
                                     fault.during(
                                         [&] { stream = XeFileSystem::openIStream(path); });
                                     EXPECT_TRUE(stream->good());
                                 }),
              1u);
}

// A reader can tell a broken file from one that is at its end.
TEST_F(StreamFaults, FailedReadMarksTheStreamAsBad)
{
    const unsigned long calls = forEachFailingCall(kFailRead, {.error = EIO}, [&](Fault& fault) {
        const auto stream = XeFileSystem::openIStream(wide("file"));
        std::string bytes(m_bytes.size() + 1, '\0');
        fault.during([&] { stream->read(bytes.data(), std::streamsize(bytes.size())); });
        EXPECT_EQ(stream->bad(), fault.happened());
        EXPECT_EQ(m_bytes.compare(0, std::size_t(stream->gcount()), bytes, 0,
                                  std::size_t(stream->gcount())),
                  0);
    });
    EXPECT_GE(calls, 2u);
}

TEST_F(StreamFaults, FailedWriteIsToldByTheFlush)
{
    for (const int error : {ENOSPC, EIO, EDQUOT}) {
        const unsigned long calls =
            forEachFailingCall(kFailWrite, {.error = error}, [&](Fault& fault) {
                const TemporaryFolder folder;
                const auto stream =
                    XeFileSystem::openOStream(xenon::path::fromNative(folder.path("new")));
                fault.during([&] { *stream << "head" << m_bytes << std::flush; });
                EXPECT_EQ(stream->good(), !fault.happened());
            });
        EXPECT_GE(calls, 1u);
    }
}

TEST_F(StreamFaults, FailedCloseIsToldByClosing)
{
    forEachFailingCall(kFailClose, {.error = EIO}, [&](Fault& fault) {
        const std::size_t before = openDescriptors();
        auto stream = XeFileSystem::openOStream(wide("new"));
        *stream << "x" << std::flush;
        fault.during([&] { dynamic_cast<std::ofstream&>(*stream).close(); });
        EXPECT_EQ(stream->fail(), fault.happened());
        stream.reset();
        EXPECT_EQ(openDescriptors(), before);
    });
}

TEST_F(StreamFaults, ShortReadsAndWritesMoveEverything)
{
    const FailingCallPlan plan{kFailRead | kFailWrite, 1, 0, kFailShort, true, nullptr};
    armFailingCalls(&plan);
    {
        const auto input = XeFileSystem::openIStream(wide("file"));
        const auto output = XeFileSystem::openOStream(wide("copy"));
        *output << input->rdbuf() << std::flush;
        EXPECT_TRUE(output->good());
    }
    disarmFailingCalls();
    EXPECT_EQ(TemporaryFolder::contents(m_folder.path("copy")), m_bytes);
}

#ifndef FAILING_CALLS_WITHOUT_MEMORY
TEST_F(StreamFaults, WantOfMemoryGivesAFailedStreamOrNone)
{
    const unsigned long calls =
        forEachFailingCall(kFailMemory, {.error = ENOMEM}, [&](Fault& fault) {
            const std::size_t before = openDescriptors();
            const Text path = wide("file");
            std::shared_ptr<std::istream> stream;
            fault.during([&] { stream = XeFileSystem::openIStream(path); });
            EXPECT_TRUE(fault.happened() || (stream != nullptr && stream->good()));
            stream.reset();
            EXPECT_EQ(openDescriptors(), before);
        });
    EXPECT_GE(calls, 3u);
}
#endif

} // namespace
