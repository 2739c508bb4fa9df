#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

/// Runs `body` in a child process that has no more rights than an ordinary user, and fails the
/// test when an expectation in it fails.
template <typename Body>
void asOrdinaryUser(Body body)
{
    constexpr unsigned kNobody = 65534;

    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
            _exit(2);
        }
        body();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: see above, 2: could not give up the rights";
}
