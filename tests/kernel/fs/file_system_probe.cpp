// Tells what the kernel says of the program that runs:
//
//     file_system_probe executable FILE [unlink|replace]   its paths, one a line
//     file_system_probe unzip FILE ARCHIVE FOLDER          the result of unzipArchive
//
// FILE receives the answer. With "unlink" the program's own file is deleted first, with "replace"
// there is another one in its place.

#include "XeFileSystem.h"

#include "XeNativePath.h"

#include <unistd.h>

#include <fstream>
#include <string_view>

namespace {

using Text = _XeString<wchar_t>;

void tellExecutable(std::ostream& out)
{
    for (const auto get : {XeFileSystem::getExecutablePath, XeFileSystem::getExecutableFolder,
                           XeFileSystem::getResourceFolder, XeFileSystem::getExecutableName}) {
        Text text = L"none";
        const XeResult result = get(text);
        out << (result == 0 ? xenon::path::toNative(text).value() : "failed") << '\n';
    }
}

void loseOwnFile(const char* path, std::string_view how)
{
    unlink(path);
    if (how == "replace") {
        std::ofstream(path) << "another program";
    }
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 3) {
        return 2;
    }
    const std::string_view command = arguments[1];
    std::ofstream out(arguments[2]);
    if (command == "executable") {
        if (count > 3) {
            loseOwnFile(arguments[0], arguments[3]);
        }
        tellExecutable(out);
    } else if (command == "unzip" && count == 5) {
        out << XeFileSystem::unzipArchive(xenon::path::fromNative(arguments[3]).c_str(),
                                          xenon::path::fromNative(arguments[4]).c_str(), false);
    }
    return out ? 0 : 1;
}
