#pragma once

#include <string>

/// The home folder of the process's user as the password database has it, in bytes; empty when it
/// has none. [any]
std::string homeFolder();
