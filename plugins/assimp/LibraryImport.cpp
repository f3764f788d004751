#include "LibraryImport.h"

#include <exception>
#include <string>

#include <strings.h>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include "ForcedReader.h"
#include "Formats.h"
#include "MuteStandardError.h"
#include "Preflight.h"
#include "ProgressBridge.h"
#include "SceneImport.h"

namespace {

void SetUp(Assimp::Importer& importer)
{
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);           // no made-up geometry for bare skeletons
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);         // no helper nodes
    importer.SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_USE_COLLADA_NAMES, true);    // names, not ids
}

bool HasExtension(const std::string& path, const std::string& extension)
{
    const std::string end = "." + extension;
    return path.size() >= end.size() && strcasecmp(path.c_str() + path.size() - end.size(), end.c_str()) == 0;
}

// The library chooses its reader by the extension. A file of another class than its extension says is shown with one of that class.
const aiScene* ReadFile(Assimp::Importer& importer, unsigned int fileClass, const std::string& path)
{
    std::string extension;
    for (const Format& format : ListFormats()) {
        if (format.fileClass != fileClass)
            continue;
        if (HasExtension(path, format.extension))
            return importer.ReadFile(path, 0);
        if (extension.empty())
            extension = format.extension;
    }
    auto* files = new ForcedReader(path, extension);    // the importer's
    importer.SetIOHandler(files);
    return importer.ReadFile(std::string(files->GetAlias()), 0);
}

}

C3DScene* ImportFile(unsigned int fileClass, const CXTString<wchar_t>& path, CSceneImportOptions& options, CProgress& progress)
{
    ProgressBridge bridge(progress);
    Assimp::Importer importer;
    importer.SetProgressHandler(&bridge);
    SetUp(importer);

    CXTString<wchar_t> reason;
    C3DScene* scene = nullptr;
    const MuteStandardError mute;
    try {
        if (EndsBeforeItsContent(fileClass, WideToUtf8(path)))
            reason = L"the file ends before what it announces";
        else if (const aiScene* source = ReadFile(importer, fileClass, WideToUtf8(path)))
            scene = ImportScene(*source, GetFormatTraits(fileClass), CFileNameSpec(path).GetTitle(), options);
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
