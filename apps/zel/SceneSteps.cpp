#include "SceneSteps.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "SceneSummary.h"

namespace {

constexpr unsigned int ALL_CHANNELS = 0xFFFF;
constexpr unsigned int MOST_COUNT = 0x7FFFFFFF;
constexpr double RADIANS = 3.14159265358979323846 / 180;

double Number(const std::string& text) { return text == "true" ? 0 : std::strtod(text.c_str(), nullptr); }
unsigned int Count(const std::string& text) { return static_cast<unsigned int>(std::strtoul(text.c_str(), nullptr, 10)); }

// Calls change(object, node) for every geometric object once, with the first node that shows it; whether any changed.
template <class CHANGE> bool ForObjects(C3DScene& scene, CHANGE change)
{
    bool changed = false;
    CHashTable<unsigned int> seen;
    C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC);
    C3DGeomObject* object;
    while (const C3DSceneNode* const node = scene.GetNextNode(object, pos))
        if (object && seen.Insert(object->GetObjectID()))
            changed |= change(*object, *node);
    return changed;
}

std::vector<C3DSceneNode*> ListNodes(C3DScene& scene)
{
    std::vector<C3DSceneNode*> nodes;
    C3DNodePos pos = scene.GetFirstNode(OBJECT_GEOMETRIC);
    while (C3DSceneNode* node = scene.GetNextNode(pos))
        nodes.push_back(node);
    return nodes;
}

bool Clean(C3DScene& scene, const std::string&)
{
    const auto count = [&] { return scene.GetPointNbr() + scene.GetFaceNbr(); };
    const int before = count();
    scene.Clean();
    return count() != before;
}

// A hundred-thousandth of the model's size: above what rounding does to coordinates, below what anybody models.
std::string ChooseTolerance(C3DScene& scene)
{
    constexpr double PART = 1e-5, LEAST = 1e-9;
    const SceneSummary summary(scene);
    const C3DTVector<float> diagonal = summary.hasBounds ? summary.max - summary.min : C3DTVector<float>(0, 0, 0);
    char text[32];
    std::snprintf(text, sizeof(text), "%.3g", std::max(PART * double{diagonal.Length()}, LEAST));
    return text;
}

// How much longer a length is in the scene than in the node.
double GetScale(const C3DSceneNode& node)
{
    C4x4TMatrix<float> matrix;
    node.GetNodeTM(0, matrix, true);
    const auto& m = matrix.m;
    const double volume = m[0][0] * (double{m[1][1]} * m[2][2] - double{m[1][2]} * m[2][1]) -
                          m[0][1] * (double{m[1][0]} * m[2][2] - double{m[1][2]} * m[2][0]) +
                          m[0][2] * (double{m[1][0]} * m[2][1] - double{m[1][1]} * m[2][0]);
    const double scale = std::cbrt(std::abs(volume));
    return scale > 0 && std::isfinite(scale) ? scale : 1;
}

// The tolerance is a length of the scene; an object is welded in the space of the first node that shows it.
bool Weld(C3DScene& scene, const std::string& tolerance)
{
    return ForObjects(scene, [&](C3DGeomObject& object, const C3DSceneNode& node) {
        return object.Weld3DPoints(Number(tolerance) / GetScale(node), true, ALL_CHANNELS, 0);
    });
}

bool Triangulate(C3DScene& scene, const std::string&)
{
    return ForObjects(scene, [](C3DGeomObject& object, const C3DSceneNode&) { return object.Triangulate(ALL_CHANNELS, {}, true); });
}

bool Quadrangulate(C3DScene& scene, const std::string&)
{
    return ForObjects(scene, [](C3DGeomObject& object, const C3DSceneNode&) { return object.Quadrangulate(ALL_CHANNELS); });
}

bool MergeCoplanar(C3DScene& scene, const std::string& angle)
{
    return ForObjects(scene, [&](C3DGeomObject& object, const C3DSceneNode&) {
        return object.MergeCoplanarFaces(Number(angle) * RADIANS, ALL_CHANNELS);
    });
}

