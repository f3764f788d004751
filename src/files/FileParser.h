#pragma once

#include "files/IoOptions.h"
#include "tools/Api.h"

class CFileIo;
class CWnd;

/// Whether options are asked for.
enum IoShowDialog {
    IODIALOG_NONE = 0,
    IODIALOG_SHOW = 1,
    IODIALOG_FROM_FILE = 2,    ///< yes, and the dialog needs the file itself
};

/// Reads or writes one file format. Made for a CFileIo, which owns it until CloseParser.
class ZEL_API CFileParser {
public:
    explicit CFileParser(CFileIo* fileIo);
    virtual ~CFileParser();
    CFileParser(const CFileParser&) = delete;
    CFileParser& operator=(const CFileParser&) = delete;

    /// IODIALOG_SHOW here.
    virtual IoShowDialog MustShowDialog();

    CFileIo* GetFileIo() const { return m_fileIo; }
    /// Window over which dialogs open; may be null.
    CWnd* GetParent() const;
    bool IsSilent() const;
    /// Passed on to the CFileIo.
    void SetIoError(int result, CIoOptions* options, IoLogInfo::loglevel level);

private:
    CFileIo* m_fileIo;
};

/// Makes a parser for a class; null when it cannot.
using CParserFactory = CFileParser* (*)(unsigned int fileClass, CFileIo* fileIo);
