#include "viewer/NodeInfo.h"

#include <map>

#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/Material.h"
#include "tools/FileNameSpec.h"
#include "tools/FilePath.h"
#include "viewer/NodeInfoChannels.h"
#include "viewer/Texts.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr wchar_t NUMBER[] = L"%.5f";

template <class... ARGUMENTS> Text Format(const wchar_t* format, const ARGUMENTS&... arguments)
{
    Text text;
    text.FormatString(format, arguments...);
    return text;
}

Text GetTypeText(const C3DScene& scene, const C3DSceneNode& node)
{
    if (&node == scene.GetRoot())
        return LoadText(TEXT_WHOLE_SCENE);
    const C3DBaseObject* const object = node.GetBaseObject();
    if (!object)
        return {};
    return node.IsObjectIntanciated(false) ? object->GetTypeString() + L", " + LoadText(TEXT_INSTANCE) : object->GetTypeString();
}

// The root has no name but that of its scene.
Text GetNodeName(const C3DScene& scene, const C3DSceneNode& node)
{
    return &node == scene.GetRoot() && !node.HasName() ? scene.GetFilename().GetTitle() : node.GetName();
}

std::vector<CTextTable::Row> GetMatrixRows(const C4x4TMatrix<float>& matrix)
{
    std::vector<CTextTable::Row> rows;
    for (int row = 0; row < 4; row++) {
        rows.push_back({Format(L"%d", row)});
        for (int column = 0; column < 4; column++)
            rows.back().push_back(Format(NUMBER, matrix[row][column]));
    }
    return rows;
}

// In the scene's unit; zeros without anything that has a size.
std::vector<CTextTable::Row> GetBoxRows(const C3DScene& scene, const C3DSceneNode& node)
{
    C3DTPoint<float> min, max;
    node.GetBoundingBox(scene.GetTickCount(), min, max, BOX_FACES);
    const Text unit = scene.GetUnitText(true);
    const auto length = [&](double value) { return Format(L"%.5f %s", scene.ConvertToUnit(value), unit.c_str()); };
    std::vector<CTextTable::Row> rows;
    for (int axis = 0; axis < 3; axis++) {
        const double from = min[axis], to = max[axis];
        rows.push_back({Text(&L"XYZ"[axis], 1), length(from), length(to), length(to - from), length((from + to) / 2)});
    }
    return rows;
}

/// Live faces by material, those on whose back it is as well.
std::map<unsigned int, int> CountFaces(const C3DFaceList& faces)
{
    std::map<unsigned int, int> counts;
    const bool hasBack = faces.HasBackFaceMaterials();
    for (unsigned int i = 0; i < static_cast<unsigned int>(faces.GetSize()); i++) {
        const unsigned int front = faces.GetFaceMaterial(i);
        if (front == NO_MATERIAL)
            continue;
        counts[front]++;
        const unsigned int back = hasBack ? faces.GetBackFaceMaterial(i) : NO_MATERIAL;
        if (back != NO_MATERIAL && back != front)
            counts[back]++;
    }
    return counts;
}

}

