#pragma once

#include "geometry/2DPointList.h"
#include "geometry/PointMethods.h"

/// Corner of a polygon that is being cut into triangles.
class ZEL_API C2DPointExt : public C2DTPoint<float> {
public:
    using C2DTPoint<float>::operator=;

    bool convex = false;     ///< the angle is at or above 0, and no other corner was found in the way of the ear
    double angle = 0;        ///< from the edge to `next` to the edge to `prev`, radians, -pi to pi
    int pointIndex = -1;     ///< in the point list of the mesh
    int cornerIndex = -1;    ///< in the face
    /// The corners that are left, in a circle.
    C2DPointExt *prev = nullptr, *next = nullptr;
};

/// C2DPointExt.
class ZEL_API C2DPointExtMethods : public C2DPointMethods {
    ZEL_DECLARE_CREATABLE(C2DPointExtMethods)
public:
    C2DPointExtMethods();
    void ConstructElement(void* element) const override;

protected:
    ~C2DPointExtMethods() override;
};

/// Working list of one polygon. The links between its elements hold until it is resized.
class ZEL_API C2DPointExtList : public C2DPointList {
    ZEL_DECLARE_CREATABLE(C2DPointExtList)
public:
    C2DPointExtList();

    C2DPointExt* ElementAt(int index) { return static_cast<C2DPointExt*>(CPointList::ElementAt(index)); }
    const C2DPointExt* ElementAt(int index) const { return static_cast<const C2DPointExt*>(CPointList::ElementAt(index)); }
    C2DPointExt* operator[](int index) { return ElementAt(index); }
    const C2DPointExt* operator[](int index) const { return ElementAt(index); }
    C2DPointExt* GetFirst() { return static_cast<C2DPointExt*>(CPointList::GetFirst()); }
    const C2DPointExt* GetFirst() const { return static_cast<const C2DPointExt*>(CPointList::GetFirst()); }
    C2DPointExt* GetNext(C2DPointExt* point) { return point + 1; }
    const C2DPointExt* GetNext(const C2DPointExt* point) const { return point + 1; }

    ~C2DPointExtList() override;
};
