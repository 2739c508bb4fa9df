#pragma once

#include "StreamsOnlyFileSystem.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A remote file system in memory, scripted to fail, that keeps a log of its calls.
class MemoryFileSystem : public StreamsOnlyFileSystem {
public:
    static constexpr XeResult kFault = static_cast<XeResult>(0x8004E777);

    std::map<Path, std::string> files;
    std::vector<std::string> calls;  // "read 5 -> 3": the length asked for and the count
    std::set<Handle> openHandles;    // given out and not closed
    std::vector<std::string> misuse; // what a client may never do
    std::size_t failAt = 0;          // number of the call that fails, from 1; 0 for none
    int mostBytes = 1 << 30;         // of one transfer
    bool lastFlag = false;

    XeResult getFileSize(const Path& path, std::int64_t& size) override
    {
        if (faulty("size") || files.count(path) == 0) {
            return kFault;
        }
        size = static_cast<std::int64_t>(files[path].size());
        return kXeOk;
    }

    XeResult openRead(const Path& path, Handle& handle, bool flag) override
    {
        lastFlag = flag;
        if (faulty("openRead") || files.count(path) == 0) {
            return kFault;
        }
        handle = open(path);
        return kXeOk;
    }

    XeResult read(Handle handle, void* buffer, int length, int& count) override
    {
        if (faulty("read " + std::to_string(length)) || !known(handle) || length < 1) {
            return kFault;
        }
        const std::string& data = files[m_paths[handle]];
        std::size_t& at = m_positions[handle];
        count = static_cast<int>(std::min<std::size_t>({static_cast<std::size_t>(length),
                                                        static_cast<std::size_t>(mostBytes),
                                                        data.size() - std::min(at, data.size())}));
        std::memcpy(buffer, data.data() + at, static_cast<std::size_t>(count));
        at += static_cast<std::size_t>(count);
        calls.back() += " -> " + std::to_string(count);
        return kXeOk;
    }

    // A handle is void after closing whatever the result.
    XeResult closeRead(Handle handle, int flags) override
    {
        if (flags != 0) {
            misuse.push_back("closeRead with flags");
        }
        return close("closeRead", handle);
    }

    XeResult openWrite(const Path& path, Handle& handle, bool flag) override
    {
        lastFlag = flag;
        if (faulty("openWrite")) {
            return kFault;
        }
        files[path].clear();
        handle = open(path);
        return kXeOk;
    }

    XeResult write(Handle handle, const void* data, int length, int& count) override
    {
        if (faulty("write " + std::to_string(length)) || !known(handle) || length < 1) {
            return kFault;
        }
        count = std::min(length, mostBytes);
        files[m_paths[handle]].append(static_cast<const char*>(data),
                                      static_cast<std::size_t>(count));
        calls.back() += " -> " + std::to_string(count);
        return kXeOk;
    }

    XeResult closeWrite(Handle handle) override { return close("closeWrite", handle); }

protected:
    /// Logs a call; true when it is the one that fails.
    bool faulty(const std::string& call)
    {
        calls.push_back(call);
        return calls.size() == failAt;
    }

    std::map<Handle, std::size_t> m_positions;

private:
    Handle open(const Path& path)
    {
        const Handle handle = ++m_lastHandle;
        openHandles.insert(handle);
        m_paths[handle] = path;
        m_positions[handle] = 0;
        return handle;
    }

    bool known(Handle handle)
    {
        if (openHandles.count(handle) == 0) {
            misuse.push_back("use of a handle that is not open");
            return false;
        }
        return true;
    }

    XeResult close(const std::string& call, Handle handle)
    {
        const bool fails = faulty(call);
        const bool wasOpen = known(handle);
        openHandles.erase(handle);
        return fails || !wasOpen ? kFault : kXeOk;
    }

    std::map<Handle, Path> m_paths;
    Handle m_lastHandle = 40;
};
