#include "io/NativeFile.h"

#include <algorithm>
#include <iterator>

#include "files/FileIo.h"
#include "io/BadFaces.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "tools/Archive.h"
#include "tools/Exception.h"
#include "tools/FileNameSpec.h"
#include "tools/IoFile.h"
#include "tools/Progress.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int SCENE_FILE = 2;    // what the file is told of its content
constexpr unsigned int BUFFER = 4096;

struct Header {
    unsigned char magic[8];
    unsigned int version;
    unsigned int lowestReader;
};

void MoveHeader(CXArchive& ar, Header& header)
{
    ar.MoveNumbers(header.magic, std::size(header.magic));
    Move(ar, header.version);
    Move(ar, header.lowestReader);
}

/// False, with a line in the log, when the stream behind the header is not for this reader.
bool CheckHeader(CXArchive& ar, const Text& name, CIoOptions& options)
{
    Header header;
    if (ar.GetRemaining() >= sizeof header)
        MoveHeader(ar, header);
    else
        header = {};
    Text reason;
    if (!std::equal(std::begin(header.magic), std::end(header.magic), C3DIFIo::MAGIC))
        reason = name + L" is not a native scene file";
    else if (header.lowestReader > C3DIFIo::VERSION)
        reason.FormatString(L"%s was written by a newer release: file version %u asks for readers of version %u, this one is %u",
                            name.Str().c_str(), header.version, header.lowestReader, C3DIFIo::VERSION);
    if (!reason.IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, reason);
    return reason.IsEmpty();
}

const wchar_t* GetDamageText(int type)
{
    switch (type) {
    case CXArchiveException::ARCHIVE_END_OF_FILE: return L"it ends too early";
    case CXArchiveException::ARCHIVE_BAD_COUNT: return L"a count in it exceeds its size";
    case CXArchiveException::ARCHIVE_BAD_CLASS: return L"a class in it is unknown or out of place";
    case CXArchiveException::ARCHIVE_UNKNOWN_TYPE: return L"a type in it is unknown";
    default: return L"a value in it cannot be";
    }
}

/// Says in the system's words why a file could not be written, before anything that only says that it could not.
void LogReason(const IoFile& file, const Text& name, CIoOptions& options)
{
    if (const Text reason = file.GetErrorText(); !reason.IsEmpty())
        options.AddLogInfo(IoLogInfo::FAILURE, name + L" could not be written: " + reason);
}

/// True when the scene came through whole.
bool ReadScene(IoFile& file, C3DScene& scene, const Text& name, CSceneImportOptions& options)
{
    CXArchive ar(&file, CXArchive::LOAD, BUFFER);
    if (!CheckHeader(ar, name, options))
        return false;
    scene.Serialize(ar);
    ar.Close();
    return true;
}

/// The scene is stored without them.
void LogBadFaces(C3DScene& scene, CIoOptions& options)
{
    std::vector<unsigned int> faces;
    C3DGeomObject* object;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;) {
        scene.GetNextNode(object, pos);
        object->DropBadFaces(&faces);
    }
    for (const unsigned int face : faces)
        LogBadFace(options, face);
}

void WriteScene(IoFile& file, C3DScene& scene)
{
    CXArchive ar(&file, CXArchive::STORE, BUFFER);
    Header header = {{}, C3DIFIo::VERSION, C3DIFIo::LOWEST_READER};
    std::copy(std::begin(C3DIFIo::MAGIC), std::end(C3DIFIo::MAGIC), header.magic);
    MoveHeader(ar, header);
    scene.Serialize(ar);
    ar.Close();
}

/// About what the scene takes in the file.
std::uint64_t GuessBytes(const C3DScene& scene)
{
    constexpr std::uint64_t OF_POINT = 16, OF_FACE = 32;
    return 1 + OF_POINT * static_cast<std::uint64_t>(scene.GetPointNbr()) + OF_FACE * static_cast<std::uint64_t>(scene.GetFaceNbr());
}

/// The file name of a scene is not stored with it. It comes back unless the scene was saved.
class CNameOutOfTheWay {
public:
    explicit CNameOutOfTheWay(C3DScene& scene) : m_scene(scene), m_name(scene.GetFilename()) { scene.SetFilename(CFileNameSpec()); }
    ~CNameOutOfTheWay()
    {
        if (!m_saved)
            m_scene.SetFilename(m_name);
    }
    CNameOutOfTheWay(const CNameOutOfTheWay&) = delete;
    CNameOutOfTheWay& operator=(const CNameOutOfTheWay&) = delete;
    void SetSaved() { m_saved = true; }

private:
    C3DScene& m_scene;
    const CFileNameSpec m_name;
    bool m_saved = false;
};

}

C3DIFIo::~C3DIFIo() = default;

C3DScene* C3DIFIo::Read(const CXTString<wchar_t>& name, CSceneImportOptions& options)
{
    IoFile file(IsSilent(), SCENE_FILE);
    if (!file.OpenFile(name, 1, nullptr)) {
        SetIoError(IORESULT_NO_FILE, &options, IoLogInfo::FAILURE);
        return nullptr;
    }
    SetScene(C3DScene::Create());
    const CByteProgress progress(L"Reading", file.GetLength());
    try {
        if (!ReadScene(file, *GetScene(), name, options)) {
            DeleteMe(GetScene());
            SetScene(nullptr);
        }
    } catch (const CXArchiveException* damage) {
        if (!CProgressScope::IsCancelled())
            options.AddLogInfo(IoLogInfo::FAILURE, name + L" is damaged: " + GetDamageText(damage->GetType()));
        throw;
    }
    file.CloseFile();
    return GetScene();
}

bool C3DIFIo::Save(const CXTString<wchar_t>& name, C3DScene* scene, CSceneExportOptions& options)
{
    IoFile file(IsSilent(), SCENE_FILE);
    if (!file.OpenFile(name, 0, nullptr)) {
        LogReason(file, name, options);
        SetIoError(IORESULT_NO_FILE, &options, IoLogInfo::FAILURE);
        return false;
    }
    LogBadFaces(*scene, options);
    const CByteProgress progress(L"Saving", GuessBytes(*scene));
    CNameOutOfTheWay sceneName(*scene);
    try {
        WriteScene(file, *scene);
    } catch (const CXArchiveException*) {
        LogReason(file, name, options);
        throw;
    }
    if (!file.CloseFile()) {
        LogReason(file, name, options);
        SetIoError(IORESULT_FAILED, &options, IoLogInfo::FAILURE);
        return false;
    }
    sceneName.SetSaved();
    return true;
}
