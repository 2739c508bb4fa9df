#pragma once

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

/// Runs `body` in a child process, for what cannot be undone in this one, and fails the test when
/// an expectation in it fails.
template <typename Body>
void inChild(Body body)
{
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        body();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "see above";
}
