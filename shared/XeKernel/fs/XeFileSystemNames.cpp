#include "XeFileSystem.h"

#include "XeNativePath.h"
#include "XeSafeCRT.h"
#include "fs/ListedPath.h"
#include "fs/LocalItem.h"
#include "fs/NoThrow.h"

#include <boost/filesystem/operations.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace XeFileSystem {
namespace {

namespace bfs = boost::filesystem;
using Text = _XeString<wchar_t>;

constexpr unsigned kFirstCounter = 2; // the item without one is the first

bool _canBeName(const Text& name)
{
    return !name.empty() && name != L"." && name != L".." && name.find(L'/') == Text::npos &&
           xenon::path::toNative(name).has_value();
}

/// True for a link that leads nowhere too. What cannot be looked up is not there.
bool _isTaken(std::wstring_view folder, const Text& name)
{
    const auto bytes = xenon::path::toNative(folder.empty() ? name : listedPath(folder, name));
    boost::system::error_code error;
    return bytes && bfs::exists(bfs::symlink_status(*bytes, error));
}

/// "take.wav" -> "take (2).wav". A name that is all extension gets its counter at the end, where it
/// still is a hidden one.
Text _withCounter(const Text& name, unsigned counter)
{
    Text base;
    Text extension;
    splitFileExt(name.c_str(), base, extension, false);
    const Text mark = L" (" + std::to_wstring(counter) + L")";
    return base.empty() ? extension + mark : base + mark + extension;
}

Text _bounded(std::wstring_view folder, Text name)
{
    boundFilenameLen(name, folder.size() + (folder.empty() || folder.ends_with(L'/') ? 0 : 1));
    return name;
}

XeResult _findFreeName(std::wstring_view folder, const Text& name, Text& out)
{
    Text candidate = _bounded(folder, name);
    for (unsigned counter = kFirstCounter; _canBeName(candidate) && _isTaken(folder, candidate);
         ++counter) {
        candidate = _bounded(folder, _withCounter(name, counter));
    }
    if (!_canBeName(candidate)) {
        return kXeInvalidArgument;
    }
    out = std::move(candidate);
    return kXeOk;
}

} // namespace

XeResult getUserDefinedName(wchar_t const* path, wchar_t const* name, _XeString<wchar_t>& out)
{
    return noThrow(kXeGeneralFailure, [&] {
        const Text wanted = givenText(name);
        return _canBeName(wanted) ? _findFreeName(givenText(path), wanted, out)
                                  : kXeInvalidArgument;
    });
}

} // namespace XeFileSystem
