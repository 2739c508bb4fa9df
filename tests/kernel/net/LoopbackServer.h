#pragma once

#include "IFileSystem.h"

#include <sys/types.h>

#include <cstdint>
#include <memory>

/// How a server misbehaves, on each connection.
struct ServerFault {
    static constexpr std::int64_t kNoLimit = 1LL << 60;

    std::int64_t mostReceived = kNoLimit; ///< bytes of file data; then it ends the connection
    std::int64_t mostSent = kNoLimit;
    bool silent = false;      ///< at the limit it keeps the connection and does nothing more
    int chunkBytes = 1 << 30; ///< most bytes that it moves at a time
    int pauseMs = 0;          ///< before each chunk
};

/// A file server of its own process, on a TCP port of 127.0.0.1, with files in memory. Ends with
/// this object.
class LoopbackServer {
public:
    explicit LoopbackServer(const ServerFault& fault);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// A file system over one connection to the server. A broken connection or an answer that
    /// takes longer than `limitMs` gives kXeRemoteVolumeGone, from then on at once.
    std::shared_ptr<xenon::network::IFileSystem> connect(int limitMs = 20000) const;

private:
    pid_t m_process = -1;
    std::uint16_t m_port = 0;
};
