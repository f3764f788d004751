#include "geometry/3DFaceList.h"

#include <vector>

#include "geometry/ElementMethods.h"
#include "tools/Archive.h"

ZEL_IMPLEMENT_CREATABLE(C3DFaceList, CFaceList)

namespace {

constexpr unsigned int FACE_DATA_SIZE = sizeof(C3DFacePropertyData);

}

C3DFaceList* C3DFaceList::Create(C3DFaceList* model) { return new C3DFaceList(model); }

C3DFaceList::C3DFaceList() : C3DFaceList(nullptr) {}

C3DFaceList::C3DFaceList(const C3DFaceList* model) : CFaceList(model) { EnsureMaterials(); }

C3DFaceList::~C3DFaceList() = default;

// A main chunk without materials, as a channel's face list has it, is replaced by one with materials that keeps the
// flags.
void C3DFaceList::EnsureMaterials()
{
    if (HasMainChunk(FACE_DATA_SIZE))
        return;
    std::vector<unsigned int> flags(m_size);
    for (int i = 0; i < m_size; i++)
        if (const void* data = GetMainData(i))
            flags[i] = *static_cast<const unsigned int*>(data);
    auto* methods = new C3DFacePropertyMethods;
    AddDataChunk(CHUNK_FACE_PROPERTIES, methods);
    DeleteMe(methods);
    for (int i = 0; i < m_size; i++)
        if (void* data = GetMainData(i))
            *static_cast<unsigned int*>(data) = flags[i];
}

void C3DFaceList::Serialize(CXArchive& ar)
{
    if (ar.IsLoading())
        DeleteMaterialsHashMap();
    CFaceList::Serialize(ar);
    if (ar.IsStoring())
        return;
    if (!HasMainChunk(FACE_DATA_SIZE) || !m_chunks.IsPlainOrAbsent(CHUNK_BACK_MATERIAL, BASE_BACK_MATERIAL, sizeof(unsigned int))) {
        RemoveAll();
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    }
}

C3DFace* C3DFaceList::CreateFace()
{
    static_assert(sizeof(C3DFace) == sizeof(CFace), "ReleaseFace relies on it");
    return new C3DFace;
}

void C3DFaceList::Inherit(const CFaceList& model)
{
    CFaceList::Inherit(model);
    EnsureMaterials();
}

CFaceList& C3DFaceList::operator=(const CFaceList& model)
{
    DeleteMaterialsHashMap();
    CFaceList::operator=(model);
    EnsureMaterials();
    return *this;
}

void C3DFaceList::RemoveAll()
{
    DeleteMaterialsHashMap();
    CFaceList::RemoveAll();
}

bool C3DFaceList::UpdateList(const CGeomInfo* info)
{
    if (IsFlagSet(FACELIST_CHANGED))
        DeleteMaterialsHashMap();
    return CFaceList::UpdateList(info);
}
