#pragma once

#include <cstdint>
#include <filesystem>
#include <list>
#include <mutex>
#include <vector>

#include "tools/FileNameSpec.h"
#include "tools/Rect.h"

class CLayerBitmap;
class CWnd;

/// How a list reads a document, bits.
enum DocumentReadMode : unsigned int { READMODE_SILENT = 1, READMODE_ASK = 2 };

struct DocumentFileInfo {
    CFileNameSpec name;
};

/// The files that a frame has open, one of them shown, and the documents last read of them.
class ZEL_API CDocumentFileList {
public:
    /// `cacheSize`: documents that are kept, the one read last among them.
    explicit CDocumentFileList(int cacheSize);
    CDocumentFileList(const CDocumentFileList&) = delete;
    CDocumentFileList& operator=(const CDocumentFileList&) = delete;

    /// A new record, the caller's.
    virtual DocumentFileInfo* GetDocumentFileInfo(const CFileNameSpec& name) const = 0;
    virtual void DeleteDocument(void* document) const = 0;
    /// The document, which stays the list's (a user of it takes a reference); null when it can't be read. `mode`: DocumentReadMode.
    virtual void* ReadDocument(const DocumentFileInfo* info, unsigned int mode, CWnd* parent) const = 0;
    virtual CLayerBitmap* GetDocumentBitmap(const DocumentFileInfo* info, const CSize& size, unsigned int mode, CWnd* parent) const = 0;
    /// Derived ones call ClearCache: they delete the documents.
    virtual ~CDocumentFileList();

    /// At the end; its place when it is there already.
    int AddFile(const CXTString<wchar_t>& path);
    bool RemoveFile(const CXTString<wchar_t>& path);
    void RemoveAllFiles();
    int GetFileNbr() const { return static_cast<int>(m_files.size()); }
    /// Throws CXInvalidArgException outside.
    const CXTString<wchar_t>& GetFile(int index) const;
    int FindFile(const CXTString<wchar_t>& path) const;    ///< -1 for none

    const std::vector<CXTString<wchar_t>>& GetFiles() const { return m_files; }
    void SetFiles(const std::vector<CXTString<wchar_t>>& files) { m_files = files; }

    /// ReadDocument by path.
    void* ReadFile(const CXTString<wchar_t>& path, unsigned int mode, CWnd* parent) const;
    CLayerBitmap* GetFileBitmap(const CXTString<wchar_t>& path, const CSize& size, unsigned int mode, CWnd* parent) const;
    /// The file is read anew next time.
    void RemoveFromCache(const CXTString<wchar_t>& path) const;

protected:
    /// Null for a file that has changed on disk since it was read.
    void* FindInCache(const CXTString<wchar_t>& path) const;
    /// Takes the document over; what has been there longest goes when there are too many.
    void AddDocumentToCache(const CXTString<wchar_t>& path, void* document) const;
    void ClearCache() const;
    std::recursive_mutex& GetLock() const { return m_lock; }

private:
    /// Of a file on disk.
    struct Version {
        std::filesystem::file_time_type time;
        std::uintmax_t size;
        friend bool operator==(const Version&, const Version&) = default;
    };
    static Version GetVersion(const CXTString<wchar_t>& path);

    struct Cached {
        CXTString<wchar_t> path;
        Version version;
        void* document;
    };
    std::vector<CXTString<wchar_t>> m_files;
    const int m_cacheSize;
    mutable std::list<Cached> m_cache;
    mutable std::recursive_mutex m_lock;
};
