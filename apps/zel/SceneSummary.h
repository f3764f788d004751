#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <3dzel.h>

/// A texture map of a material.
struct MapSummary {
    std::string material;
    const char* type;     ///< "diffuse", "ambient", "specular", "transparency", "bump"
    std::string file;     ///< as the scene names it
    std::string found;    ///< where it is; empty for a file that is missing
};

/// What a scene holds, in numbers. "Stored" counts each shared object once, the others once for each node that shows it.
struct SceneSummary {
    explicit SceneSummary(C3DScene& scene);

    std::uint64_t nodes = 0;
    std::uint64_t objects = 0;
    std::uint64_t instances = 0;    ///< nodes that show an object which an earlier node shows too
    std::map<_OBJECT_KINDOF, std::uint64_t> nodesByKind;
    std::uint64_t points = 0, faces = 0;
    std::uint64_t storedPoints = 0, storedFaces = 0, storedCorners = 0;
    std::uint64_t triangles = 0, quads = 0, largerFaces = 0;                                               ///< stored
    std::uint64_t uvwChannels = 0, colourChannels = 0, weightChannels = 0, specifiedNormalChannels = 0;    ///< stored
    std::uint64_t materials = 0;
    std::vector<MapSummary> maps;
    int firstFrame = 0, lastFrame = 0;
    double frameRate = 0;    ///< frames a second; 0 when the file does not tell
    bool hasBounds = false;
    C3DTPoint<float> min, max;    ///< of what is drawn, in scene space

private:
    void CountNode(C3DSceneNode& node, CNodeWalkTM& walk);
    void CountObject(C3DGeomObject& object);
    void ListMaps(C3DScene& scene);
    void ExtendBounds(C3DGeomObject& object, C4x4TMatrix<float>& matrix);
};

/// Name of a kind, as hosts write it.
const char* GetKindName(_OBJECT_KINDOF kind);
