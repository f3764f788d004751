#include "viewer/FolderFiles.h"

#include <algorithm>
#include <cwctype>

#include "files/FileExt.h"
#include "tools/FilePath.h"

namespace {

using Text = CXTString<wchar_t>;

// Digits from `at` on without leading zeros; `at` moves behind them.
std::wstring_view TakeNumber(const std::wstring& text, std::size_t& at)
{
    while (at < text.size() && text[at] == L'0')
        ++at;
    const std::size_t start = at;
    while (at < text.size() && std::iswdigit(static_cast<std::wint_t>(text[at])))
        ++at;
    return std::wstring_view(text).substr(start, at - start);
}

// "part9" before "part10", whatever the case; names that differ in case or zeros alone by code point.
bool ComesBefore(const Text& first, const Text& second)
{
    Text a = first, b = second;
    a.MakeLower();
    b.MakeLower();
    const std::wstring &left = a.Str(), &right = b.Str();
    std::size_t i = 0, j = 0;
    while (i < left.size() && j < right.size()) {
        const bool numbers = std::iswdigit(static_cast<std::wint_t>(left[i])) && std::iswdigit(static_cast<std::wint_t>(right[j]));
        if (!numbers) {
            if (left[i] != right[j])
                return left[i] < right[j];
            ++i, ++j;
            continue;
        }
        const std::wstring_view number = TakeNumber(left, i), other = TakeNumber(right, j);
        if (number != other)
            return number.size() != other.size() ? number.size() < other.size() : number < other;
    }
    if (i < left.size() || j < right.size())
        return j < right.size();
    return first < second;
}

}

bool IsReadableFile(const Text& path, unsigned int families)
{
    const std::vector<unsigned int> classes = fileGetClasses(fileGetExtension(path));
    return std::any_of(classes.begin(), classes.end(), [&](unsigned int fileClass) {
        CFileExt format;
        return fileGetExtensionInfo(fileClass, &format) && format.kind & families && format.CanRead();
    });
}

Text GetNextReadableFile(const Text& path, int step, unsigned int families)
{
    const Text folder = fileGetPath(path), name = fileStripPath(path);
    std::vector<Text> files = fileList(folder);
    std::erase_if(files, [&](const Text& file) { return file != name && !IsReadableFile(file, families); });
    std::sort(files.begin(), files.end(), ComesBefore);
    auto place = std::lower_bound(files.begin(), files.end(), name, ComesBefore);
    if (step > 0) {
        if (place != files.end() && *place == name)
            ++place;
        return place != files.end() ? folder + *place : Text();
    }
    return place != files.begin() ? folder + *--place : Text();
}
