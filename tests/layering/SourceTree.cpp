#include "SourceTree.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string_view>

namespace fs = std::filesystem;

namespace {

enum class Layer {
    FrameworkHeaders, // under the names that the frameworks have on macOS
    Compat,           // what exists on Linux only
    KernelPublic,
    Kernel,
    Controls,
    Editor,
    Host,
    HostApp,
    AppKit,  // the framework, and the one header in the tree that stands on it
    Outside, // not in the tree, and anybody's
};

// The first row whose folder the path begins with.
struct Folder {
    std::string_view path;
    Layer layer;
};

// clang-format off
constexpr Folder kFolders[] = {
    {"compat/linux/inc/AudioUnit/AUCocoaUIView.h", Layer::AppKit},
    {"compat/linux/inc/AudioUnitCompat/",          Layer::Compat},
    {"compat/linux/inc/",                          Layer::FrameworkHeaders},
    {"compat/",                                    Layer::Compat},
    {"shared/XeKernel/inc/",                       Layer::KernelPublic},
    {"shared/XeKernel/",                           Layer::Kernel},
    {"shared/XeControls/",                         Layer::Controls},
    {"AudioPlugins/",                              Layer::Editor},
    {"host/app/",                                  Layer::HostApp},
    {"host/",                                      Layer::Host},
};

// Who may use whom besides Outside. The direction is kernel <- controls <- editor; the host meets
// the editor at run time only, and of it just the application uses the kernel, as any client would.
struct Permission {
    Layer user;
    Layer used;
};

constexpr Permission kPermissions[] = {
    {Layer::AppKit,           Layer::AppKit},
    {Layer::AppKit,           Layer::FrameworkHeaders},
    {Layer::FrameworkHeaders, Layer::FrameworkHeaders},
    {Layer::Compat,           Layer::FrameworkHeaders},
    {Layer::Compat,           Layer::Compat},
    {Layer::KernelPublic,     Layer::FrameworkHeaders},
    {Layer::KernelPublic,     Layer::KernelPublic},
    {Layer::Kernel,           Layer::FrameworkHeaders},
    {Layer::Kernel,           Layer::KernelPublic},
    {Layer::Kernel,           Layer::Kernel},
    {Layer::Controls,         Layer::AppKit},
    {Layer::Controls,         Layer::FrameworkHeaders},
    {Layer::Controls,         Layer::KernelPublic},
    {Layer::Controls,         Layer::Controls},
    {Layer::Editor,           Layer::AppKit},
    {Layer::Editor,           Layer::FrameworkHeaders},
    {Layer::Editor,           Layer::KernelPublic},
    {Layer::Editor,           Layer::Controls},
    {Layer::Editor,           Layer::Editor},
    {Layer::Host,             Layer::AppKit},
    {Layer::Host,             Layer::FrameworkHeaders},
    {Layer::Host,             Layer::Compat},
    {Layer::Host,             Layer::Host},
    {Layer::HostApp,          Layer::AppKit},
    {Layer::HostApp,          Layer::FrameworkHeaders},
    {Layer::HostApp,          Layer::Compat},
    {Layer::HostApp,          Layer::KernelPublic},
    {Layer::HostApp,          Layer::Host},
    {Layer::HostApp,          Layer::HostApp},
};
// clang-format on

constexpr std::string_view kProductFolders[] = {"AudioPlugins", "compat", "host", "shared"};

Layer layerOf(std::string_view path)
{
    for (const Folder& folder : kFolders) {
        if (path.starts_with(folder.path)) {
            return folder.layer;
        }
    }
    return Layer::Outside;
}

Layer layerOfSystemHeader(std::string_view name)
{
    const bool appKit = name.starts_with("AppKit/") || name.starts_with("Cocoa/") ||
                        name.starts_with("GNUstepGUI/");
    return appKit ? Layer::AppKit : Layer::Outside;
}

bool mayUse(Layer user, Layer used)
{
    return used == Layer::Outside || std::ranges::any_of(kPermissions, [&](const Permission& p) {
               return p.user == user && p.used == used;
           });
}

bool hasExtension(const fs::path& path, std::initializer_list<std::string_view> extensions)
{
    return std::ranges::find(extensions, path.extension().string()) != extensions.end();
}

bool isHeader(const fs::path& path) { return hasExtension(path, {".h", ".hpp", ".inc"}); }

bool isSource(const fs::path& path) { return hasExtension(path, {".c", ".cpp", ".m", ".mm"}); }

std::vector<std::string> includesOf(const fs::path& file)
{
    static const std::regex kInclude(R"re(^\s*#\s*(?:include|import)\s*[<"]([^>"]+)[>"])re");
    std::vector<std::string> includes;
    std::ifstream stream(file);
    std::smatch match;
    for (std::string line; std::getline(stream, line);) {
        if (std::regex_search(line, match, kInclude)) {
            includes.push_back(match[1]);
        }
    }
    return includes;
}

} // namespace

SourceTree::SourceTree(const fs::path& root)
{
    for (const std::string_view folder : kProductFolders) {
        if (!fs::is_directory(root / folder)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(root / folder)) {
            if (isHeader(entry.path()) || isSource(entry.path())) {
                m_includes[fs::relative(entry.path(), root).generic_string()] =
                    includesOf(entry.path());
            }
        }
    }
}

std::vector<std::string> SourceTree::resolve(const std::string& includer,
                                             const std::string& name) const
{
    const fs::path beside = (fs::path(includer).parent_path() / name).lexically_normal();
    if (m_includes.contains(beside.generic_string())) {
        return {beside.generic_string()};
    }
    std::vector<std::string> files;
    for (const auto& [file, includes] : m_includes) {
        if (file.ends_with('/' + name)) {
            files.push_back(file);
        }
    }
    return files;
}

std::vector<std::string> SourceTree::forbiddenIncludes() const
{
    std::vector<std::string> forbidden;
    for (const auto& [file, includes] : m_includes) {
        const Layer user = layerOf(file);
        for (const std::string& name : includes) {
            const auto files = resolve(file, name);
            if (files.empty() && !mayUse(user, layerOfSystemHeader(name))) {
                forbidden.push_back(file + " includes <" + name + '>');
            }
            const auto allowed = [user](const auto& used) { return mayUse(user, layerOf(used)); };
            if (!files.empty() && std::ranges::none_of(files, allowed)) {
                forbidden.push_back(file + " includes " + files.front());
            }
        }
    }
    return forbidden;
}

std::vector<std::string> SourceTree::sourcesWithout(const std::string& folder,
                                                    const std::string& header) const
{
    std::vector<std::string> without;
    for (const auto& [source, includes] : m_includes) {
        if (!isSource(source) || !source.starts_with(folder)) {
            continue;
        }
        std::set<std::string> reached = {source};
        std::vector<std::string> toRead = {source};
        while (!toRead.empty()) {
            const std::string file = toRead.back();
            toRead.pop_back();
            for (const std::string& name : m_includes.at(file)) {
                for (const std::string& next : resolve(file, name)) {
                    if (reached.insert(next).second) {
                        toRead.push_back(next);
                    }
                }
            }
        }
        if (!reached.contains(header)) {
            without.push_back(source);
        }
    }
    return without;
}

std::vector<std::string> SourceTree::headersIn(const std::string& folder) const
{
    std::vector<std::string> headers;
    for (const auto& [file, includes] : m_includes) {
        if (isHeader(file) && file.starts_with(folder)) {
            headers.push_back(file);
        }
    }
    return headers;
}
