#include "tools/FileNameSpec.h"

#include "tools/FilePath.h"

CXTString<wchar_t> CFileNameSpec::GetPath() const { return fileGetPath(m_name); }

CXTString<wchar_t> CFileNameSpec::GetRoot() const { return fileGetRoot(m_name); }

CXTString<wchar_t> CFileNameSpec::GetFileName() const { return fileStripPath(m_name); }

CXTString<wchar_t> CFileNameSpec::GetTitle() const { return fileStripPath(fileStripExtension(m_name)); }

CXTString<wchar_t> CFileNameSpec::GetExtension() const { return fileGetExtension(m_name); }