CNodeInfoDlg::CNodeInfoDlg(const C3DScene* scene, const C3DSceneNode* node)
{
    constexpr int NUMBER_WIDTH = 30, MATRIX_LINES = 5, BOX_LINES = 4;
    title = LoadText(TEXT_TRANSFORMATIONS);
    m_matrix.SetColumns({{L"", NUMBER_WIDTH}, {L"0"}, {L"1"}, {L"2"}, {L"3"}});
    m_box.SetColumns(
        {{L"", NUMBER_WIDTH}, {LoadText(TEXT_MIN)}, {LoadText(TEXT_MAX)}, {LoadText(TEXT_DIMENSION)}, {LoadText(TEXT_CENTER)}});
    Text type, name, counts;
    if (scene && node) {
        C3DGeomObject* const object = node->GetGeomObject();
        type = GetTypeText(*scene, *node);
        name = GetNodeName(*scene, *node);
        counts = FormatText(TEXT_POINTS_AND_FACES, object ? object->GetPointNbr() : 0, object ? object->GetFaceNbr() : 0);
        C4x4TMatrix<float> matrix;
        node->GetNodeTM(scene->GetTickCount(), matrix, true);
        m_placeInScene = GetMatrixRows(matrix);
        node->GetObjectLocalTM(scene->GetTickCount(), matrix);
        m_placeInParent = GetMatrixRows(matrix);
        m_box.SetRows(GetBoxRows(*scene, *node));
    }
    CControl& typeField = Add(CONTROL_EDIT, INFO_OBJECT_TYPE, LoadText(TEXT_OBJECT_TYPE));
    typeField.value = type;
    typeField.readOnly = true;
    CControl& nameField = Add(CONTROL_EDIT, INFO_NODE_NAME, LoadText(TEXT_NODE_NAME));
    nameField.value = name;
    nameField.readOnly = true;
    CControl& matrix = Add(CONTROL_TABLE, INFO_MATRIX, {});
    matrix.table = &m_matrix;
    matrix.height = MATRIX_LINES;
    Add(CONTROL_CHECK, INFO_RELATIVE_MATRIX, LoadText(TEXT_RELATIVE_MATRIX)).enabled =
        node && node->GetParent() && node->GetParent()->GetParent();
    CControl& box = Add(CONTROL_TABLE, INFO_BOX, {});
    box.table = &m_box;
    box.height = BOX_LINES;
    Add(CONTROL_LABEL, INFO_COUNTS, counts);
}

void CNodeInfoDlg::OnInit() { ShowMatrix(); }

void CNodeInfoDlg::OnControl(unsigned int id)
{
    if (id == INFO_RELATIVE_MATRIX)
        ShowMatrix();
}

void CNodeInfoDlg::ShowMatrix() { m_matrix.SetRows(Find(INFO_RELATIVE_MATRIX)->checked ? m_placeInParent : m_placeInScene); }

CNodeInfoMaterials::CNodeInfoMaterials(const C3DScene* scene, const C3DSceneNode* node)
{
    constexpr int LINES = 14;
    title = LoadText(TEXT_MATERIALS);
    std::vector<CTextTable::Row> rows;
    const C3DGeomObject* const object = node ? node->GetGeomObject() : nullptr;
    if (scene && object && object->GetFaceList())
        for (const auto& [id, faces] : CountFaces(*object->GetFaceList())) {
            const C3DMaterial* const material = scene->GetMaterialByID(id);
            const CMaterialMap* const map = material ? material->GetDiffuseMaps() : nullptr;
            rows.push_back(
                {material ? material->GetName() : Text(), map ? fileStripPath(map->GetFileName()) : Text(), Format(L"%d", faces)});
        }
    Add(CONTROL_LABEL, INFO_MATERIAL_COUNT, node ? FormatText(TEXT_MATERIALS_USED, static_cast<int>(rows.size())) : Text());
    m_materials.SetColumns({{LoadText(TEXT_COLUMN_NAME)}, {LoadText(TEXT_COLUMN_TEXTURE)}, {LoadText(TEXT_COLUMN_FACES)}});
    m_materials.SetRows(std::move(rows));
    CControl& list = Add(CONTROL_TABLE, INFO_MATERIALS, {});
    list.table = &m_materials;
    list.height = LINES;
}

CNodeInfoSheet::CNodeInfoSheet(C3DScene* scene, C3DSceneNode* node, CWnd* parent) : m_parent(parent), m_scene(Share(scene))
{
    if (scene && !node)
        node = scene->GetRoot();
    m_transformations = std::make_unique<CNodeInfoDlg>(scene, node);
    m_channels = std::make_unique<CNodeInfoChannels>(scene, node);
    m_materials = std::make_unique<CNodeInfoMaterials>(scene, node);
    m_additional = std::make_unique<CNodeAdditionalData>(node ? &node->GetCustomData() : nullptr);
}

CNodeInfoSheet::~CNodeInfoSheet() = default;

void CNodeInfoSheet::DoModal()
{
    RunDialog(m_parent, LoadText(TEXT_OBJECT_INFORMATION),
              {m_transformations.get(), m_channels.get(), m_materials.get(), m_additional.get()});
}
