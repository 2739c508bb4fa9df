#include "fs/ChildProcess.linux.h"

#include "XeSafeCRT.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace {

/// Both attributes of posix_spawn(3), destroyed together.
struct SpawnSettings {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

    SpawnSettings()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings()
    {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
};

bool _isPassedOn(std::string_view variable)
{
    constexpr std::array<std::string_view, 5> kDropped = {"LC_ALL", "ZIP", "ZIPOPT", "UNZIP",
                                                          "UNZIPOPT"};
    const std::string_view name = variable.substr(0, variable.find('='));
    for (const std::string_view dropped : kDropped) {
        if (name == dropped) {
            return false;
        }
    }
    return true;
}

std::vector<std::string> _environment()
{
    std::vector<std::string> variables = {"LC_ALL=C.UTF-8"};
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        if (_isPassedOn(*variable)) {
            variables.emplace_back(*variable);
        }
    }
    return variables;
}

std::vector<char*> _pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// A host may have blocked or ignored signals; the child starts as from a shell.
bool _resetSignals(posix_spawnattr_t& attributes)
{
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    return posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                     POSIX_SPAWN_SETSID) == 0 &&
           posix_spawnattr_setsigmask(&attributes, &none) == 0 &&
           posix_spawnattr_setsigdefault(&attributes, &all) == 0;
}

bool _prepare(SpawnSettings& settings, const std::string& workingFolder)
{
    posix_spawn_file_actions_t* const actions = &settings.actions;
    return _resetSignals(settings.attributes) &&
           posix_spawn_file_actions_addopen(actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0) == 0 &&
           posix_spawn_file_actions_addopen(actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0) ==
               0 &&
           posix_spawn_file_actions_adddup2(actions, STDOUT_FILENO, STDERR_FILENO) == 0 &&
           posix_spawn_file_actions_addclosefrom_np(actions, STDERR_FILENO + 1) == 0 &&
           (workingFolder.empty() ||
            posix_spawn_file_actions_addchdir_np(actions, workingFolder.c_str()) == 0);
}

int _exitStatus(pid_t child)
{
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended == -1 && errno == EINTR);
    return ended == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

int runChildProcess(const std::vector<std::string>& arguments, const std::string& workingFolder)
{
    SpawnSettings settings;
    std::vector<std::string> texts = arguments;
    std::vector<std::string> variables = _environment();
    pid_t child = 0;
    const bool started =
        _prepare(settings, workingFolder) &&
        posix_spawn(&child, arguments.front().c_str(), &settings.actions, &settings.attributes,
                    _pointers(texts).data(), _pointers(variables).data()) == 0;
    return started ? _exitStatus(child) : -1;
}
