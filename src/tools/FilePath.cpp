#include "tools/FilePath.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/TemporaryFile.h"

namespace {

using Text = CXTString<wchar_t>;
using View = std::wstring_view;

constexpr size_t MAX_PART_BYTES = 255;
constexpr size_t MAX_NAME_BYTES = 4095;

bool IsSlash(wchar_t c) { return c == L'/' || c == L'\\'; }

bool IsDriveLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }

size_t RootLength(View path)
{
    if (path.size() >= 2 && IsDriveLetter(path[0]) && path[1] == L':')
        return path.size() >= 3 && IsSlash(path[2]) ? 3 : 2;
    if (path.empty() || !IsSlash(path[0]))
        return 0;
    // Two separators and a name: a share, "//server/share/". More of them are just a root written twice.
    if (path.size() < 3 || !IsSlash(path[1]) || IsSlash(path[2]))
        return 1;
    size_t end = 2;
    for (int part = 0; part < 2; part++) {
        while (end < path.size() && !IsSlash(path[end]))
            end++;
        if (end < path.size())
            end++;
    }
    return end;
}

// Start of the file name: behind the last separator, and behind a root.
size_t NameStart(View path)
{
    const size_t root = RootLength(path);
    size_t start = path.size();
    while (start > root && !IsSlash(path[start - 1]))
        start--;
    return start;
}

size_t ExtensionStart(View path)
{
    const size_t name = NameStart(path);
    const size_t point = path.find_last_of(L'.');
    const bool inName = point != View::npos && point > name;
    // ".." and "..." are no names with extensions either
    return inName && path.substr(name, point - name).find_first_not_of(L'.') != View::npos ? point : path.size();
}

