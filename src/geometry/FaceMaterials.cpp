#include <algorithm>
#include <numeric>

#include "geometry/3DFaceList.h"
#include "geometry/ElementMethods.h"
#include "tools/BlockVector.h"

// Materials of faces: front in the main data, back in a chunk of its own; the map that counts faces by material;
// sorting.

namespace {

// One 32-bit word of each element of a chunk, for loops over all faces.
class CWords {
public:
    CWords(const CElementArray* array, std::size_t offset)
        : m_first(static_cast<unsigned char*>(const_cast<void*>(array->GetBase())) + offset), m_stride(array->GetStride())
    {
    }
    unsigned int& operator[](unsigned int face) const { return *reinterpret_cast<unsigned int*>(m_first + face * m_stride); }

private:
    unsigned char* m_first;
    std::size_t m_stride;
};

CWords FrontMaterials(const C3DFaceList& faces) { return {faces.GetDataChunks().GetMainArray(), sizeof(unsigned int)}; }

CWords BackMaterials(const C3DFaceList& faces) { return {faces.GetDataChunks().GetData(CHUNK_BACK_MATERIAL), 0}; }

unsigned int Replace(const CWords& materials, int count, unsigned int from, unsigned int to)
{
    unsigned int replaced = 0;
    for (int i = 0; i < count; i++)
        if (materials[i] == from) {
            materials[i] = to;
            replaced++;
        }
    return replaced;
}

}

unsigned int C3DFaceList::GetFaceMaterial(unsigned int i) const
{
    C3DFace face;
    return GetFace(i, face) && !face.IsDead() ? face.GetMaterialID() : NO_MATERIAL;
}

void C3DFaceList::SetFaceMaterial(unsigned int i, unsigned int id)
{
    C3DFace face;
    if (GetFace(i, face))
        face.SetMaterialID(id);
}

unsigned int C3DFaceList::GetBackFaceMaterial(unsigned int i) const
{
    const void* data = GetData(CHUNK_BACK_MATERIAL, i);
    return data ? *static_cast<const unsigned int*>(data) : NO_MATERIAL;
}

void C3DFaceList::SetBackFaceMaterial(unsigned int i, unsigned int id)
{
    if (i >= static_cast<unsigned int>(m_size))
        return;
    if (!HasBackFaceMaterials()) {
        auto* methods = new CBackFaceMaterialMethods;
        AddDataChunk(CHUNK_BACK_MATERIAL, methods);
        DeleteMe(methods);
    }
    *static_cast<unsigned int*>(GetData(CHUNK_BACK_MATERIAL, i)) = id;
}

bool C3DFaceList::HasBackFaceMaterials() const { return m_chunks.HasDataChunk(CHUNK_BACK_MATERIAL); }

bool C3DFaceList::RemoveBackFaceMaterials()
{
    const bool removed = RemoveDataChunk(CHUNK_BACK_MATERIAL);
    if (IsFlagSet(FACELIST_BACK_CHANGED))
        DeleteMaterialsHashMap();
    return removed;
}

bool C3DFaceList::ReplaceMaterial(unsigned int from, unsigned int to)
{
    if (from == to || !HasMainChunk(2 * sizeof(unsigned int)))
        return false;
    unsigned int replaced = Replace(FrontMaterials(*this), m_size, from, to);
    if (HasBackFaceMaterials())
        replaced += Replace(BackMaterials(*this), m_size, from, to);
    if (replaced == 0)
        return false;
    unsigned int count;
    if (m_materials.Find(from, count)) {
        m_materials.SetAt(to, count);
        m_materials.Remove(from);
    } else
        DeleteMaterialsHashMap();
    return true;
}

// --- The materials map ----------------------------------------------------------------------------------------------

const C3DFaceList::MaterialsMap* C3DFaceList::GetMaterialsHashMap(const CGeomInfo* info, bool withBack)
{
    UpdateList(info);
    withBack = withBack && HasBackFaceMaterials();
    if (m_mapState != (withBack ? MAP_BOTH : MAP_FRONT))
        CreateMaterialsHashMap(withBack);
    return &m_materials;
}

void C3DFaceList::CreateMaterialsHashMap(bool withBack)
{
    DeleteMaterialsHashMap();
    withBack = withBack && HasBackFaceMaterials();
    if (m_size && HasMainChunk(2 * sizeof(unsigned int))) {
        CountMaterials(FrontMaterials(*this));
        if (withBack)
            CountMaterials(BackMaterials(*this));
    }
    m_mapState = withBack ? MAP_BOTH : MAP_FRONT;
}

void C3DFaceList::DeleteMaterialsHashMap()
{
    m_materials.RemoveAll();
    m_mapState = MAP_NONE;
}

// Faces of one material mostly come in runs, so the map is asked once a run. The material of face 0 gets an entry even
// when that face is dead.
template <class MATERIALS> void C3DFaceList::CountMaterials(const MATERIALS& materials)
{
    const auto countSoFar = [this](unsigned int material) {
        const unsigned int* count = m_materials.Find(material);
        return count ? *count : 0;
    };
    const CFaceFlags flags(*this);
    unsigned int current = materials[0], count = countSoFar(current);
    for (int i = 0; i < m_size; i++) {
        if (flags.IsDead(i))
            continue;
        if (materials[i] != current) {
            m_materials.SetAt(current, count);
            current = materials[i];
            count = countSoFar(current);
        }
        count++;
    }
    m_materials.SetAt(current, count);
}

// --- Sorting --------------------------------------------------------------------------------------------------------

namespace {

// A stable counting sort: meshes have many faces and few materials. `places` counts the faces of each material, and
// becomes the place of its next face.
void SortByMaterial(const CWords& materials, unsigned int count, unsigned int* order)
{
    CHashMap<unsigned int, unsigned int> slotOf;
    CBlockVector<unsigned int> ids, places;
    CBlockVector<unsigned int> slots(count);
    for (unsigned int i = 0; i < count; i++) {
        if (i > 0 && materials[i] == materials[i - 1])
            slots[i] = slots[i - 1];
        else if (const unsigned int* slot = slotOf.Find(materials[i]))
            slots[i] = *slot;
        else {
            slots[i] = static_cast<unsigned int>(ids.size());
            slotOf.Insert(materials[i], slots[i]);
            ids.push_back(materials[i]);
            places.push_back(0);
        }
        places[slots[i]]++;
    }

    CBlockVector<unsigned int> ascending(ids.size());
    std::iota(ascending.begin(), ascending.end(), 0u);
    std::sort(ascending.begin(), ascending.end(), [&](unsigned int a, unsigned int b) { return ids[a] < ids[b]; });
    unsigned int place = 0;
    for (const unsigned int slot : ascending) {
        const unsigned int faces = places[slot];
        places[slot] = place;
        place += faces;
    }
    for (unsigned int i = 0; i < count; i++)
        order[places[slots[i]]++] = i;
}

}

unsigned int* C3DFaceList::Sort(_FACE_SORT_MODE, bool& changed) const
{
    changed = false;
    if (m_size == 0 || !HasMainChunk(2 * sizeof(unsigned int)))
        return nullptr;
    const CWords materials = FrontMaterials(*this);
    for (int i = 1; i < m_size && !changed; i++)
        changed = materials[i] < materials[i - 1];
    auto* order = new unsigned int[m_size];
    if (changed)
        SortByMaterial(materials, m_size, order);
    else
        std::iota(order, order + m_size, 0u);
    return order;
}
