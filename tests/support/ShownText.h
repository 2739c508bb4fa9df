#pragma once

#include <ios>
#include <sstream>
#include <string>

/// Wide text for a trace: printable ASCII as it is, anything else as its number.
inline std::string shown(const std::wstring& text)
{
    std::ostringstream out;
    for (const wchar_t c : text) {
        if (c >= 0x20 && c < 0x7F) {
            out << static_cast<char>(c);
        } else {
            out << "\\x{" << std::hex << static_cast<unsigned>(c) << '}';
        }
    }
    return out.str();
}