std::vector<View> Split(View path)
{
    std::vector<View> parts;
    for (size_t start = 0; start < path.size();) {
        size_t end = start;
        while (end < path.size() && !IsSlash(path[end]))
            end++;
        if (end > start)
            parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::wstring NormalRoot(View path)
{
    std::wstring root(path.substr(0, RootLength(path)));
    std::replace(root.begin(), root.end(), L'\\', L'/');
    // A share is a folder, with a separator behind it. A bare drive stays bare: it names no folder of its own.
    if (root.size() > 3 && root.back() != L'/')
        root += L'/';
    return root;
}

// Parts of a name behind its root, with "." and ".." resolved.
std::vector<View> NormalParts(View path)
{
    const size_t root = RootLength(path);
    std::vector<View> parts;
    for (const View part : Split(path.substr(root))) {
        if (part == L".")
            continue;
        if (part != L".." || ((parts.empty() || parts.back() == L"..") && root == 0))
            parts.push_back(part);
        else if (!parts.empty())
            parts.pop_back();
    }
    return parts;
}

std::wstring Join(const std::vector<View>& parts, size_t first = 0)
{
    std::wstring text;
    for (size_t i = first; i < parts.size(); i++) {
        if (i > first)
            text += L'/';
        text += parts[i];
    }
    return text;
}

bool Stat(const Text& path, struct stat& info) { return !path.IsEmpty() && stat(fileToDisk(path).c_str(), &info) == 0; }

Text AbsoluteOnDisk(const Text& path) { return fileMakeAbsolutePath(fileGetCurrentDirectory(), path); }

bool SameOnDisk(const Text& a, const Text& b)
{
    struct stat infoA, infoB;
    if (Stat(a, infoA) && Stat(b, infoB))
        return infoA.st_dev == infoB.st_dev && infoA.st_ino == infoB.st_ino;
    return AbsoluteOnDisk(a) == AbsoluteOnDisk(b);
}

bool WriteAll(int to, const char* bytes, ssize_t size)
{
    while (size > 0) {
        const ssize_t written = write(to, bytes, static_cast<size_t>(size));
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0) {
            bytes += written;
            size -= written;
        }
    }
    return true;
}

bool CopyBytes(int from, int to)
{
    std::vector<char> buffer(1 << 18);
    for (;;) {
        const ssize_t size = read(from, buffer.data(), buffer.size());
        if (size == 0)
            return true;
        if (size < 0 ? errno != EINTR : !WriteAll(to, buffer.data(), size))
            return false;
    }
}

bool CopyBeside(int from, const struct stat& info, const std::string& target, bool failIfExists)
{
    CTemporaryFile to;
    return to.Open(target, true) && CopyBytes(from, to.GetHandle()) && fchmod(to.GetHandle(), info.st_mode & 0777) == 0 &&
           to.PutInPlace(!failIfExists);
}

bool IsFree(const Text& path, bool reserve)
{
    if (!reserve) {
        struct stat info;
        return lstat(fileToDisk(path).c_str(), &info) != 0 && errno == ENOENT;
    }
    const int file = open(fileToDisk(path).c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (file >= 0)
        close(file);
    return file >= 0;
}

// `folder/title<number>.ext` with the title cut so that the whole name keeps to the limit.
Text NumberedName(const Text& path, int number, int limit)
{
    const Text extension = fileGetExtension(path);
    const Text title = fileStripPath(fileStripExtension(path));
    const Text digits(std::to_wstring(number));
    const int room = limit > 0 ? limit - digits.GetLength() - extension.GetLength() : title.GetLength();
    return fileGetPath(path) + title.Left(std::max(room, 0)) + digits + extension;
}

}

Text fileGetRoot(const Text& path) { return path.Left(static_cast<int>(RootLength(path.Str()))); }

Text fileGetPath(const Text& path) { return path.Left(static_cast<int>(NameStart(path.Str()))); }

Text fileStripPath(const Text& path) { return path.Mid(static_cast<int>(NameStart(path.Str()))); }

Text fileGetExtension(const Text& path) { return path.Mid(static_cast<int>(ExtensionStart(path.Str()))); }

Text fileStripExtension(const Text& path) { return path.Left(static_cast<int>(ExtensionStart(path.Str()))); }

bool fileIsAbsolute(const Text& path) { return RootLength(path.Str()) > 0; }

Text fileNormalize(const Text& path)
{
    const bool folder = !path.IsEmpty() && IsSlash(path.Str().back());
    std::wstring text = Join(NormalParts(path.Str()));
    if (folder && !text.empty())
        text += L'/';
    text = NormalRoot(path.Str()) + text;
    return text.empty() ? Text(L".") : Text(std::move(text));
}

Text fileAddSlash(const Text& folder) { return folder.IsEmpty() || IsSlash(folder.Str().back()) ? folder : folder + L"/"; }

Text fileMakeAbsolutePath(const Text& base, const Text& path)
{
    return fileNormalize(fileIsAbsolute(path) ? path : fileAddSlash(base) + path);
}

Text fileMakeRelativePath(const Text& base, const Text& path)
{
    const std::wstring root = NormalRoot(path.Str());
    if (root.empty() || NormalRoot(base.Str()) != root)
        return path;
    const std::vector<View> from = NormalParts(base.Str()), to = NormalParts(path.Str());
    size_t common = 0;
    while (common < from.size() && common < to.size() && from[common] == to[common])
        common++;
    std::wstring text;
    for (size_t i = common; i < from.size(); i++)
        text += L"../";
    text += Join(to, common);
    if (text.empty())
        text = L"./";
    else if (IsSlash(path.Str().back()) && text.back() != L'/')
        text += L'/';
    return text;
}

Text fileCompactPath(const Text& path, int length)
{
    if (path.GetLength() <= length)
        return path;
    const View dots = L"...";
    const Text name = fileStripPath(path);
    if (length <= 3)
        return name.Left(std::max(length, 0));
    if (name.GetLength() > length)
        return name.Left(length - 3) + dots.data();
    // As much of the beginning as there is room for; the separator in front of the name stays with the name.
    const int room = length - name.GetLength() - 4;
    if (room < 0)
        return name;
    return path.Left(room) + dots.data() + L"/" + name;
}

Text fileCutName(const Text& path, int limit)
{
    const Text name = fileStripPath(path);
    if (limit <= 0 || name.GetLength() <= limit)
        return path;
    const Text extension = fileGetExtension(path).Left(limit);
    return fileGetPath(path) + name.Left(limit - extension.GetLength()) + extension;
}

bool fileIsValidFileName(const Text& path)
{
    const View text = path.Str();
    if (text.empty() || WideToUtf8(text).size() > MAX_NAME_BYTES)
        return false;
    if (std::any_of(text.begin(), text.end(), [](wchar_t c) { return static_cast<unsigned int>(c) < 32 || c == 127; }))
        return false;
    const std::vector<View> parts = Split(text);
    return std::all_of(parts.begin(), parts.end(), [](View part) { return WideToUtf8(part).size() <= MAX_PART_BYTES; });
}

std::string fileToDisk(const Text& path)
{
    std::string name = WideToUtf8(path);
    if (name.find('\\') == std::string::npos)
        return name;
    struct stat info;
    if (lstat(name.c_str(), &info) == 0)
        return name;
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

bool fileExists(const Text& path)
{
    struct stat info;
    return Stat(path, info) && !S_ISDIR(info.st_mode);
}

bool fileIsDirectory(const Text& path)
{
    struct stat info;
    return Stat(path, info) && S_ISDIR(info.st_mode);
}

bool fileIsSameFile(const Text& a, const Text& b) { return !a.IsEmpty() && !b.IsEmpty() && SameOnDisk(a, b); }

bool fileCompareDirectory(const Text& a, const Text& b) { return SameOnDisk(fileAddSlash(a), fileAddSlash(b)); }

bool fileCopy(const Text& source, const Text& target, bool failIfExists)
{
    if (!fileExists(source) || target.IsEmpty() || fileIsDirectory(target) || fileIsSameFile(source, target))
        return false;
    const int from = open(fileToDisk(source).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (from < 0)
        return false;
    struct stat info;
    const bool good = fstat(from, &info) == 0 && S_ISREG(info.st_mode) && CopyBeside(from, info, fileToDisk(target), failIfExists);
    close(from);
    return good;
}

bool fileDelete(const Text& path) { return !path.IsEmpty() && unlink(fileToDisk(path).c_str()) == 0; }

bool fileCreateDirectory(const Text& folder, bool parents)
{
    if (folder.IsEmpty() || fileIsDirectory(folder))
        return !folder.IsEmpty();
    const Text name = fileNormalize(folder);
    const std::vector<View> parts = Split(View(name.Str()).substr(RootLength(name.Str())));
    std::string made = WideToUtf8(fileGetRoot(name));
    for (size_t i = 0; i < parts.size(); i++) {
        made += WideToUtf8(parts[i]) + '/';
        const bool last = i + 1 == parts.size();
        if (parents || last)
            mkdir(made.c_str(), 0777);    // one that is there, or nobody may see, shows below
    }
    return fileIsDirectory(name);
}

Text fileCreateUniqueName(const Text& path, bool reserve, int limit)
{
    if (fileStripPath(path).IsEmpty())
        return {};
    const Text first = fileCutName(path, limit);
    if (IsFree(first, reserve))
        return first;
    // Reserving fails in a folder that is missing or closed as well; no number helps there.
    const Text folder = fileGetPath(path);
    if (reserve && access(folder.IsEmpty() ? "." : fileToDisk(folder).c_str(), W_OK) != 0)
        return {};
    constexpr int LAST = 1000000;
    for (int number = 1; number < LAST; number++) {
        const Text name = NumberedName(path, number, limit);
        if (limit > 0 && fileStripPath(name).GetLength() > limit)
            break;
        if (IsFree(name, reserve))
            return name;
    }
    return {};
}

Text fileGetCurrentDirectory()
{
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string();
    return fileAddSlash(Utf8ToWide(folder));
}

std::vector<Text> fileList(const Text& folder)
{
    std::vector<Text> names;
    const std::string path = folder.IsEmpty() ? std::string(".") : fileToDisk(folder);
    DIR* const directory = opendir(path.c_str());
    if (!directory)
        return names;
    const Text prefix = fileAddSlash(Utf8ToWide(path));
    while (const dirent* const entry = readdir(directory)) {
        const Text name = Utf8ToWide(entry->d_name);
        if (entry->d_type == DT_REG || (entry->d_type != DT_DIR && fileExists(prefix + name)))
            names.push_back(name);
    }
    closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

bool GetUserPreferencesPath(Text& path, bool create)
{
    path.Empty();
    const char* const config = std::getenv("XDG_CONFIG_HOME");
    const char* const home = std::getenv("HOME");
    std::string folder;
    if (config && *config == '/')    // a relative one is to be ignored
        folder = config;
    else if (home && *home)
        folder = std::string(home) + "/.config";
    else
        return false;
    const Text wanted = fileAddSlash(Utf8ToWide(folder)) + L"3dzel/";
    if (create && !fileCreateDirectory(wanted, true))
        return false;
    path = wanted;
    return true;
}
