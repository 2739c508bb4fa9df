#pragma once

#include "TemporaryFolder.h"
#include "XeFile.h"
#include "XeNativePath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A folder of their own for the tests of files.
class FileTest : public testing::Test {
protected:
    using Text = _XeString<wchar_t>;
    using Path = std::filesystem::path;

    static Text wide(const Path& path) { return xenon::path::fromNative(path.native()); }

    static void put(const Path& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    Path made(const std::string& name, const std::string& bytes) const
    {
        put(m_folder / name, bytes);
        return m_folder / name;
    }

    static std::string bytesOf(const Path& path)
    {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    template <typename Unit>
    static std::string bytesOf(const std::basic_string<Unit>& units)
    {
        return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(Unit)};
    }

    const TemporaryFolder m_folder;
};

/// Attributes with a path of their own.
struct Attributes : _xeAttrib {
    explicit Attributes(const std::filesystem::path& where)
        : text_(xenon::path::fromNative(where.native()))
    {
        path = text_.c_str();
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

private:
    const _XeString<wchar_t> text_;
};

struct ReadOnly : Attributes {
    explicit ReadOnly(const std::filesystem::path& where) : Attributes(where) { readOnly = true; }
};

struct Create : Attributes {
    explicit Create(const std::filesystem::path& where) : Attributes(where) { create = true; }
};

struct Window : Attributes {
    Window(const std::filesystem::path& where, long long from, long long bytes, bool toRead)
        : Attributes(where)
    {
        offset = from;
        length = bytes;
        readOnly = toRead;
    }
};
