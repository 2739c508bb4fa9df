#include "fs/HomeFolder.h"

#include "XeSafeCRT.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

std::string homeFolder()
{
    constexpr std::size_t kFirstBytes = 1024;

    std::vector<char> text(kFirstBytes);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(getuid(), &entry, text.data(), text.size(), &found)) == ERANGE ||
           error == EINTR) {
        text.resize(error == ERANGE ? 2 * text.size() : text.size());
    }
    return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
}