bool MergeCoplanarClosed(C3DScene& scene, const std::string& angle)
{
    return ForObjects(scene, [&](C3DGeomObject& object, const C3DSceneNode&) {
        return MergeCoplanarFacesClosed(object, Number(angle) * RADIANS, ALL_CHANNELS);
    });
}

bool UnifyNormals(C3DScene& scene, const std::string&)
{
    return ForObjects(scene, [](C3DGeomObject& object, const C3DSceneNode&) { return object.UnifyNormals(); });
}

bool FlipNormals(C3DScene& scene, const std::string&)
{
    return ForObjects(scene, [](C3DGeomObject& object, const C3DSceneNode&) { return object.FlipNormals(); });
}

using PartsOfObjects = CHashMap<unsigned int, std::vector<C3DGeomObject*>>;

// The parts of the node's object, made at the first node that shows it. A later node shares them.
std::vector<C3DGeomObject*> PartsFor(C3DSceneNode& node, PartsOfObjects& made)
{
    if (const auto* known = made.Find(node.GetObjectID())) {
        for (C3DGeomObject* part : *known)
            node.GetScene()->CreateObjectInstance(part);
        return *known;
    }
    CXArray<C3DGeomObject*, C3DGeomObject*> parts;
    node.GetGeomObject()->ExplodeIntoIsolatedParts(parts);
    std::vector<C3DGeomObject*> list(parts.begin(), parts.end());
    made.SetAt(node.GetObjectID(), list);
    return list;
}

// Each part becomes a node beside the one that it comes from, with its transform.
bool Explode(C3DScene& scene, const std::string&)
{
    scene.MakeGroupForChilds(nullptr);
    PartsOfObjects made;
    bool changed = false;
    for (C3DSceneNode* node : ListNodes(scene)) {
        const std::vector<C3DGeomObject*> parts = PartsFor(*node, made);
        for (std::size_t i = 0; i < parts.size(); i++) {
            C3DSceneNode* child = C3DSceneNode::Create();
            child->Inherit(node, 0);
            CXTString<wchar_t> name;
            name.FormatString(L"%ls-%zu", node->GetName().c_str(), i);
            child->SetName(name);
            child->SetObject(parts[i], true);
            scene.AddNode(node->GetParent(), child);
        }
        if (!parts.empty())
            scene.RemoveNode(node, true);
        changed |= !parts.empty();
    }
    return changed;
}

bool Concatenate(C3DScene& scene, const std::string&)
{
    return scene.Concatenate(nullptr, scene.GetFilename().GetTitle(), nullptr, true, nullptr, false) != nullptr;
}

bool ConcatenateByMaterials(C3DScene& scene, const std::string&) { return scene.ConcatenateByMaterials(nullptr, true, nullptr) > 0; }

bool GenerateUV(C3DScene& scene, const std::string&) { return scene.GenerateUVW(); }

// Where texture coordinates or colours differ along an edge.
bool DisconnectFaces(C3DScene& scene, const std::string&)
{
    constexpr unsigned int POINT_FLAG = 0x90, FACE_FLAG = 0x5000;
    return scene.DisconnectBorderFaces(ALL_CHANNELS, POINT_FLAG, FACE_FLAG);
}

bool Slice(C3DScene& scene, const std::string& most)
{
    CCustomData parameters;
    parameters.SetUnsigned(FourCC("MODE"), 0);
    parameters.SetUnsigned(FourCC("VERT"), Count(most));
    return SliceScene(parameters, &scene);
}

/// Makes patches out of polygon objects.
class PatchCreator : public C3DObjectCreator {
public:
    C3DBaseObject* ConvertToType(const C3DSceneNode*, const C3DBaseObject* object) override
    {
        const C3DGeomObject* mesh = *object;
        if (!mesh || object->GetKindOf() != OBJECT_POLYGONAL)
            return const_cast<C3DBaseObject*>(object);
        C3DBaseObject* patch = C3DBaseObject::Create(OBJECT_PATCH);
        return mesh->InternalCopy(patch, 0, this) ? patch : nullptr;
    }
};

