#include "viewer/NodeInfoChannels.h"

#include "channels/DependentChannels.h"
#include "channels/NormalFaceList.h"
#include "channels/UVWPointList.h"
#include "channels/VCPointList.h"
#include "channels/WeightPointList.h"
#include "geometry/3DPointList.h"
#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/Material.h"
#include "viewer/Texts.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr int NUMBER_WIDTH = 50, COUNT_WIDTH = 110;    // the latter by its title

template <class LIST, class BASE> bool Is(const BASE* list) { return dynamic_cast<const LIST*>(list) != nullptr; }

std::vector<Text> GetCoordinateNames(const CPointList* points)
{
    if (Is<CVCPointList>(points))
        return {L"R", L"G", L"B", L"A"};
    if (Is<CUVWPointList>(points))
        return {L"U", L"V", L"W"};
    if (Is<CWeightPointList>(points))
        return {LoadText(TEXT_COLUMN_WEIGHT)};
    return {L"X", L"Y", L"Z"};
}

std::vector<CCustomList::Column> MakeColumns(const CPointList* points, const CFaceList* faces)
{
    std::vector<CCustomList::Column> columns = {{L"", NUMBER_WIDTH}};
    if (faces) {
        columns.push_back({LoadText(TEXT_COLUMN_POINTS), COUNT_WIDTH});
        columns.push_back({LoadText(TEXT_COLUMN_INDEX)});
        if (Is<C3DFaceList>(faces))
            columns.push_back({LoadText(TEXT_COLUMN_MATERIAL)});
    } else
        for (const Text& name : GetCoordinateNames(points))
            columns.push_back({name});
    return columns;
}

Text GetMaterialName(const C3DScene* scene, unsigned int id)
{
    const C3DMaterial* const material = scene && id != NO_MATERIAL ? scene->GetMaterialByID(id) : nullptr;
    return material ? material->GetName() : Text();
}

}

void CElementTable::Show(const C3DScene* scene, const CPointList* points, const CFaceList* faces)
{
    SetRowCount(0);    // nothing is asked for until all of it is known
    m_scene = scene;
    m_points = points;
    m_faces = faces;
    m_unused = LoadText(TEXT_UNUSED);
    SetColumns(MakeColumns(points, faces));
    SetRowCount(faces ? faces->GetSize() : points ? points->GetSize() : 0);
}

Text CElementTable::GetCellText(int row, int column) const
{
    Text text;
    if (column == 0)
        text.FormatString(L"%d", row);
    else if (!m_faces)
        text = GetPointText(row, column - 1);
    else if (column == 1) {
        int corners = 0;
        m_faces->GetIndexes(static_cast<unsigned int>(row), corners);
        text.FormatString(L"%d", corners);
    } else
        text = column == 2 ? GetCornersText(row) : GetMaterialsText(row);
    return text;
}

Text CElementTable::GetPointText(int row, int coordinate) const
{
    const CPt* const point = m_points ? m_points->ElementAt(row) : nullptr;
    if (!point)
        return {};
    // A position is a value in any case; the flag is one of channels.
    if (point->IsFlagSet(POINT_UNSET) && !Is<C3DPointList>(m_points))
        return m_unused;
    C4DPoint values;
    point->To4DPoint(values);
    Text text;
    text.FormatString(Is<CVCPointList>(m_points) ? L"%.0f" : L"%.5f", values.values[coordinate]);
    return text;
}

Text CElementTable::GetCornersText(int row) const
{
    int count = 0;
    const int* const corners = m_faces->GetIndexes(static_cast<unsigned int>(row), count);
    const bool normals = Is<CNormalFaceList>(m_faces);
    Text text, corner;
    for (int i = 0; i < count; i++) {
        const CPt* const normal = normals && m_points ? m_points->ElementAt(corners[i]) : nullptr;
        if (normal && normal->IsFlagSet(POINT_UNSET))
            corner.FormatString(L"%s, ", m_unused.c_str());
        else
            corner.FormatString(L"%d, ", corners[i]);
        text += corner;
    }
    return text;
}

Text CElementTable::GetMaterialsText(int row) const
{
    const auto& faces = static_cast<const C3DFaceList&>(*m_faces);
    const auto face = static_cast<unsigned int>(row);
    const Text front = GetMaterialName(m_scene, faces.GetFaceMaterial(face));
    return faces.HasBackFaceMaterials() ? front + L" - " + GetMaterialName(m_scene, faces.GetBackFaceMaterial(face)) : front;
}

CNodeInfoChannels::CNodeInfoChannels(const C3DScene* scene, const C3DSceneNode* node) : m_scene(scene)
{
    constexpr int LINES = 14;
    title = LoadText(TEXT_GEOMETRY);
    if (const C3DGeomObject* const object = node ? node->GetGeomObject() : nullptr) {
        if (C3DFaceList* const faces = object->GetFaceList())
            AddArray(FormatText(TEXT_FACE_ARRAY, faces->GetSize()), object->GetPointList(), faces);
        if (C3DPointList* const points = object->GetPointList())
            AddArray(FormatText(TEXT_POINT_ARRAY, points->GetSize()), points, nullptr);
        CDependentChannels* const channels = object->GetChannels();
        for (int i = 0; i < channels->GetSize(); i++) {
            const CChannel& channel = *(*channels)[i];
            const Text type = channel.GetTypeString();
            const unsigned int id = channel.GetChannelID();
            const int index = channels->GetChannelIndex(id, channel.GetType(), false);
            CPointList* const points = channel.GetPointList();
            if (CFaceList* const faces = channel.GetFaceList())
                AddArray(FormatText(TEXT_CHANNEL_FACE_ARRAY, faces->GetSize(), type, index, id), points, faces);
            if (points)
                AddArray(FormatText(TEXT_CHANNEL_POINT_ARRAY, points->GetSize(), type, index, id), points, nullptr);
        }
    }
    CControl& combo = Add(CONTROL_COMBO, INFO_ARRAYS, LoadText(TEXT_ARRAYS));
    combo.items = m_texts;
    for (std::size_t i = 0; i < m_arrays.size(); i++)
        combo.itemData.push_back(i);
    combo.selected = m_arrays.empty() ? -1 : 0;
    CControl& list = Add(CONTROL_TABLE, INFO_ELEMENTS, {});
    list.table = &m_elements;
    list.height = LINES;
    ShowArray();
}

CNodeInfoChannels::~CNodeInfoChannels() = default;

void CNodeInfoChannels::OnControl(unsigned int id)
{
    if (id == INFO_ARRAYS)
        ShowArray();
}

void CNodeInfoChannels::AddArray(const Text& text, CPointList* points, CFaceList* faces)
{
    m_texts.push_back(text);
    m_arrays.push_back({Share(points), Share(faces)});
}

void CNodeInfoChannels::ShowArray()
{
    const CControl& combo = *Find(INFO_ARRAYS);
    if (combo.selected < 0)
        return;
    const Array& array = m_arrays.at(combo.itemData.at(static_cast<std::size_t>(combo.selected)));
    m_elements.Show(m_scene, array.points.get(), array.faces.get());
}
