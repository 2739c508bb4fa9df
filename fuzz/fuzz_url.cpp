// URLs and file names: the parts of every cut make the text again, bounded names stay within their
// limits where that can be, and a shortened URL has the length that was asked for.

#include "FuzzInput.h"
#include "XeFileSystem.h"

#include <algorithm>
#include <string>

namespace {

using namespace XeFileSystem;
using Text = _XeString<wchar_t>;

void checkSplits(const Text& text)
{
    Text folder;
    Text name;
    Text scheme;
    splitFileURL(text.c_str(), folder, name, scheme);
    require(name.find_first_of(L"/\\") == Text::npos);
    require(folder + name == text || (text.starts_with(L'\\') && L"/" + name == folder + name));
    require(scheme.empty() || text.starts_with(scheme + L":"));
    require(isValidUrl(text.c_str()) == (text.size() <= 1024 && name.size() < 256));

    Text base;
    Text extension;
    splitFileExt(text.c_str(), base, extension, false);
    require(base + extension == text);
    require(extension.find_first_of(L"/\\") == Text::npos);
    require(extension.rfind(L'.') == (extension.empty() ? Text::npos : 0));

    Text path;
    Text tail;
    parseMoniker(text.c_str(), path, tail);
    require(path.find(L'?') == Text::npos);
    require(path == text ? tail.empty() : path + L"?" + tail == text);
}

void checkRemoval(const Text& name, std::size_t count)
{
    Text rest = name;
    removeCharacters(rest, count);
    require(rest.size() == name.size() - count || rest == name);
    // One block went, so what is left of the name is its front and its end.
    const auto same = std::mismatch(rest.begin(), rest.end(), name.begin(), name.end()).first;
    require(name.ends_with(Text(same, rest.end())));
}

void checkBuild(const Text& folder, const Text& name)
{
    const bool needsSeparator = !folder.empty() && folder.back() != L'/';
    const Text front = folder + (needsSeparator ? L"/" : L"");
    const bool tooLong = front.size() + name.size() > 1023 || name.size() > 255;
    Text url;
    require(buildFileURL(url, folder.c_str(), name.c_str()) == (tooLong ? 1 : 0));
    require(url.starts_with(front));
    require(tooLong ? url.size() <= front.size() + name.size() : url == front + name);

    Text bounded = name;
    require(boundFilenameLen(bounded, front.size()) == (tooLong ? 1 : 0));
    require(url == front + bounded);

    Text appended = folder;
    appendToUrl(appended, L"", true);
    Text again = folder;
    appendToUrl(again, L"", false);
    require(appended == again);
}

void checkShortening(const Text& url, std::size_t limit)
{
    const Text old = L"old";
    Text out = old;
    const XeResult result = getShorterUrl(url, out, limit);
    require(result == (limit < 5 ? static_cast<XeResult>(0x80000008) : 0));
    Text folder;
    Text name;
    splitFileURL(url.c_str(), folder, name);
    if (limit < 5 || (url.size() >= limit && !folder.empty() && name.size() + 5 >= limit)) {
        require(out == old);
    } else if (url.size() < limit) {
        require(out == url);
    } else if (folder.empty()) {
        require(out.size() == limit && out.find(L"...") != Text::npos);
    } else if (limit <= 1023 && name.size() <= 255) {
        // A backslash at the folder's end is followed by the separator that joining needs.
        require(out.size() == limit - 1 + (folder.ends_with(L'\\') ? 1 : 0));
        require(out.ends_with(name));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) {
        return 0;
    }
    const std::size_t number = (data[0] + 256u * data[1]) % 1200;
    const auto [first, second] = twoTextsOf(bytesOf(data + 2, size - 2));
    checkSplits(first);
    checkRemoval(second, number);
    checkBuild(first, second);
    checkShortening(first, number);
    return 0;
}
