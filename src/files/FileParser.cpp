#include "files/FileParser.h"

#include "files/FileIo.h"

CFileParser::CFileParser(CFileIo* fileIo) : m_fileIo(fileIo) {}

CFileParser::~CFileParser() = default;

IoShowDialog CFileParser::MustShowDialog() { return IODIALOG_SHOW; }

CWnd* CFileParser::GetParent() const { return m_fileIo ? m_fileIo->GetParent() : nullptr; }

bool CFileParser::IsSilent() const { return !m_fileIo || m_fileIo->IsSilent(); }

void CFileParser::SetIoError(int result, CIoOptions* options, IoLogInfo::loglevel level)
{
    if (m_fileIo)
        m_fileIo->SetIoError(result, options, level);
}
