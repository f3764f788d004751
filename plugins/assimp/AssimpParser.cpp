#include "AssimpParser.h"

#include <exception>
#include <iostream>
#include <sstream>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include "ExportFormats.h"
#include "Formats.h"
#include "Preflight.h"
#include "ProgressBridge.h"
#include "SceneImport.h"
#include "Writers.h"

namespace {

/// Keeps what importers print to themselves: their errors come back as texts, and standard error is the host's.
class MuteStandardError {
public:
    MuteStandardError() : m_former(std::cerr.rdbuf(m_swallowed.rdbuf())) {}
    ~MuteStandardError() { std::cerr.rdbuf(m_former); }

private:
    std::ostringstream m_swallowed;
    std::streambuf* m_former;
};

void SetUp(Assimp::Importer& importer)
{
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);           // no made-up geometry for bare skeletons
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);         // no helper nodes
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);    // names, not ids
}

}

CAssimpParser::CAssimpParser(unsigned int fileClass, CFileIo* fileIo) : C3DParser(fileIo), m_fileClass(fileClass) {}

IoShowDialog CAssimpParser::MustShowDialog() { return IODIALOG_NONE; }

void CAssimpParser::LoadDefaultOptions(CSceneImportOptions& options)
{
    if (GetFormatTraits(m_fileClass).yUp)
        options.upAxis = UP_AXIS_Y;
}

C3DScene* CAssimpParser::Read(const CXTString<wchar_t>& path, CSceneImportOptions& options)
{
    CProgress progress(L"Reading", 1000);
    ProgressBridge bridge(progress);
    Assimp::Importer importer;
    importer.SetProgressHandler(&bridge);
    SetUp(importer);

    CXTString<wchar_t> reason;
    C3DScene* scene = nullptr;
    const MuteStandardError mute;
    try {
        if (EndsBeforeItsContent(m_fileClass, WideToUtf8(path)))
            reason = L"the file ends before what it announces";
        else if (const aiScene* source = importer.ReadFile(WideToUtf8(path), 0))
            scene = ImportScene(*source, GetFormatTraits(m_fileClass), CFileNameSpec(path).GetTitle(), options);
        else
            reason = Utf8ToWide(importer.GetErrorString());
    } catch (const std::exception& error) {    // the library's own, such as a file that is too large for it
        reason = Utf8ToWide(error.what());
    }
    importer.SetProgressHandler(nullptr);    // the bridge is not the library's to delete
    if (!reason.IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, reason);
    return scene;
}

void CAssimpParser::SaveDefaultOptions(CSceneExportOptions& options)
{
    const ExportFormat* format = FindExportFormat(m_fileClass, options);
    if (!format)
        return;
    options.forcedFlags = format->forcedFlags;
    options.defaultFlags = EXPORT_GENERATE_UV;
    options.upAxis = format->upAxis;
    options.unit = format->unit;
    options.maxPoints = format->maxPoints;
    options.maxFaces = format->maxFaces;
    options.objectNameRule = format->objectNameRule;
    options.materialNameRule = format->materialNameRule;
}

bool CAssimpParser::Save(const CXTString<wchar_t>& path, C3DScene* scene, CSceneExportOptions& options)
{
    const ExportFormat* format = FindExportFormat(m_fileClass, options);
    if (!format || !scene)
        return C3DParser::Save(path, scene, options);
    CXTString<wchar_t> reason;
    const MuteStandardError mute;
    try {
        reason = Write(path, *scene, *format, options);
    } catch (const std::exception& error) {
        reason = Utf8ToWide(error.what());
    }
    if (!reason.IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, reason);
    return reason.IsEmpty();
}

CXTString<wchar_t> CAssimpParser::Write(const CXTString<wchar_t>& path, C3DScene& scene, const ExportFormat& format,
                                        CSceneExportOptions& options)
{
    OutputFiles files(path);
    LossLog losses;
    CXTString<wchar_t> reason;
    const WriterTask task{scene, format, path, files, losses};
    switch (format.writer) {
    case WRITER_OBJ: WriteObj(task); break;
    case WRITER_PLY: WritePly(task); break;
    case WRITER_STL: WriteStl(task); break;
    case WRITER_LIBRARY:
    case WRITER_ARCHIVE: reason = WriteThroughLibrary(task); break;
    }
    if (reason.IsEmpty() && !files.Commit())
        reason = files.GetFailedPath() + L" could not be written";
    if (reason.IsEmpty())
        losses.Report(options);
    return reason;
}
