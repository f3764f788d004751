#include "files/FileExt.h"

#include <algorithm>
#include <mutex>

#include "tools/FileNameSpec.h"
#include "tools/FilePath.h"

namespace {

using Text = CXTString<wchar_t>;

struct Entry {
    CFileExt extension;
    const void* owner;
};

struct Registry {
    std::mutex lock;
    std::vector<Entry> entries;
};

// Never destroyed: plug-ins and static objects may come here while the process ends.
Registry& GetRegistry()
{
    static Registry& registry = *new Registry;
    return registry;
}

Text WithPoint(const Text& extension) { return extension.IsEmpty() || extension[0] == L'.' ? extension : L"." + extension; }

void AddExtensions(CFileExt& to, const CFileExt& from)
{
    for (const Text& extension : from.extensions)
        if (!to.HasExtension(extension))
            to.extensions.push_back(extension);
}

// All that the entries say of the class of entry `first`.
CFileExt Merged(const std::vector<Entry>& entries, size_t first)
{
    CFileExt merged = entries[first].extension;
    for (size_t i = first + 1; i < entries.size(); i++) {
        if (entries[i].extension.fileClass != merged.fileClass)
            continue;
        merged.kind |= entries[i].extension.kind;
        AddExtensions(merged, entries[i].extension);
    }
    return merged;
}

bool IsFirstOfClass(const std::vector<Entry>& entries, size_t index)
{
    for (size_t i = 0; i < index; i++)
        if (entries[i].extension.fileClass == entries[index].extension.fileClass)
            return false;
    return true;
}

}

CFileExt::CFileExt(const Text& text, const Text& list, unsigned int fileClass, unsigned int fileKind, unsigned int creator1,
                   unsigned int creator2)
    : description(text), fileClass(fileClass), kind(fileKind), creator(creator1), secondCreator(creator2)
{
    for (int start = 0; start < list.GetLength();) {
        const int found = list.Find(L';', start);
        const int end = found < 0 ? list.GetLength() : found;
        Text extension = list.Mid(start, end - start);
        extension.Trim();
        extension = WithPoint(extension);
        if (!extension.IsEmpty() && !HasExtension(extension))
            extensions.push_back(extension);
        start = end + 1;
    }
}

Text CFileExt::GetMainExtension() const { return extensions.empty() ? Text() : extensions.front(); }

bool CFileExt::HasExtension(const Text& extension) const
{
    const Text wanted = WithPoint(extension);
    return std::any_of(extensions.begin(), extensions.end(), [&](const Text& own) { return own.CompareNoCase(wanted) == 0; });
}

bool fileRegisterFile(const CFileExt& extension, const void* owner)
{
    if (extension.fileClass == 0 || extension.extensions.empty())
        return false;
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (Entry& entry : registry.entries)
        if (entry.extension.fileClass == extension.fileClass && entry.owner == owner) {
            entry.extension = extension;
            return true;
        }
    registry.entries.push_back({extension, owner});
    return true;
}

bool fileUnregisterFile(unsigned int fileClass)
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    return std::erase_if(registry.entries, [&](const Entry& entry) { return entry.extension.fileClass == fileClass; }) > 0;
}

void fileUnregisterOwner(const void* owner)
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    std::erase_if(registry.entries, [&](const Entry& entry) { return entry.owner == owner; });
}

bool fileGetFileExt(const Text& extension, CFileExt* out, unsigned int family)
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (size_t i = 0; i < registry.entries.size(); i++) {
        const CFileExt& own = registry.entries[i].extension;
        if (!own.HasExtension(extension) || (family && !(own.kind & family & FILE_KIND_FAMILY)))
            continue;
        if (out)
            *out = own;
        return true;
    }
    return false;
}

bool fileGetExtensionInfo(unsigned int fileClass, CFileExt* out)
{
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (size_t i = 0; i < registry.entries.size(); i++)
        if (registry.entries[i].extension.fileClass == fileClass) {
            if (out)
                *out = Merged(registry.entries, i);
            return true;
        }
    return false;
}

std::vector<unsigned int> fileGetClasses(const Text& extension)
{
    std::vector<unsigned int> classes;
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (const Entry& entry : registry.entries) {
        const unsigned int fileClass = entry.extension.fileClass;
        if (entry.extension.HasExtension(extension) && std::find(classes.begin(), classes.end(), fileClass) == classes.end())
            classes.push_back(fileClass);
    }
    return classes;
}

std::vector<CFileExt> fileGetExtensions(unsigned int family, unsigned int abilities)
{
    std::vector<CFileExt> found;
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (size_t i = 0; i < registry.entries.size(); i++) {
        if (!IsFirstOfClass(registry.entries, i))
            continue;
        CFileExt merged = Merged(registry.entries, i);
        if ((family == 0 || merged.kind & family & FILE_KIND_FAMILY) && (merged.kind & abilities) == abilities)
            found.push_back(std::move(merged));
    }
    return found;
}

unsigned int fileGetKindOf(const Text& path)
{
    const Text extension = fileGetExtension(path);
    unsigned int families = 0;
    if (extension.IsEmpty())
        return 0;
    Registry& registry = GetRegistry();
    const std::lock_guard guard(registry.lock);
    for (const Entry& entry : registry.entries)
        if (entry.extension.HasExtension(extension))
            families |= entry.extension.GetFamily();
    return families;
}

unsigned int fileGetClassOf(const Text& path)
{
    const Text extension = fileGetExtension(path);
    CFileExt found;
    return !extension.IsEmpty() && fileGetFileExt(extension, &found) ? found.fileClass : 0;
}

Text fileGetClassText(unsigned int fileClass)
{
    Text text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const unsigned int c = fileClass >> shift & 0xFF;
        text += static_cast<wchar_t>(c >= 32 && c < 127 ? c : '?');
    }
    return text;
}

unsigned int CFileNameSpec::GetClass() const { return m_class ? m_class : fileGetClassOf(m_name); }
