#include "ForEachFailingCall.h"

#include "OpenDescriptors.h"
#include "TemporaryFolder.h"

#include <boost/filesystem/operations.hpp>

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <string>

namespace {

namespace fs = std::filesystem;

/// Arms a plan for the length of a block.
class Armed {
public:
    explicit Armed(const FailingCallPlan& plan) { armFailingCalls(&plan); }
    ~Armed() { disarmFailingCalls(); }
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;
};

FailingCallPlan failing(unsigned functions, int error, unsigned long nth = 1)
{
    return {functions, nth, error, kFailWithError, false, nullptr};
}

class FailingCalls : public testing::Test {
protected:
    const TemporaryFolder m_folder;
    const std::string m_file = m_folder.write("file", "0123456789");
    const std::string m_new = m_folder.path("new");
};

/// True when a call fails with the error that was planned.
using Call = std::function<bool()>;

TEST_F(FailingCalls, EveryFunctionFailsWithTheErrorThatWasPlanned)
{
    const char* const file = m_file.c_str();
    const char* const other = m_new.c_str();
    const char* const folder = m_folder.path().c_str();
    const int open_ = open(file, O_RDWR | O_CLOEXEC);
    DIR* const opened = opendir(folder);
    char bytes[8] = {};
    struct stat status {};
    struct statx extended {};
    const iovec vector{bytes, sizeof bytes};
    char* const arguments[] = {const_cast<char*>("true"), nullptr};
    const std::pair<unsigned, Call> calls[] = {
        {kFailOpen, [&] { return open(file, O_RDONLY) == -1; }},
        {kFailOpen, [&] { return openat(AT_FDCWD, file, O_RDONLY) == -1; }},
        {kFailOpen, [&] { return fopen(file, "r") == nullptr; }},
        {kFailAdopt, [&] { return fdopen(open_, "r") == nullptr; }},
        {kFailAdopt, [&] { return fdopendir(open_) == nullptr; }},
        {kFailRead, [&] { return read(open_, bytes, 1) == -1; }},
        {kFailRead, [&] { return pread(open_, bytes, 1, 0) == -1; }},
        {kFailRead, [&] { return readv(open_, &vector, 1) == -1; }},
        {kFailWrite, [&] { return write(open_, bytes, 1) == -1; }},
        {kFailWrite, [&] { return writev(open_, &vector, 1) == -1; }},
        {kFailCopy, [&] { return copy_file_range(open_, nullptr, open_, nullptr, 1, 0) == -1; }},
        {kFailSize, [&] { return ftruncate(open_, 1) == -1; }},
        {kFailSize, [&] { return (errno = posix_fallocate(open_, 0, 1)) != 0; }},
        {kFailSync, [&] { return fsync(open_) == -1; }},
        {kFailOpen, [&] { return opendir(folder) == nullptr; }},
        {kFailReadFolder, [&] { return readdir(opened) == nullptr; }},
        {kFailStat, [&] { return stat(file, &status) == -1; }},
        {kFailStat, [&] { return lstat(file, &status) == -1; }},
        {kFailStat, [&] { return fstat(open_, &status) == -1; }},
        {kFailStat, [&] { return fstatat(AT_FDCWD, file, &status, 0) == -1; }},
        {kFailStat, [&] { return statx(AT_FDCWD, file, 0, STATX_TYPE, &extended) == -1; }},
        {kFailAccess, [&] { return access(file, R_OK) == -1; }},
        {kFailAccess, [&] { return faccessat(AT_FDCWD, file, R_OK, 0) == -1; }},
        {kFailResolve, [&] { return readlink(file, bytes, 1) == -1; }},
        {kFailResolve, [&] { return realpath(file, nullptr) == nullptr; }},
        {kFailMakeFolder, [&] { return mkdir(other, 0777) == -1; }},
        {kFailRemoveFolder, [&] { return rmdir(folder) == -1; }},
        {kFailRemoveFolder, [&] { return unlinkat(AT_FDCWD, folder, AT_REMOVEDIR) == -1; }},
        {kFailUnlink, [&] { return unlink(file) == -1; }},
        {kFailUnlink, [&] { return unlinkat(AT_FDCWD, file, 0) == -1; }},
        {kFailUnlink, [&] { return remove(file) == -1; }},
        {kFailRename, [&] { return rename(file, other) == -1; }},
        {kFailRename, [&] { return renameat2(AT_FDCWD, file, AT_FDCWD, other, 0) == -1; }},
        {kFailLink, [&] { return link(file, other) == -1; }},
        {kFailSymlink, [&] { return symlink(file, other) == -1; }},
        {kFailMode, [&] { return chmod(file, 0600) == -1; }},
        {kFailMode, [&] { return fchmod(open_, 0600) == -1; }},
        {kFailTimes, [&] { return utimensat(AT_FDCWD, file, nullptr, 0) == -1; }},
        {kFailSpawn,
         [&] {
             return (errno = posix_spawn(nullptr, "/bin/true", nullptr, nullptr, arguments,
                                         environ)) != 0;
         }},
        {kFailWait, [&] { return waitpid(-1, nullptr, WNOHANG) == -1; }},
    };
    for (const auto& [group, call] : calls) {
        SCOPED_TRACE(&call - &calls[0].second);
        const Armed armed(failing(group, EDOM));
        errno = 0;
        EXPECT_TRUE(call());
        EXPECT_EQ(errno, EDOM);
        EXPECT_EQ(disarmFailingCalls(), 1u);
    }
    EXPECT_EQ(TemporaryFolder::contents(m_file), "0123456789");
    EXPECT_FALSE(fs::exists(m_new));
    closedir(opened);
    close(open_);
}

TEST_F(FailingCalls, OnlyTheCallThatWasCountedFails)
{
    const Armed armed(failing(kFailStat, EIO, 3));
    struct stat status {};
    EXPECT_EQ(stat(m_file.c_str(), &status), 0);
    EXPECT_EQ(access(m_file.c_str(), R_OK), 0); // is of another group
    EXPECT_EQ(lstat(m_file.c_str(), &status), 0);
    EXPECT_EQ(stat(m_file.c_str(), &status), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(stat(m_file.c_str(), &status), 0);
    EXPECT_EQ(disarmFailingCalls(), 4u);
    EXPECT_EQ(stat(m_file.c_str(), &status), 0);
    EXPECT_EQ(disarmFailingCalls(), 4u);
}

TEST_F(FailingCalls, FailureOnwardsStays)
{
    FailingCallPlan plan = failing(kFailAccess, EIO, 2);
    plan.onwards = true;
    const Armed armed(plan);
    EXPECT_EQ(access(m_file.c_str(), R_OK), 0);
    EXPECT_EQ(access(m_file.c_str(), R_OK), -1);
    EXPECT_EQ(access(m_file.c_str(), R_OK), -1);
}

TEST_F(FailingCalls, FailedCloseHasClosed)
{
    const std::size_t before = openDescriptors();
    const int descriptor = open(m_file.c_str(), O_RDONLY | O_CLOEXEC);
    {
        const Armed armed(failing(kFailClose, EIO));
        EXPECT_EQ(close(descriptor), -1);
        EXPECT_EQ(errno, EIO);
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(FailingCalls, ShortCallsMoveHalf)
{
    const int descriptor = open(m_file.c_str(), O_RDWR | O_CLOEXEC);
    char bytes[9] = {};
    iovec vector[] = {{bytes, 0}, {bytes, 5}, {bytes, 4}};
    const FailingCallPlan plan{kFailRead | kFailWrite | kFailCopy, 1, 0, kFailShort, true, nullptr};
    {
        const Armed armed(plan);
        EXPECT_EQ(read(descriptor, bytes, 9), 5);
        EXPECT_EQ(pread(descriptor, bytes, 1, 0), 1);
        EXPECT_EQ(readv(descriptor, vector, 3), 3);
        EXPECT_EQ(pwrite(descriptor, "ab", 2, 8), 1);
        EXPECT_EQ(writev(descriptor, vector, 3), 3);
        off64_t from = 0;
        off64_t to = 6;
        EXPECT_EQ(copy_file_range(descriptor, &from, descriptor, &to, 4, 0), 2);
    }
    close(descriptor);
}

std::string g_comesMeanwhile;

TEST_F(FailingCalls, SomethingMayHappenMeanwhile)
{
    g_comesMeanwhile = m_new;
    const auto make = [] { close(open(g_comesMeanwhile.c_str(), O_CREAT | O_CLOEXEC, 0600)); };
    const Armed armed({kFailAccess | kFailOpen | kFailClose, 2, 0, kFailMeanwhile, false, make});
    EXPECT_NE(access(m_new.c_str(), F_OK), 0);
    EXPECT_EQ(access(m_new.c_str(), F_OK), 0);
    EXPECT_EQ(access(m_file.c_str(), F_OK), 0);
    EXPECT_EQ(disarmFailingCalls(), 3u); // what it does itself is not counted
}

TEST_F(FailingCalls, EntriesMayBeWithoutAType)
{
    const FailingCallPlan plan{kFailReadFolder, 1, 0, kFailUntyped, true, nullptr};
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(m_folder.path().c_str()), closedir);
    const Armed armed(plan);
    while (const dirent* const entry = readdir(folder.get())) {
        EXPECT_EQ(entry->d_type, DT_UNKNOWN);
    }
    EXPECT_EQ(disarmFailingCalls(), 4u); // ".", "..", the file and the end
}

TEST_F(FailingCalls, EntryMayBeToldTwice)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(m_folder.path().c_str()), closedir);
    const Armed armed({kFailReadFolder, 2, 0, kFailRepeat, false, nullptr});
    const std::string first = readdir(folder.get())->d_name;
    EXPECT_EQ(readdir(folder.get())->d_name, first);
    EXPECT_NE(readdir(folder.get())->d_name, first);
}

// Those libraries make their calls inside themselves.
TEST_F(FailingCalls, CallsOfTheLibrariesAreReached)
{
    std::error_code standard;
    boost::system::error_code boosts;
    const auto failsIn = [&](unsigned group, const std::function<void()>& call) {
        const Armed armed(failing(group, EIO));
        call();
        EXPECT_GE(disarmFailingCalls(), 1u);
    };
    failsIn(kFailOpen, [&] { EXPECT_FALSE(std::ifstream(m_file).is_open()); });
    failsIn(kFailRead, [&] { EXPECT_EQ(std::ifstream(m_file).get(), EOF); });
    failsIn(kFailWrite, [&] { EXPECT_FALSE(std::ofstream(m_new) << "x" << std::flush); });
    failsIn(kFailRename, [&] { fs::rename(m_file, m_new, standard); });
    EXPECT_EQ(standard.value(), EIO);
    failsIn(kFailUnlink, [&] { fs::remove(m_file, standard); });
    EXPECT_EQ(standard.value(), EIO);
    failsIn(kFailStat, [&] { boost::filesystem::status(m_file, boosts); });
    EXPECT_EQ(boosts.value(), EIO);
    failsIn(kFailMakeFolder, [&] { boost::filesystem::create_directory(m_new, boosts); });
    EXPECT_EQ(boosts.value(), EIO);
    failsIn(kFailUnlink | kFailRemoveFolder, [&] { boost::filesystem::remove(m_file, boosts); });
    EXPECT_EQ(boosts.value(), EIO);
    failsIn(kFailCopy, [&] { boost::filesystem::copy_file(m_file, m_new + "er", boosts); });
    EXPECT_EQ(boosts.value(), EIO);
    failsIn(kFailAdopt | kFailOpen, [&] {
        EXPECT_EQ(boost::filesystem::directory_iterator(m_folder.path().native(), boosts),
                  boost::filesystem::directory_iterator());
    });
    EXPECT_EQ(boosts.value(), EIO);
}

#ifndef FAILING_CALLS_WITHOUT_MEMORY
TEST_F(FailingCalls, MemoryMayBeShort)
{
    const Armed armed(failing(kFailMemory, ENOMEM));
    bool threw = false;
    try {
        // Kept from being optimised away.
        const std::string text(static_cast<std::size_t>(getpid()) + 1000, 'x');
        threw = text.empty();
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    EXPECT_TRUE(threw);
}
#endif

TEST_F(FailingCalls, EachRunFailsOneCallFurtherOn)
{
    const auto looks = [&](Fault& fault) {
        int failed = 0;
        fault.during([&] {
            struct stat status {};
            for (int i = 1; i <= 5; ++i) {
                if (stat(m_file.c_str(), &status) != 0) {
                    failed = i;
                }
            }
        });
        EXPECT_EQ(fault.calls(), 5u);
        EXPECT_EQ(fault.happened(), failed != 0);
    };
    EXPECT_EQ(forEachFailingCall(kFailStat, {.error = EIO}, looks), 5u);
    EXPECT_EQ(forEachFailingCall(kFailRename, {.error = EIO},
                                 [](Fault& fault) {
                                     fault.during([] {});
                                     EXPECT_FALSE(fault.happened());
                                 }),
              0u);
}

// The outcomes of single runs, since a broken one fails the test that it is in.
TEST_F(FailingCalls, RunsTellHowTheyEnded)
{
    const FailingCallPlan plan = failing(kFailStat, EIO, 2);
    const auto outcome = [&](auto body) { return runWithFault(plan, body); };
    const auto looks = [&](int times) {
        struct stat status {};
        for (int i = 0; i < times; ++i) {
            stat(m_file.c_str(), &status);
        }
    };
    EXPECT_EQ(outcome([&](Fault& fault) { fault.during([&] { looks(2); }); }), FaultRun::met);
    EXPECT_EQ(outcome([&](Fault& fault) { fault.during([&] { looks(1); }); }), FaultRun::notMet);
    EXPECT_EQ(outcome([&](Fault&) { abort(); }), FaultRun::broken);
}

} // namespace
