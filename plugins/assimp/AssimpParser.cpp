#include "AssimpParser.h"

#include <exception>

#include "ExportFormats.h"
#include "Formats.h"
#include "ImportWorker.h"
#include "LibraryImport.h"
#include "MuteStandardError.h"
#include "TextureExport.h"
#include "Writers.h"

CAssimpParser::CAssimpParser(unsigned int fileClass, CFileIo* fileIo) : C3DParser(fileIo), m_fileClass(fileClass) {}

IoShowDialog CAssimpParser::MustShowDialog() { return IODIALOG_NONE; }

void CAssimpParser::LoadDefaultOptions(CSceneImportOptions& options)
{
    const FormatTraits traits = GetFormatTraits(m_fileClass);
    unsigned int wanted;
    const bool isWanted = !traits.tellsUp && options.GetCustomData().GetUnsigned(IMPORT_UP_AXIS, wanted) && wanted <= UP_AXIS_X;
    options.upAxis = isWanted && !traits.turned ? static_cast<_UP_AXIS_MODE>(wanted) : traits.up;
    if (isWanted && traits.turned && wanted != UP_AXIS_Z)    // the axis is one of the file, not of what the library makes of it
        options.swapCoordinates = wanted == UP_AXIS_Y ? SWAP_YZ | MIRROR_Y : SWAP_XZ | MIRROR_X;
}

C3DScene* CAssimpParser::Read(const CXTString<wchar_t>& path, CSceneImportOptions& options)
{
    CProgress progress(L"Reading", 1000);
    if (!ImportsInProcess())
        return ImportInWorker(m_fileClass, path, options, progress);
    LibraryReading reading;
    C3DScene* const scene = ImportFile(m_fileClass, path, reading, options, progress);
    if (scene)
        reading.images.Write(*scene, options);
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
    options.texturesInside = format->Can(CAN_EMBED) ? TextureExport::ListInside() : std::vector<CXTString<wchar_t>>();
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

static CXTString<wchar_t> WriteFiles(const WriterTask& task)
{
    if (task.format.writer == WRITER_LIBRARY || task.format.writer == WRITER_ARCHIVE)
        return WriteThroughLibrary(task);
    constexpr std::uint64_t BYTES = 64;    // about what a point or face takes in a file
    const CByteProgress progress(L"Writing", 1 + BYTES * static_cast<std::uint64_t>(task.scene.GetPointNbr() + task.scene.GetFaceNbr()));
    switch (task.format.writer) {
    case WRITER_GLTF: WriteGltf(task); break;
    case WRITER_OBJ: WriteObj(task); break;
    case WRITER_PLY: WritePly(task); break;
    default: WriteStl(task); break;
    }
    return {};
}

CXTString<wchar_t> CAssimpParser::Write(const CXTString<wchar_t>& path, C3DScene& scene, const ExportFormat& format,
                                        CSceneExportOptions& options)
{
    OutputFiles files(path);
    LossLog losses;
    const WriterTask task{scene, format, path, options, files, losses};
    CXTString<wchar_t> reason = WriteFiles(task);
    if (CProgressScope::IsCancelled())
        reason = L"cancelled";
    if (reason.IsEmpty() && !files.Commit())
        reason = files.GetFailureText();
    if (reason.IsEmpty())
        losses.Report(options);
    return reason;
}
