#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include <filesystem>
#include <string>

/// Path of a file that lies in the folder of the running test program: a helper that is built with
/// it. So both can be copied elsewhere together.
inline std::string besideThisProgram(const std::string& name)
{
    return std::filesystem::read_symlink("/proc/self/exe").replace_filename(name);
}
