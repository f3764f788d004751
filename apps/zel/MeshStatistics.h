#pragma once

#include <cstdint>

#include <3dzel.h>

/// How sound the meshes of a scene are. Counts take each shared object once; area and volume take what every node shows, in the scene's
/// space.
struct MeshStatistics {
    explicit MeshStatistics(C3DScene& scene);

    std::uint64_t objects = 0;
    std::uint64_t points = 0, faces = 0, corners = 0;    ///< faces that are live
    std::uint64_t components = 0;                        ///< parts that hang together through points
    std::uint64_t borderEdges = 0;                       ///< of one face
    std::uint64_t nonManifoldEdges = 0;                  ///< of more than two faces, or of two that run along it in one sense
    std::uint64_t degenerateFaces = 0;                   ///< a point twice, fewer than 3 corners, or no area
    double area = 0;
    double volume = 0;      ///< signed: negative for a shell that is inside out
    bool closed = false;    ///< every edge has two faces of opposite sense; otherwise there is no volume

private:
    struct Measures {
        double area, volume;
    };
    void CountObject(C3DGeomObject& object);
    static Measures Measure(C3DGeomObject& object, const C4x4TMatrix<float>& matrix);
};
