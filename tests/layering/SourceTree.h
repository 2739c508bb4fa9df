#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// The sources of a tree and what they include. Paths are relative to the tree's root, with "/".
class SourceTree {
public:
    /// Reads the include lines of every C, C++ and Objective-C file in the product's folders:
    /// AudioPlugins, compat, host and shared. A folder that does not exist has no files.
    explicit SourceTree(const std::filesystem::path& root);

    /// Every include that points against the direction of dependencies, as "file includes <name>"
    /// or "file includes other/file". Sorted.
    ///
    /// An include line names a file of the tree when a file beside the includer has that path, or
    /// else any file whose path ends with it; it is allowed when one of those may be used.
    std::vector<std::string> forbiddenIncludes() const;

    /// The sources below `folder` (no headers) that do not include `header`, a path from the root,
    /// directly or through other files. Sorted.
    std::vector<std::string> sourcesWithout(const std::string& folder,
                                            const std::string& header) const;

    /// The headers below `folder`. Sorted.
    std::vector<std::string> headersIn(const std::string& folder) const;

private:
    std::vector<std::string> resolve(const std::string& includer, const std::string& name) const;

    std::map<std::string, std::vector<std::string>> m_includes; // by file
};
