#include "viewer/NodeReport.h"

#include "scene/3DScene.h"
#include "scene/GeomObject.h"
#include "scene/Material.h"
#include "tools/FileNameSpec.h"
#include "viewer/Texts.h"

namespace {

using Text = CXTString<wchar_t>;

enum ReportText : unsigned int {
    TEXT_NAME = 7440,
    TEXT_TYPE,
    TEXT_POINTS,
    TEXT_FACES,
    TEXT_SIZE,
    TEXT_PLACE,
    TEXT_MATERIAL_NAMES,
    TEXT_CHILDREN,
    TEXT_OBJECTS,
    TEXT_MATERIALS,
    TEXT_FILE,
    TEXT_FRAMES,
    TEXT_DIFFUSE,
    TEXT_AMBIENT,
    TEXT_SPECULAR,
    TEXT_OPACITY,
    TEXT_USERS,
    TEXT_MAP_DIFFUSE,
    TEXT_MAP_AMBIENT,
    TEXT_MAP_SPECULAR,
    TEXT_MAP_TRANSPARENCY,
    TEXT_MAP_BUMP,
};

/// Lines of a report.
class CReport {
public:
    template <class... ARGUMENTS> void Add(ReportText id, const ARGUMENTS&... arguments) { m_text += FormatText(id, arguments...) + L"\n"; }
    const Text& GetText() const { return m_text; }

private:
    Text m_text;
};

void AddBox(CReport& report, const C3DScene& scene, const C3DSceneNode& node)
{
    C3DTPoint<float> min, max;
    if (!node.GetBoundingBox(scene.GetTickCount(), min, max, BOX_FACES))
        return;
    double from[3], to[3];
    for (int axis = 0; axis < 3; ++axis) {
        from[axis] = scene.ConvertToUnit(min[axis]);
        to[axis] = scene.ConvertToUnit(max[axis]);
    }
    report.Add(TEXT_SIZE, to[0] - from[0], to[1] - from[1], to[2] - from[2], scene.GetUnitText(true));
    report.Add(TEXT_PLACE, from[0], from[1], from[2], to[0], to[1], to[2]);
}

Text GetMaterialNames(const C3DScene& scene, C3DGeomObject& object)
{
    Text names;
    const auto* const used = object.GetMaterialsHashMap(true);
    for (unsigned int position = scene.GetFirstMaterial(); used && position != 0xFFFFFFFF;) {
        const C3DMaterial* const material = scene.GetNextMaterial(position);
        if (material && used->Find(material->GetMaterialID()))
            names += (names.IsEmpty() ? Text() : Text(L", ")) + material->GetName();
    }
    return names;
}

Text GetColorText(const CRGBColor& color)
{
    Text text;
    text.FormatString(L"%d %d %d", color.red, color.green, color.blue);
    return text;
}

Text GetSceneReport(const C3DScene& scene)
{
    CReport report;
    report.Add(TEXT_FILE, scene.GetFilename().GetFullName());
    report.Add(TEXT_OBJECTS, scene.GetChildCount(nullptr, OBJECT_GEOMETRIC));
    report.Add(TEXT_POINTS, scene.GetPointNbr());
    report.Add(TEXT_FACES, scene.GetFaceNbr());
    report.Add(TEXT_MATERIALS, scene.GetMaterialNumber());
    const CTimeRange range = const_cast<C3DScene&>(scene).GetTimeRange(KEY_ANY);
    report.Add(TEXT_FRAMES, range.start, range.end);
    AddBox(report, scene, *scene.GetRoot());
    return report.GetText();
}

}

Text GetNodeReport(C3DScene& scene, const C3DSceneNode* node)
{
    if (!node)
        return GetSceneReport(scene);
    CReport report;
    report.Add(TEXT_NAME, node->GetDisplayName());
    if (const C3DBaseObject* const object = node->GetBaseObject())
        report.Add(TEXT_TYPE, object->GetTypeString());
    C3DBaseObject* const shown = node->GetFinalObject();
    C3DGeomObject* const geometry = shown && shown->IsGeomObject() ? static_cast<C3DGeomObject*>(shown) : nullptr;
    if (geometry) {
        report.Add(TEXT_POINTS, geometry->GetPointNbr());
        report.Add(TEXT_FACES, geometry->GetFaceNbr());
    }
    AddBox(report, scene, *node);
    if (const int below = scene.GetChildCount(node, OBJECT_ANY); below > 0)
        report.Add(TEXT_CHILDREN, below);
    if (geometry)
        report.Add(TEXT_MATERIAL_NAMES, GetMaterialNames(scene, *geometry));
    return report.GetText();
}

Text GetMaterialReport(C3DScene& scene, unsigned int materialID)
{
    const C3DMaterial* const material = scene.GetMaterialByID(materialID);
    if (!material)
        return {};
    const unsigned int time = static_cast<unsigned int>(scene.GetTickCount());
    CReport report;
    report.Add(TEXT_NAME, material->GetName());
    report.Add(TEXT_DIFFUSE, GetColorText(material->GetDiffuseColor(time, true)));
    report.Add(TEXT_AMBIENT, GetColorText(material->GetAmbientColor(time, true)));
    report.Add(TEXT_SPECULAR, GetColorText(material->GetSpecularColor(time, true)));
    report.Add(TEXT_OPACITY, 1.0 - material->GetTransparencyFactor(time));
    const std::pair<MapType, ReportText> maps[] = {{MAP_DIFFUSE, TEXT_MAP_DIFFUSE},
                                                   {MAP_AMBIENT, TEXT_MAP_AMBIENT},
                                                   {MAP_SPECULAR, TEXT_MAP_SPECULAR},
                                                   {MAP_TRANSPARENCY, TEXT_MAP_TRANSPARENCY},
                                                   {MAP_BUMP, TEXT_MAP_BUMP}};
    for (const auto& [type, text] : maps)
        if (const CMaterialMap* const map = material->GetMaterialMap(type))
            report.Add(text, map->GetFileName());
    CXArray<C3DSceneNode*> users;
    report.Add(TEXT_USERS, scene.GetNodesByMaterial(nullptr, materialID, users, true));
    return report.GetText();
}
