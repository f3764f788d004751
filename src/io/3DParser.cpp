#include "io/3DParser.h"

#include "files/FileIo.h"
#include "io/ExportSheet.h"
#include "io/Texts.h"

C3DParser::C3DParser(CFileIo* fileIo) : CFileParser(fileIo) {}

C3DParser::~C3DParser() = default;

IoShowDialog C3DParser::MustShowDialog() { return CFileParser::MustShowDialog(); }

void C3DParser::LoadDefaultOptions(CSceneImportOptions&) {}

bool C3DParser::LoadOptionsDialog(CSceneImportOptions&) { return true; }

CXTString<wchar_t> C3DParser::GetLoadParametersInfo(CSceneImportOptions&) { return LoadText(TEXT_DEFAULT_PARAMETERS); }

C3DScene* C3DParser::Read(const CXTString<wchar_t>&, CSceneImportOptions&) { return nullptr; }

void C3DParser::SaveDefaultOptions(CSceneExportOptions&) {}

bool C3DParser::SaveOptionsDialog(CSceneExportOptions& options) { return ShowExportSheet(*this, options); }

CXTString<wchar_t> C3DParser::GetSaveParametersInfo(CSceneExportOptions& options)
{
    return LoadText(options.flags == (options.defaultFlags | options.forcedFlags) ? TEXT_DEFAULT_PARAMETERS : TEXT_CUSTOM_PARAMETERS);
}

bool C3DParser::Save(const CXTString<wchar_t>&, C3DScene*, CSceneExportOptions& options)
{
    SetIoError(IORESULT_NO_PARSER, &options, IoLogInfo::FAILURE);
    return false;
}

bool C3DParser::CanUpdate(void*) const { return false; }

bool C3DParser::Update(const CXTString<wchar_t>&, C3DScene*, void*, CSceneExportOptions& options)
{
    SetIoError(IORESULT_NO_PARSER, &options, IoLogInfo::FAILURE);
    return false;
}

bool C3DParser::ReleaseParser(bool, void*) { return false; }
