#pragma once

#include "scene/GeomObject.h"

/// Subdivision surface over a control mesh. The mesh is this object's own points, faces and channels.
///
/// What is measured and drawn is a polygon object made of it: triangles by the scheme of Loop, quads by that of Catmull and Clark, larger
/// faces as they are; each kind apart from the others. It is made on demand and dropped when the control mesh changes.
class ZEL_API C3DPatch : public C3DGeomObject {
    ZEL_DECLARE_CREATABLE(C3DPatch)
public:
    C3DPatch();
    C3DPatch(C3DPointList* points, C3DFaceList* faces, CDependentChannels* channels);

    /// Any change of the mesh drops the surface.
    void Invalidate(unsigned int flags, bool set) override;
    /// The surface, at the preferences' level unless a level holds. It stays the patch's own unless `detach` hands it over; asked again,
    /// the patch makes another one.
    C3DBaseObject* GetFinalObject(bool detach) override;
    /// A patch takes level and surface too.
    bool InternalCopy(C3DBaseObject*& target, int copyFlags, C3DObjectCreator* creator) const override;

    static constexpr int MOST_LEVEL = 8;    ///< each level has four times the faces

    /// Level of the surface; -1 when there is none.
    int GetLevel() const { return m_level; }
    /// Makes the surface of that level, which is held to MOST_LEVEL. Nothing for the level that holds; below 0 drops the surface.
    void SetLevel(int level);
    /// A new polygon object with the control mesh; the caller's.
    C3DObject* GetSourceObject() const;
    /// Number of faces that a level makes of the triangles and quads of an object; 0 without faces, at most INT_MAX.
    static int EstimateLevel(C3DObject* object, unsigned int level);

protected:
    ~C3DPatch() override;

    /// The surface follows.
    void SceneChanged() override;
    void ReleasePatch();
    // meshops/Subdivide.cpp
    void Subdivide(int level);
    void Subdivide3(C3DObject* object);    // m_level times
    void Subdivide4(C3DObject* object);
    C3DObject* Join(const CXArray<C3DGeomObject*, C3DGeomObject*>& parts);

private:
    int m_level = -1;
    C3DObject* m_final = nullptr;
};
