#include "Command.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>

CommandResult runCommand(const std::string& command)
{
    FILE* const pipe = popen(("{ " + command + "\n} 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return {-1, "popen failed"};
    }
    CommandResult result{};
    std::array<char, 4096> chunk;
    while (const std::size_t count = fread(chunk.data(), 1, chunk.size(), pipe)) {
        result.output.append(chunk.data(), count);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::string quoted(const std::string& text)
{
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + '\'';
}
