#include "tools/FileFind.h"

#include <algorithm>
#include <vector>

#include <dirent.h>

#include "tools/FilePath.h"

using Text = CXTString<wchar_t>;

// Names in the folder that differ from `name` in case, sorted.
static std::vector<Text> ListSimilar(const Text& folder, const Text& name)
{
    std::vector<Text> names;
    DIR* const directory = opendir(folder.IsEmpty() ? "." : fileToDisk(folder).c_str());
    if (!directory)
        return names;
    while (const dirent* const entry = readdir(directory))
        if (const Text other = Utf8ToWide(entry->d_name); other != name && other.CompareNoCase(name) == 0)
            names.push_back(other);
    closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

// `folder` ends with a separator, or is empty for the current one. Folders that differ in case may stand beside each other: each is tried.
static Text FindBelow(const Text& folder, const Text& path)
{
    const int end = path.Find(L'/');
    const Text part = end < 0 ? path : path.Left(end);
    const auto open = [&](const Text& name) {
        if (end < 0)
            return fileExists(folder + name) ? folder + name : Text();
        return fileIsDirectory(folder + name) ? FindBelow(folder + name + L"/", path.Mid(end + 1)) : Text();
    };
    if (const Text found = open(part); !found.IsEmpty())
        return found;
    for (const Text& name : ListSimilar(folder, part))
        if (const Text found = open(name); !found.IsEmpty())
            return found;
    return {};
}

Text fileFindAnyCase(const Text& path)
{
    if (path.IsEmpty() || fileExists(path))
        return path;
    const Text normal = fileNormalize(path), root = fileGetRoot(normal);
    return FindBelow(root, normal.Mid(root.GetLength()));
}
