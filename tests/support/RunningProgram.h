#pragma once

#include <sys/types.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <thread>

/// A program that a test has started. It does not outlive the test.
class RunningProgram {
public:
    RunningProgram() = default;
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    ~RunningProgram()
    {
        if (m_process > 0) {
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
        }
    }

    /// Takes over a process that nobody has waited for.
    void take(pid_t process) { m_process = process; }

    /// 0 once it has ended.
    pid_t process() const { return m_process; }

    /// Waits for the end; the raw status, or -1 when it did not come in time.
    int status(std::chrono::milliseconds timeLimit)
    {
        const auto limit = std::chrono::steady_clock::now() + timeLimit;
        while (std::chrono::steady_clock::now() < limit) {
            int status = 0;
            if (waitpid(m_process, &status, WNOHANG) == m_process) {
                m_process = 0;
                return status;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return -1;
    }

private:
    pid_t m_process = 0;
};
