#include "geometry/PointMaterialGraph.h"

#include <algorithm>

#include "geometry/3DFaceList.h"
#include "geometry/GeomInfo.h"

void C3DPointList::InitPointMaterialGraph(const CGeomInfo* info)
{
    UpdateList(info);
    if (m_materialGraphUse == 0 || !m_materialGraph || m_materialGraph->entries.IsEmpty())
        CreatePointMaterialGraph(info);
    m_materialGraphUse++;
}

void C3DPointList::DeletePointMaterialGraph()
{
    if (m_materialGraphUse > 0 && --m_materialGraphUse == 0)
        DropMaterialGraph();
}

void C3DPointList::CreatePointMaterialGraph(const CGeomInfo* info)
{
    m_materialGraph = std::make_unique<MaterialGraph>();
    C3DFaceList* faces = info ? info->GetSrc3DFaceList() : nullptr;
    if (!faces || faces->GetSize() == 0)
        return;
    faces->InitPointToFaceGraph(info);
    using Materials = CSimpleCollection<unsigned int, unsigned short>;
    CHashTable<unsigned int> materials;
    for (int point = 0; point < GetSize(); point++) {
        int count;
        const int* around = faces->GetFacesConnectedToPoint(point, count);
        const auto materialOf = [&](int i) { return faces->GetFaceMaterial(static_cast<unsigned int>(around[i])); };
        int alike = 1;    // faces of the first one's material, before any other
        while (alike < count && materialOf(alike) == materialOf(0))
            alike++;
        if (alike >= count)
            continue;
        materials.RemoveAll();
        for (int i = 0; i < count; i++)
            materials.Insert(materialOf(i));
        const unsigned int entry = m_materialGraph->materials.AddEntry(std::min(materials.GetCount(), Materials::MAX_ITEMS));
        for (const unsigned int material : materials)
            m_materialGraph->materials.AddItem(entry, material);
        m_materialGraph->entries.Insert(point, entry);
    }
    faces->DeletePointToFaceGraph();
}

const unsigned int* C3DPointList::GetMaterialsConnectedToPoint(int point, int& count) const
{
    count = 0;
    const unsigned int* entry = m_materialGraph ? m_materialGraph->entries.Find(point) : nullptr;
    if (!entry)
        return nullptr;
    unsigned int items;
    const unsigned int* materials = m_materialGraph->materials.GetItems(*entry, items);
    count = static_cast<int>(items);
    return materials;
}

int C3DPointList::GetNumberOfMaterialsConnectedToPoint(int point) const
{
    int count;
    return GetMaterialsConnectedToPoint(point, count) ? count : 1;
}

bool C3DPointList::InitShareSeveralMaterialsFlag()
{
    SetPointsFlags(POINT_SHARE_MATERIALS, false);
    if (!m_materialGraph)
        return false;
    bool any = false;
    for (const auto& [point, entry] : m_materialGraph->entries)
        if (C3DTPoint<float>* element = ElementAt(point)) {
            element->SetFlag(POINT_SHARE_MATERIALS, true);
            any = true;
        }
    return any;
}