/// Makes polygon objects of what patches show.
class SurfaceCreator : public C3DObjectCreator {
public:
    C3DBaseObject* ConvertToType(const C3DSceneNode*, const C3DBaseObject* object) override
    {
        auto* shown = const_cast<C3DBaseObject*>(object);
        return object->GetKindOf() == OBJECT_PATCH ? shown->GetFinalObject(true) : shown;
    }
};

bool Subdivide(C3DScene& scene, const std::string& level)
{
    PatchCreator toPatches;
    SurfaceCreator toSurfaces;
    scene.ConvertToType(nullptr, &toPatches);
    scene.SetPatchLevel(Count(level));
    return scene.ConvertToType(nullptr, &toSurfaces) > 0;
}

bool GlobalCoordinates(C3DScene& scene, const std::string&)
{
    scene.ConvertToGlobalCoordinates(nullptr);
    return true;
}

constexpr SceneStep STEPS[] = {
    {"clean", SceneStep::NONE, false, "Remove degenerate faces and points that no face uses", Clean},
    {"weld", SceneStep::LENGTH, false, "[LENGTH]  Join points about that far apart; by default a hundred-thousandth of the model's size",
     Weld, ChooseTolerance},
    {"triangulate", SceneStep::NONE, false, "Split all faces into triangles", Triangulate},
    {"quadrangulate", SceneStep::NONE, false, "Split faces of more than four corners into triangles", Quadrangulate},
    {"merge-coplanar", SceneStep::ANGLE, false, "[DEGREES]  Make one polygon of regions that are flat within that angle", MergeCoplanar},
    {"merge-coplanar-closed", SceneStep::ANGLE, false,
     "[DEGREES]  The same, but a corner stays on a straight border where other faces need it: closed meshes stay closed",
     MergeCoplanarClosed},
    {"unify-normals", SceneStep::NONE, false, "Turn faces the same way round, and outward", UnifyNormals},
    {"flip-normals", SceneStep::NONE, false, "Turn all faces round", FlipNormals},
    {"explode", SceneStep::NONE, false, "Make an object of each connected part", Explode},
    {"concatenate", SceneStep::NONE, false, "Join all objects into one", Concatenate},
    {"concatenate-by-materials", SceneStep::NONE, false, "Make one object for each material", ConcatenateByMaterials},
    {"generate-uv", SceneStep::NONE, false, "Make texture coordinates of the materials' projections", GenerateUV},
    {"disconnect-faces", SceneStep::NONE, false,
     "Give faces points of their own where channels differ: texture coordinates, colours, normals", DisconnectFaces},
    {"slice", SceneStep::COUNT, true, "Cut objects of more points than that into parts", Slice, nullptr, "POINTS", MOST_COUNT},
    {"subdivide", SceneStep::COUNT, true, "Subdivide by Loop and Catmull-Clark that often, 1 to 8", Subdivide, nullptr, "TIMES", 8},
    {"global-coordinates", SceneStep::NONE, false, "Bake the transforms of the nodes into the points", GlobalCoordinates},
};

}

std::span<const SceneStep> GetSceneSteps() { return STEPS; }

std::string CheckStepValue(const SceneStep& step, const std::string& text)
{
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    const bool number = !text.empty() && *end == 0 && std::isfinite(value) && value >= 0;
    switch (step.value) {
    case SceneStep::NONE: return std::string("--") + step.name + " takes no value";
    case SceneStep::LENGTH: return number && value > 0 ? "" : "not a length above 0: " + text;
    case SceneStep::ANGLE: return number && value <= 180 ? "" : "not an angle: " + text;
    case SceneStep::COUNT:
        return number && value >= 1 && value <= step.most && value == std::floor(value)
                   ? ""
                   : "not a number from 1 to " + std::to_string(step.most) + ": " + text;
    }
    return {};
}
