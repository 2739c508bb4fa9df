#pragma once

#include "IFileSystem.h"
#include "XeFileSystemManager.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A remote volume in memory, with a log of the calls and failures on request. Like a strict remote
/// it creates nothing below a folder that is missing. One thread at a time.
class MemoryFileSystem : public xenon::network::IFileSystem {
public:
    using Path = _XeString<wchar_t>;

    /// What is stored: the bytes of a file, or nothing for a folder. Paths as the caller gives
    /// them, without '/' at the end.
    std::map<Path, std::optional<std::string>> items;

    /// Names of the operations called, in order: "openRead", "read", ...
    std::vector<std::string> calls;

    /// Results of operations by name, in place of doing anything.
    std::map<std::string, XeResult> failures;

    /// The number of calls that still succeed; after them every call gives `lateFailure`.
    std::size_t callsLeft = static_cast<std::size_t>(-1);
    XeResult lateFailure = kXeGeneralFailure;

    /// Most bytes that one read or write moves.
    int mostBytes = 1 << 30;

    /// What openRead and openWrite gave out and nobody closed.
    std::size_t openHandles() const { return m_open.size(); }

    void addFile(const Path& path, std::string bytes) { items[path] = std::move(bytes); }
    void addFolder(const Path& path) { items[path] = std::nullopt; }
    bool holds(const Path& path) const { return items.count(_key(path)) != 0; }
    std::string bytesOf(const Path& path) const { return items.at(path).value(); }

    XeResult getFileSize(const Path& path, std::int64_t& size) override
    {
        XeResult result = _begin("getFileSize");
        if (result == kXeOk && (result = _isFile(path)) == kXeOk) {
            size = static_cast<std::int64_t>(items[_key(path)]->size());
        }
        return result;
    }

    XeResult openRead(const Path& path, Handle& handle, bool) override
    {
        XeResult result = _begin("openRead");
        if (result == kXeOk && (result = _isFile(path)) == kXeOk) {
            handle = _open(path);
        }
        return result;
    }

    XeResult read(Handle handle, void* buffer, int length, int& count) override
    {
        if (const XeResult result = _begin("read"); result != kXeOk) {
            return result;
        }
        auto& [path, position] = m_open.at(handle);
        const std::string& bytes = *items.at(path);
        count = static_cast<int>(std::min<std::size_t>(
            static_cast<std::size_t>(std::min(length, mostBytes)), bytes.size() - position));
        std::memcpy(buffer, bytes.data() + position, static_cast<std::size_t>(count));
        position += static_cast<std::size_t>(count);
        return kXeOk;
    }

    XeResult closeRead(Handle handle, int) override
    {
        m_open.erase(handle);
        return _begin("closeRead");
    }

    XeResult openWrite(const Path& path, Handle& handle, bool) override
    {
        const XeResult result = _begin("openWrite");
        if (result != kXeOk || !_isFolder(_parent(path)) || _isFolder(path)) {
            return result != kXeOk ? result : kXeGeneralFailure;
        }
        addFile(_key(path), "");
        handle = _open(path);
        return kXeOk;
    }

    XeResult write(Handle handle, const void* data, int length, int& count) override
    {
        if (const XeResult result = _begin("write"); result != kXeOk) {
            return result;
        }
        count = std::min(length, mostBytes);
        items.at(m_open.at(handle).first)
            ->append(static_cast<const char*>(data), static_cast<std::size_t>(count));
        return kXeOk;
    }

    XeResult closeWrite(Handle handle) override
    {
        m_open.erase(handle);
        return _begin("closeWrite");
    }

    XeResult createFolder(const Path& path) override
    {
        const XeResult result = _begin("createFolder");
        if (result != kXeOk || _isFolder(path)) {
            return result;
        }
        if (holds(path) || !_isFolder(_parent(path))) {
            return kXeGeneralFailure;
        }
        addFolder(_key(path));
        return kXeOk;
    }

    XeResult strictFileName(const Path& name, Path& strictName) override
    {
        const XeResult result = _begin("strictFileName");
        if (result == kXeOk) {
            strictName = name;
            std::replace(strictName.begin(), strictName.end(), L':', L'_');
        }
        return result;
    }

