#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "ProgramBeside.linux.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

/// mirror_fuse, held open from the program's start: a test that has given up its rights may be
/// unable to reach the folder in which it lies.
inline const int fuseServerProgram =
    open(besideThisProgram("mirror_fuse").c_str(), O_PATH | O_CLOEXEC);

/// A folder shown at another place by a file system in user space (mirror_fuse), so by an ordinary
/// user too where that one may use FUSE. Its type is "fuse.<subtype>".
class FuseVolume {
public:
    /// @param options  As for mount.fuse3(8): "subtype=sshfs,fsname=host:/path".
    FuseVolume(const std::filesystem::path& source, std::filesystem::path mountPoint,
               const std::string& options)
        : m_mountPoint(std::move(mountPoint))
    {
        int mounted[2] = {};
        std::filesystem::create_directories(m_mountPoint);
        if (pipe2(mounted, O_CLOEXEC) != 0) {
            return;
        }
        m_server = fork();
        if (m_server == 0) {
            prctl(PR_SET_PDEATHSIG, SIGTERM); // a crashed test leaves none behind
            dup2(mounted[1], STDOUT_FILENO);
            const char* const words[] = {"mirror_fuse",   source.c_str(),       "-f",   "-s", "-o",
                                         options.c_str(), m_mountPoint.c_str(), nullptr};
            fexecve(fuseServerProgram, const_cast<char**>(words), environ);
            _exit(127);
        }
        close(mounted[1]);
        constexpr int kLimitMs = 20'000;
        char byte = 0;
        pollfd ready = {mounted[0], POLLIN, 0};
        m_mounted = poll(&ready, 1, kLimitMs) == 1 && read(mounted[0], &byte, 1) == 1;
        close(mounted[0]);
    }
    ~FuseVolume()
    {
        if (m_mounted) {
            _run("fusermount3", "-u", "-z", "-q", m_mountPoint.c_str());
        }
        killServer();
    }
    FuseVolume(const FuseVolume&) = delete;
    FuseVolume& operator=(const FuseVolume&) = delete;

    explicit operator bool() const { return m_mounted; }
    static const char* reason() { return "FUSE is not there, or not for this user"; }

    /// The volume stays mounted and does not answer any more.
    void killServer()
    {
        if (m_server > 0) {
            kill(m_server, SIGKILL);
            waitpid(m_server, nullptr, 0);
            m_server = -1;
        }
    }

private:
    template <typename... Arguments>
    static void _run(const char* program, Arguments... arguments)
    {
        const pid_t child = fork();
        if (child == 0) {
            execlp(program, program, arguments..., nullptr);
            _exit(127);
        }
        waitpid(child, nullptr, 0);
    }

    std::filesystem::path m_mountPoint;
    pid_t m_server = -1;
    bool m_mounted = false;
};
