#include "viewer/DocumentFileList.h"

#include <algorithm>
#include <filesystem>
#include <memory>

#include "tools/Exception.h"
#include "tools/FilePath.h"

CDocumentFileList::CDocumentFileList(int cacheSize) : m_cacheSize(std::max(cacheSize, 0)) {}

CDocumentFileList::~CDocumentFileList() = default;

int CDocumentFileList::AddFile(const CXTString<wchar_t>& path)
{
    const int place = FindFile(path);
    if (place >= 0)
        return place;
    m_files.push_back(path);
    return GetFileNbr() - 1;
}

bool CDocumentFileList::RemoveFile(const CXTString<wchar_t>& path)
{
    const int place = FindFile(path);
    if (place < 0)
        return false;
    RemoveFromCache(path);
    m_files.erase(m_files.begin() + place);
    return true;
}

void CDocumentFileList::RemoveAllFiles()
{
    m_files.clear();
    ClearCache();
}

const CXTString<wchar_t>& CDocumentFileList::GetFile(int index) const
{
    if (index < 0 || index >= GetFileNbr())
        XThrowInvalidIndex();
    return m_files[static_cast<std::size_t>(index)];
}

int CDocumentFileList::FindFile(const CXTString<wchar_t>& path) const
{
    const auto found = std::find(m_files.begin(), m_files.end(), path);
    return found != m_files.end() ? static_cast<int>(found - m_files.begin()) : -1;
}

void* CDocumentFileList::ReadFile(const CXTString<wchar_t>& path, unsigned int mode, CWnd* parent) const
{
    const std::unique_ptr<DocumentFileInfo> info(GetDocumentFileInfo(path));
    return info ? ReadDocument(info.get(), mode, parent) : nullptr;
}

CLayerBitmap* CDocumentFileList::GetFileBitmap(const CXTString<wchar_t>& path, const CSize& size, unsigned int mode, CWnd* parent) const
{
    const std::unique_ptr<DocumentFileInfo> info(GetDocumentFileInfo(path));
    return info ? GetDocumentBitmap(info.get(), size, mode, parent) : nullptr;
}

void* CDocumentFileList::FindInCache(const CXTString<wchar_t>& path) const
{
    const std::lock_guard guard(m_lock);
    const auto found = std::find_if(m_cache.begin(), m_cache.end(), [&](const Cached& cached) { return cached.path == path; });
    if (found == m_cache.end())
        return nullptr;
    if (found->version == GetVersion(path))
        return found->document;
    RemoveFromCache(path);
    return nullptr;
}

void CDocumentFileList::AddDocumentToCache(const CXTString<wchar_t>& path, void* document) const
{
    const std::lock_guard guard(m_lock);
    RemoveFromCache(path);
    m_cache.push_back({path, GetVersion(path), document});
    // The one just added stays, whatever the size: the caller has yet to take its reference.
    while (m_cache.size() > static_cast<std::size_t>(std::max(m_cacheSize, 1))) {
        const Cached oldest = m_cache.front();
        m_cache.pop_front();
        DeleteDocument(oldest.document);
    }
}

void CDocumentFileList::RemoveFromCache(const CXTString<wchar_t>& path) const
{
    const std::lock_guard guard(m_lock);
    const auto found = std::find_if(m_cache.begin(), m_cache.end(), [&](const Cached& cached) { return cached.path == path; });
    if (found == m_cache.end())
        return;
    void* const document = found->document;
    m_cache.erase(found);
    DeleteDocument(document);
}

void CDocumentFileList::ClearCache() const
{
    const std::lock_guard guard(m_lock);
    while (!m_cache.empty())
        RemoveFromCache(CXTString<wchar_t>(m_cache.front().path));
}

CDocumentFileList::Version CDocumentFileList::GetVersion(const CXTString<wchar_t>& path)
{
    std::error_code error;
    const std::filesystem::path name(fileToDisk(path));
    return {std::filesystem::last_write_time(name, error), std::filesystem::file_size(name, error)};
}
