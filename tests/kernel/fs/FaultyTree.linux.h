#pragma once

#ifndef __linux__
#error "for Linux only"
#endif

#include "FileTree.h"
#include "FuseVolume.linux.h"
#include "SmallVolume.linux.h"
#include "XeFileSystem.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

/// A folder with one item of every kind that functions of files stumble over.
class FaultyTree {
public:
    FaultyTree() { make(); }
    ~FaultyTree() { clear(); }
    FaultyTree(const FaultyTree&) = delete;
    FaultyTree& operator=(const FaultyTree&) = delete;

    const FileTree& tree() const { return m_tree; }

    /// What is there, in the temporary folder and on the volumes mounted in it.
    auto items() const { return m_tree.items(); }

    /// Puts everything back to how it was.
    void restore()
    {
        clear();
        make();
    }

    /// True when somebody has opened the pipe, the socket or the device since the last call.
    bool wasSpecialOpened() const
    {
        alignas(inotify_event) char events[4096];
        bool opened = false;
        for (ssize_t size = 0; (size = read(m_opens, events, sizeof events)) > 0;) {
            for (const char* at = events; at < events + size;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(at);
                opened = opened || (event->mask & IN_OPEN) != 0;
                at += sizeof(inotify_event) + event->len;
            }
        }
        return opened;
    }

    /// False where the rights of root are missing: there is no device, nothing immutable and no
    /// volume.
    bool isWhole() const { return m_whole; }

    /// A volume whose server is gone; nothing where there is no FUSE. It lies outside of the tree,
    /// since what is on it cannot be looked at.
    std::optional<std::filesystem::path> lostVolume()
    {
        if (!m_lost) {
            m_lost.emplace(m_outside / "source", m_outside / "lost.wav", "subtype=mirror");
            m_lost->killServer();
        }
        return *m_lost ? std::optional(m_outside / "lost.wav") : std::nullopt;
    }

private:
    void make()
    {
        namespace fs = std::filesystem;
        fs::permissions(m_tree.path(), fs::perms(0755));
        for (const char* name :
             {"user data", "user data/Trash", "user data/Trash/files", "user data/Trash/info"}) {
            m_tree.makeFolder(name);
            fs::permissions(m_tree / name, fs::perms(0777));
        }
        m_tree.makeFolder("items");
        fs::permissions(m_tree / "items", fs::perms(0777));
        put("file.wav", "x");
        put("not utf-8 \xE9\xFF.wav", "x");
        put("spare.wav", "spare");
        put("spare.zip", archive());
        put("folder.wav/inside", "x");
        m_tree.makeFolder("items/empty.wav");
        fs::permissions(m_tree / "items/empty.wav", fs::perms(0777));
        put("spare folder/inside", "spare");
        m_tree.makeLink("items/dangling.wav", "nowhere");
        m_tree.makeLink("items/loop.wav", "loop.wav");
        put("closed/file.wav", "x");
        put("locked.wav", "x");
        put("shut/inside", "x");
        put("fixed/file.wav", "x");
        fs::permissions(m_tree / "items/fixed", fs::perms(0755));
        fs::permissions(m_tree / "items/closed", fs::perms(0));
        fs::permissions(m_tree / "items/locked.wav", fs::perms(0));
        fs::permissions(m_tree / "items/shut", fs::perms(0));
        makeSpecials();
        makeRootsOnes();
    }

    /// Bytes of an archive that holds a file "packed".
    static const std::string& archive()
    {
        static const std::string bytes = [] {
            const FileTree tree;
            tree.makeFolder("folder");
            tree.write("folder/packed", "x");
            XeFileSystem::zipFolder(tree.wide("folder").c_str(), tree.wide("new.zip").c_str(),
                                    false);
            return FileTree::contents(tree.path("new.zip"));
        }();
        return bytes;
    }

    /// A file of "items" that anybody may change.
    void put(const std::string& name, const std::string& bytes)
    {
        namespace fs = std::filesystem;
        const fs::path path = m_tree / ("items/" + name);
        fs::create_directories(path.parent_path());
        fs::permissions(path.parent_path(), fs::perms(0777));
        m_tree.write("items/" + name, bytes);
        fs::permissions(path, fs::perms(0666));
    }

    void makeSpecials()
    {
        m_tree.makePipe("items/pipe.wav");
        sockaddr_un address{AF_UNIX, {}};
        const std::string path = m_tree.path("items/socket.wav");
        ASSERT_LT(path.size(), sizeof address.sun_path);
        std::strcpy(address.sun_path, path.c_str());
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        EXPECT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        close(socket);
        m_whole =
            mknod(m_tree.path("items/device.wav").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0;
        m_opens = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        for (const char* name : {"items/pipe.wav", "items/socket.wav", "items/device.wav"}) {
            inotify_add_watch(m_opens, m_tree.path(name).c_str(), IN_OPEN);
        }
    }

    void makeRootsOnes()
    {
        if (!m_whole) {
            return;
        }
        put("pinned.wav", "x");
        put("pinned folder/inside", "x");
        m_pinned =
            setImmutable("items/pinned.wav", true) && setImmutable("items/pinned folder", true);
        m_readOnly.emplace(m_tree / "items/read-only", "size=64k,mode=777");
        put("read-only/file.wav", "x");
        put("read-only/folder/inside", "x");
        m_full.emplace(m_tree / "items/full", "size=64k,mode=777");
        put("full/filler", std::string(60 << 10, 'x'));
        m_tree.write("items/full/rest", std::string(1 << 20, 'x')); // as much as there is room for
        m_whole = m_pinned && *m_readOnly && m_readOnly->makeReadOnly() && *m_full;
    }

    void clear()
    {
        if (m_pinned) {
            setImmutable("items/pinned.wav", false);
            setImmutable("items/pinned folder", false);
        }
        m_readOnly.reset();
        m_full.reset();
        close(m_opens);
        FileTree::unlock(m_tree.path());
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(m_tree.path())) {
            std::filesystem::remove_all(entry.path(), error);
        }
    }

    bool setImmutable(const std::string& name, bool immutable) const
    {
        const int file = open(m_tree.path(name).c_str(), O_RDONLY | O_CLOEXEC);
        int flags = 0;
        bool set = ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
        flags = immutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        set = set && ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
        close(file);
        return set;
    }

    const FileTree m_tree;
    const TemporaryFolder m_outside;
    std::optional<FuseVolume> m_lost;
    std::optional<SmallVolume> m_readOnly;
    std::optional<SmallVolume> m_full;
    int m_opens = -1;
    bool m_whole = false;
    bool m_pinned = false;
};
