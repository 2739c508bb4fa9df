#pragma once

#include "IFileSystem.h"

#include <vector>

/// A remote file system that serves the streams only: what acts on folders and names fails.
class StreamsOnlyFileSystem : public xenon::network::IFileSystem {
public:
    using Path = _XeString<wchar_t>;

    XeResult createFolder(const Path&) override { return kXeGeneralFailure; }
    XeResult strictFileName(const Path&, Path&) override { return kXeGeneralFailure; }
    XeResult list(const Path&, std::vector<Entry>&) override { return kXeGeneralFailure; }
    XeResult deleteFile(const Path&) override { return kXeGeneralFailure; }
    XeResult deleteFolder(const Path&) override { return kXeGeneralFailure; }
    XeResult rename(const Path&, const Path&) override { return kXeGeneralFailure; }
    XeResult isFolderEmpty(const Path&, bool&) override { return kXeGeneralFailure; }
};
