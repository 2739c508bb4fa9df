#include "LoopbackServer.h"

#include "StreamsOnlyFileSystem.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace {

enum class Operation : std::uint32_t {
    Size,
    OpenRead,
    Read,
    CloseRead,
    OpenWrite,
    Write,
    CloseWrite
};

/// Followed by `bytes` of path or data.
struct Request {
    Operation operation;
    std::uint32_t bytes;
    std::uint64_t handle;
    std::int64_t length;
};

/// Followed by `bytes` of data.
struct Reply {
    std::int32_t result;
    std::uint32_t bytes;
    std::int64_t value;
};

bool sendAll(int socket, const void* data, std::size_t size)
{
    const char* next = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t sent = send(socket, next, size, MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        next += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, void* data, std::size_t size)
{
    char* next = static_cast<char*>(data);
    while (size > 0) {
        const ssize_t received = recv(socket, next, size, 0);
        if (received <= 0) {
            return false;
        }
        next += received;
        size -= static_cast<std::size_t>(received);
    }
    return true;
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

/// One connection, in the server's process.
class Session {
public:
    Session(int socket, const ServerFault& fault, std::map<std::string, std::string>& files)
        : m_socket(socket), m_fault(fault), m_files(files)
    {
    }

    void serve()
    {
        Request request;
        while (receiveAll(m_socket, &request, sizeof request) && answer(request)) {
        }
        close(m_socket);
    }

private:
    struct Open {
        std::string path;
        std::size_t at = 0;
    };

    bool answer(const Request& request)
    {
        std::string body(request.bytes, '\0');
        const bool arrived = request.operation == Operation::Write
                                 ? move(body, m_mayReceive, receiveAll)
                                 : receiveAll(m_socket, body.data(), body.size());
        if (!arrived) {
            return false;
        }
        switch (request.operation) {
        case Operation::Size:
            return m_files.count(body) == 0
                       ? refuse()
                       : reply(static_cast<std::int64_t>(m_files[body].size()));
        case Operation::OpenRead:
            return m_files.count(body) == 0 ? refuse() : reply(open(body));
        case Operation::OpenWrite:
            m_files[body].clear();
            return reply(open(body));
        case Operation::Write:
            m_files[m_open[request.handle].path] += body;
            return reply(static_cast<std::int64_t>(body.size()));
        case Operation::Read:
            return replyData(m_open[request.handle], request.length);
        case Operation::CloseRead:
        case Operation::CloseWrite:
            m_open.erase(request.handle);
            return reply(0);
        }
        return false;
    }

    std::int64_t open(const std::string& path)
    {
        m_open[++m_lastHandle] = {path};
        return static_cast<std::int64_t>(m_lastHandle);
    }

    bool reply(std::int64_t value)
    {
        const Reply answer{kXeOk, 0, value};
        return sendAll(m_socket, &answer, sizeof answer);
    }

    bool refuse()
    {
        const Reply answer{kXeGeneralFailure, 0, 0};
        return sendAll(m_socket, &answer, sizeof answer);
    }

    bool replyData(Open& file, std::int64_t length)
    {
        std::string data = m_files[file.path].substr(file.at, static_cast<std::size_t>(length));
        file.at += data.size();
        const Reply answer{kXeOk, static_cast<std::uint32_t>(data.size()), 0};
        return sendAll(m_socket, &answer, sizeof answer) && move(data, m_maySend, sendAll);
    }

    /// Sends or receives file data in the fault's manner.
    template <typename Transfer>
    bool move(std::string& data, std::int64_t& left, Transfer transfer)
    {
        for (std::size_t at = 0; at < data.size();) {
            if (left == 0) {
                return m_fault.silent && pause() == 0;
            }
            usleep(static_cast<useconds_t>(m_fault.pauseMs) * 1000);
            const auto chunk = std::min<std::int64_t>(
                {static_cast<std::int64_t>(data.size() - at), m_fault.chunkBytes, left});
            if (!transfer(m_socket, data.data() + at, static_cast<std::size_t>(chunk))) {
                return false;
            }
            at += static_cast<std::size_t>(chunk);
            left -= chunk;
        }
        return true;
    }

    int m_socket;
    const ServerFault& m_fault;
    std::map<std::string, std::string>& m_files;
    std::map<std::uint64_t, Open> m_open;
    std::uint64_t m_lastHandle = 0;
    std::int64_t m_mayReceive = m_fault.mostReceived;
    std::int64_t m_maySend = m_fault.mostSent;
};

/// The server's process: one connection after the other, until it is killed.
[[noreturn]] void runServer(int listener, const ServerFault& fault)
{
    std::map<std::string, std::string> files;
    for (;;) {
        const int socket = accept(listener, nullptr, nullptr);
        if (socket < 0) {
            _exit(1);
        }
        Session(socket, fault, files).serve();
    }
}

/// The client's end of a connection.
class RemoteFileSystem : public StreamsOnlyFileSystem {
public:
    RemoteFileSystem(std::uint16_t port, int limitMs) : m_socket(socket(AF_INET, SOCK_STREAM, 0))
    {
        const timeval limit{limitMs / 1000, limitMs % 1000 * 1000};
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        const int on = 1;
        setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const sockaddr_in address = loopback(port);
        m_broken =
            ::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0;
    }
    ~RemoteFileSystem() override { close(m_socket); }

    XeResult getFileSize(const Path& path, std::int64_t& size) override
    {
        return call(Operation::Size, bytes(path), 0, 0, &size);
    }
    XeResult openRead(const Path& path, Handle& handle, bool) override
    {
        return open(Operation::OpenRead, path, handle);
    }
    XeResult read(Handle handle, void* buffer, int length, int& count) override
    {
        return call(Operation::Read, {}, handle, length, nullptr, buffer, &count);
    }
    XeResult closeRead(Handle handle, int) override
    {
        return call(Operation::CloseRead, {}, handle, 0, nullptr);
    }
    XeResult openWrite(const Path& path, Handle& handle, bool) override
    {
        return open(Operation::OpenWrite, path, handle);
    }
    // At most 5 MiB at a time, so that the rest has to be offered again.
    XeResult write(Handle handle, const void* data, int length, int& count) override
    {
        const int taken = std::min(length, 5 << 20);
        std::int64_t value = 0;
        const XeResult result =
            call(Operation::Write,
                 std::string_view(static_cast<const char*>(data), static_cast<std::size_t>(taken)),
                 handle, 0, &value);
        count = static_cast<int>(value);
        return result;
    }
    XeResult closeWrite(Handle handle) override
    {
        return call(Operation::CloseWrite, {}, handle, 0, nullptr);
    }

private:
    static std::string_view bytes(const Path& path)
    {
        return {reinterpret_cast<const char*>(path.data()), path.size() * sizeof(wchar_t)};
    }

    XeResult open(Operation operation, const Path& path, Handle& handle)
    {
        std::int64_t value = 0;
        const XeResult result = call(operation, bytes(path), 0, 0, &value);
        handle = static_cast<Handle>(value);
        return result;
    }

    XeResult call(Operation operation, std::string_view body, Handle handle, std::int64_t length,
                  std::int64_t* value, void* buffer = nullptr, int* count = nullptr)
    {
        const Request request{operation, static_cast<std::uint32_t>(body.size()), handle, length};
        Reply reply{};
        m_broken = m_broken || !sendAll(m_socket, &request, sizeof request) ||
                   !sendAll(m_socket, body.data(), body.size()) ||
                   !receiveAll(m_socket, &reply, sizeof reply) ||
                   !receiveAll(m_socket, buffer, reply.bytes);
        if (m_broken) {
            return kXeRemoteVolumeGone;
        }
        if (value != nullptr) {
            *value = reply.value;
        }
        if (count != nullptr) {
            *count = static_cast<int>(reply.bytes);
        }
        return reply.result;
    }

    int m_socket;
    bool m_broken;
};

} // namespace

LoopbackServer::LoopbackServer(const ServerFault& fault)
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof address;
    EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener, 4), 0);
    EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length), 0);
    m_port = ntohs(address.sin_port);
    m_process = fork();
    if (m_process == 0) {
        runServer(listener, fault);
    }
    close(listener);
}

LoopbackServer::~LoopbackServer()
{
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
}

std::shared_ptr<xenon::network::IFileSystem> LoopbackServer::connect(int limitMs) const
{
    return std::make_shared<RemoteFileSystem>(m_port, limitMs);
}
