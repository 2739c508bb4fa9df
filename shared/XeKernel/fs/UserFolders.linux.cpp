#include "fs/UserFolders.linux.h"

#include "XeSafeCRT.h"
#include "fs/HomeFolder.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace userFolders {
namespace {

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kHomeInFile = "$HOME";

/// Neither an unset variable nor a relative path is a folder.
std::string _folderInEnvironment(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : "";
}

std::string _withoutEndingSeparators(std::string path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string _home()
{
    std::string home = _folderInEnvironment("HOME");
    if (home.empty()) {
        home = homeFolder();
    }
    return home.starts_with('/') ? _withoutEndingSeparators(std::move(home)) : std::string();
}

/// Empty without a home folder.
std::string _belowHome(const std::string& home, std::string_view below)
{
    std::string path = home;
    if (!home.empty()) {
        path.append(home == "/" ? "" : "/").append(below);
    }
    return path;
}

std::string _contentsOf(const std::string& path)
{
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "re"));
    std::string text;
    char block[4096];
    std::size_t count = 0;
    while (file != nullptr && (count = std::fread(block, 1, sizeof block, file.get())) > 0) {
        text.append(block, count);
    }
    return text;
}

/// Takes `word` off the front of `line`, and blanks before it; false when it is not there.
bool _skip(std::string_view& line, std::string_view word)
{
    const std::size_t start = line.find_first_not_of(kBlanks);
    if (start == std::string_view::npos || line.substr(start, word.size()) != word) {
        return false;
    }
    line.remove_prefix(start + word.size());
    return true;
}

/// The text up to the closing quotation mark, where '\\' stands before a character that is meant as
/// it is.
std::optional<std::string> _unquoted(std::string_view text)
{
    std::string plain;
    while (!text.empty() && text.front() != '"') {
        text.remove_prefix(text.front() == '\\' && text.size() > 1 ? 1 : 0);
        plain += text.front();
        text.remove_prefix(1);
    }
    return text.empty() ? std::nullopt : std::optional(plain);
}

/// The folder of a line `XDG_<name>_DIR="$HOME/..."` or `="/..."`, or nothing.
std::optional<std::string> _folderOfLine(std::string_view line, std::string_view name,
                                         const std::string& home)
{
    const std::string variable = "XDG_" + std::string(name) + "_DIR";
    if (!_skip(line, variable) || !_skip(line, "=") || !_skip(line, "\"")) {
        return std::nullopt;
    }
    const bool belowHome = line.starts_with(kHomeInFile);
    line.remove_prefix(belowHome ? kHomeInFile.size() : 0);
    const auto value = _unquoted(line);
    if (!value || !value->starts_with('/') || (belowHome && home.empty())) {
        return std::nullopt;
    }
    return _withoutEndingSeparators(belowHome ? _belowHome(home, value->substr(1)) : *value);
}

} // namespace

std::optional<std::string> entryOf(std::string_view text, std::string_view name,
                                   const std::string& home)
{
    std::optional<std::string> found;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(line.size() + (line.size() < text.size() ? 1 : 0));
        if (auto folder = _folderOfLine(line, name, home)) {
            found = std::move(folder); // a shell that reads the file takes the last line, too
        }
    }
    return found && *found != home ? found : std::nullopt;
}

std::string baseFolder(const char* variable, std::string_view belowHome)
{
    const std::string folder = _folderInEnvironment(variable);
    return folder.empty() ? _belowHome(_home(), belowHome) : _withoutEndingSeparators(folder);
}

std::string namedFolder(std::string_view name, std::string_view belowHome)
{
    const std::string home = _home();
    const std::string settings = baseFolder("XDG_CONFIG_HOME", ".config");
    const std::string text = settings.empty() ? "" : _contentsOf(settings + "/user-dirs.dirs");
    return entryOf(text, name, home).value_or(_belowHome(home, belowHome));
}

} // namespace userFolders