    XeResult list(const Path& path, std::vector<Entry>& entries) override
    {
        const XeResult result = _begin("list");
        if (result != kXeOk || !_isFolder(path)) {
            return result != kXeOk ? result : kXeGeneralFailure;
        }
        for (const auto& [item, bytes] : items) {
            if (_parent(item) == _key(path) && item != _key(path)) {
                entries.emplace_back(item.substr(item.rfind(L'/') + 1), !bytes);
            }
        }
        return kXeOk;
    }

    XeResult deleteFile(const Path& path) override
    {
        XeResult result = _begin("deleteFile");
        if (result == kXeOk && (result = _isFile(path)) == kXeOk) {
            items.erase(_key(path));
        }
        return result;
    }

    XeResult deleteFolder(const Path& path) override
    {
        const XeResult result = _begin("deleteFolder");
        if (result != kXeOk || !_isFolder(path)) {
            return result != kXeOk ? result : kXeGeneralFailure;
        }
        std::erase_if(items, [&](const auto& item) {
            return item.first == _key(path) || item.first.starts_with(_key(path) + L'/');
        });
        return kXeOk;
    }

    XeResult rename(const Path& from, const Path& to) override
    {
        const XeResult result = _begin("rename");
        if (result != kXeOk || !holds(from) || !_isFolder(_parent(to))) {
            return result != kXeOk ? result : kXeGeneralFailure;
        }
        std::map<Path, std::optional<std::string>> renamed;
        for (auto& [item, bytes] : items) {
            const bool moves = item == _key(from) || item.starts_with(_key(from) + L'/');
            renamed[moves ? Path(_key(to) + item.substr(_key(from).size())) : item] =
                std::move(bytes);
        }
        items = std::move(renamed);
        return kXeOk;
    }

    XeResult isFolderEmpty(const Path& path, bool& empty) override
    {
        const XeResult result = _begin("isFolderEmpty");
        if (result != kXeOk || !_isFolder(path)) {
            return result != kXeOk ? result : kXeGeneralFailure;
        }
        empty = std::none_of(items.begin(), items.end(), [&](const auto& item) {
            return item.first.starts_with(_key(path) + L'/');
        });
        return kXeOk;
    }

private:
    static Path _key(Path path)
    {
        while (path.size() > 1 && path.back() == L'/') {
            path.pop_back();
        }
        return path;
    }

    static Path _parent(const Path& path)
    {
        return _key(path.substr(0, _key(path).rfind(L'/') + 1));
    }

    XeResult _begin(const char* operation)
    {
        calls.emplace_back(operation);
        if (const auto failure = failures.find(operation); failure != failures.end()) {
            return failure->second;
        }
        if (callsLeft == 0) {
            return lateFailure;
        }
        --callsLeft;
        return kXeOk;
    }

    Handle _open(const Path& path)
    {
        m_open[++m_lastHandle] = {_key(path), 0};
        return m_lastHandle;
    }

    XeResult _isFile(const Path& path) const
    {
        const auto item = items.find(_key(path));
        return item != items.end() && item->second ? kXeOk : kXeGeneralFailure;
    }

    bool _isFolder(const Path& path) const
    {
        const auto item = items.find(_key(path));
        return item != items.end() && !item->second;
    }

    std::map<Handle, std::pair<Path, std::size_t>> m_open; // path and position
    Handle m_lastHandle = 0;
};

/// Makes a path stand for a remote volume while it lives.
class RemoteMount {
public:
    RemoteMount(_XeString<wchar_t> mountPoint,
                const std::shared_ptr<xenon::network::IFileSystem>& fileSystem)
        : m_mountPoint(std::move(mountPoint))
    {
        XeFileSystem::addMountPointContext(m_mountPoint, fileSystem, kRemoteVolumeContext, false);
    }
    ~RemoteMount() { XeFileSystem::removeMountPointContext(m_mountPoint); }
    RemoteMount(const RemoteMount&) = delete;
    RemoteMount& operator=(const RemoteMount&) = delete;

private:
    _XeString<wchar_t> m_mountPoint;
};
