#pragma once

#include "files/FileInfo.h"
#include "files/FileParser.h"
#include "files/IoOptions.h"

class CCustomData;
class CWnd;

enum FILE_PARSER_FLAGS : unsigned int {
    FILEIO_READ = 1,            ///< the object reads; clear: it writes
    FILEIO_SILENT = 2,          ///< no dialog, no wait cursor, no notice
    FILEIO_FORCE_DIALOG = 4,    ///< options are asked for in any case
    FILEIO_NO_FILE = 8,         ///< no file is involved: the parser only answers for its options
};

/// Results of reading and saving, as SetIoError takes them.
enum IO_FILE_RESULT : int {
    IORESULT_OK = 1,
    IORESULT_FAILED = 0,
    IORESULT_NO_FILE = -1,      ///< missing, cannot be opened, or the partner of an exchange is absent
    IORESULT_NO_PARSER = -2,    ///< no parser for the class, or it lacks the operation
    IORESULT_EXCEPTION = -5,
    IORESULT_NOTHING_TO_SAVE = -8,
    IORESULT_NO_BRIDGE = -9,
    IORESULT_EMPTY = -10,    ///< the file holds no polymesh, curve or patch
    IORESULT_CANCELLED = -11,
};

/// A file on its way in or out: its name, the parser that handles it, and how it went.
class ZEL_API CFileIo : public CFileInfo {
public:
    /// `parent` is the window over which dialogs open; may be null.
    CFileIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent);
    CFileIo(unsigned int fileClass, unsigned int flags, CWnd* parent);
    /// Name, flags and parent; neither parser nor result.
    CFileIo(const CFileIo& other);
    CFileIo& operator=(const CFileIo&) = delete;

    /// The parser, made of the first plug-in among the candidates that gives one. A plug-in that cannot be loaded or gives none
    /// is passed over. Null when no candidate has a plug-in, or all failed.
    virtual CFileParser* InitParser();
    /// Destroys the parser.
    virtual void CloseParser();
    virtual ~CFileIo();

    CFileParser* GetFileParser() const { return m_parser; }
    CWnd* GetParent() const { return m_parent; }
    unsigned int GetFlags() const { return m_flags; }
    bool IsFlagSet(FILE_PARSER_FLAGS flag) const { return (m_flags & flag) == static_cast<unsigned int>(flag); }
    void SetFlag(FILE_PARSER_FLAGS flag, bool on) { m_flags = on ? m_flags | flag : m_flags & ~flag; }
    bool IsReading() const { return IsFlagSet(FILEIO_READ); }
    bool IsSilent() const { return IsFlagSet(FILEIO_SILENT); }

    /// Keeps the result. With options, its text becomes a line of their log; IORESULT_OK and IORESULT_CANCELLED have no text.
    void SetIoError(int result, CIoOptions* options, IoLogInfo::loglevel level);
    /// The result set last; IORESULT_OK before any.
    int GetLastResult() const { return m_result; }
    /// Level of the result set last.
    IoLogInfo::loglevel GetLastLevel() const { return m_level; }
    /// What the result means, with the file's name.
    CXTString<wchar_t> GetResultText() const;
    /// Tells the user: a message for a failure, and the lines of the levels in `mask` when a report is wanted or something went
    /// wrong. Silent objects and successes without wanted report show nothing.
    void ReportIoError(CIoOptions* options, unsigned int mask);

    /// Asks the user for a name to read or to save, of the families in `kind`. False when cancelled; else the name and class are taken.
    bool FileDialogBox(unsigned int kind, unsigned int filterClass);

    /// Settings remembered for a class. False, with `out` emptied, when there are none.
    static bool LoadIoParameters(bool reading, CCustomData& out, unsigned int fileClass);
    /// Remembers settings for a class; an empty bag forgets them.
    static bool SaveIoParameters(bool reading, const CCustomData& data, unsigned int fileClass);

protected:
    /// Takes over a parser that did not come from a plug-in.
    void SetFileParser(CFileParser* parser) { m_parser = parser; }
    /// Why the result is what it is: a sentence behind that of GetResultText. The next SetIoError forgets it.
    void SetIoDetail(const CXTString<wchar_t>& sentence) { m_detail = sentence; }

private:
    CFileParser* m_parser = nullptr;
    void* m_module = nullptr;    ///< plug-in of the parser, held until it is destroyed
    CWnd* m_parent;
    unsigned int m_flags;
    int m_result = IORESULT_OK;
    CXTString<wchar_t> m_detail;
    IoLogInfo::loglevel m_level = IoLogInfo::INFORMATION;
};
