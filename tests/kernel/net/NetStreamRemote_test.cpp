#include "LoopbackServer.h"
#include "XeNetStream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

// The streams over a real connection to a server in another process.
namespace {

using xenon::network::XeNetOStream;
using xenon::network::XeNetStream;

constexpr std::size_t kMiB = 1u << 20;
const _XeString<wchar_t> kPath = L"/mount/take.wav";

std::string sample(std::size_t size)
{
    std::string data(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        data[i] = static_cast<char>(i * 31 + (i >> 8) * 7);
    }
    return data;
}

XeResult writeTo(const LoopbackServer& server, const std::string& data, int limitMs = 20000)
{
    XeNetOStream<char> stream(server.connect(limitMs), kPath, false);
    stream.write(data.data(), static_cast<std::streamsize>(data.size()));
    return stream.close();
}

XeResult readFrom(const LoopbackServer& server, std::string& data, int limitMs = 20000)
{
    XeNetStream<char> stream(server.connect(limitMs), kPath, false);
    std::ostringstream out;
    out << stream.rdbuf();
    data = out.str();
    return stream.close();
}

TEST(NetStreamRemote, WhatIsWrittenIsReadBack)
{
    const LoopbackServer server{ServerFault{}};
    const std::string data = sample(20 * kMiB + 1);
    EXPECT_EQ(writeTo(server, data), 0);
    std::string read;
    EXPECT_EQ(readFrom(server, read), 0);
    EXPECT_TRUE(read == data);
}

TEST(NetStreamRemote, ASlowServerIsWaitedFor)
{
    ServerFault fault;
    fault.chunkBytes = 4096;
    fault.pauseMs = 1;
    const LoopbackServer server(fault);
    const std::string data = sample(kMiB / 8);
    EXPECT_EQ(writeTo(server, data), 0);
    std::string read;
    EXPECT_EQ(readFrom(server, read), 0);
    EXPECT_TRUE(read == data);
}

TEST(NetStreamRemote, AnAbsentFileDoesNotOpen)
{
    const LoopbackServer server{ServerFault{}};
    XeNetStream<char> stream(server.connect(), kPath, false);
    EXPECT_FALSE(stream.is_open());
    EXPECT_EQ(stream.get(), EOF);
    EXPECT_LT(stream.close(), 0);
}

// The limit of data, and how much of a file of 20 MiB arrives: whole blocks before the cut.
TEST(NetStreamRemote, ACutWhileReadingIsReportedAndLeavesTrueData)
{
    const std::string data = sample(20 * kMiB);
    const std::pair<std::size_t, std::size_t> rows[] = {
        {0, 0}, {1000, 0}, {16 * kMiB, 16 * kMiB}, {18 * kMiB, 16 * kMiB}};
    for (const auto& [limit, arrived] : rows) {
        SCOPED_TRACE(limit);
        ServerFault fault;
        fault.mostSent = static_cast<std::int64_t>(limit);
        const LoopbackServer server(fault);
        EXPECT_EQ(writeTo(server, data), 0);
        std::string read;
        EXPECT_EQ(readFrom(server, read), kXeRemoteVolumeGone);
        EXPECT_TRUE(read == data.substr(0, arrived));
    }
}

TEST(NetStreamRemote, ACutWhileWritingIsReported)
{
    const std::size_t limits[] = {0, 1000, 7 * kMiB, 20 * kMiB - 1};
    for (const std::size_t limit : limits) {
        SCOPED_TRACE(limit);
        ServerFault fault;
        fault.mostReceived = static_cast<std::int64_t>(limit);
        const LoopbackServer server(fault);
        EXPECT_EQ(writeTo(server, sample(20 * kMiB)), kXeRemoteVolumeGone);
    }
}

TEST(NetStreamRemote, ASilentServerEndsTheTransferWithTheClientsTimeLimit)
{
    ServerFault fault;
    fault.mostReceived = 1000;
    fault.mostSent = 500;
    fault.silent = true;
    const LoopbackServer server(fault);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(writeTo(server, sample(1000)), 0);
    std::string read;
    EXPECT_EQ(readFrom(server, read, 200), kXeRemoteVolumeGone);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

} // namespace
