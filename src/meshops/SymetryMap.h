#pragma once

#include "tools/Api.h"
#include "tools/Hash.h"
#include "tools/Object.h"

class C3DEdge;
class CFaceList;

/// Points and their mirror images, both ways: when a maps to b, b maps to a. A point on the plane may map to itself. From
/// C3DPointList::InitSymetryMap; released with DeleteMe.
class ZEL_API C3DPointSymetryMap : public CIntMap, public CInstanciatedObject {
public:
    enum SymetricEdgeInfo {
        SYMETRIC_EDGE_NONE = 0,
        SYMETRIC_EDGE_FOUND = 1,
        SYMETRIC_EDGE_SELF = 2,    ///< the edge is its own image
    };

    using CIntMap::CIntMap;
    C3DPointSymetryMap() = default;
    C3DPointSymetryMap(const C3DPointSymetryMap& other) : CIntMap(other), CInstanciatedObject() {}
    C3DPointSymetryMap(C3DPointSymetryMap&& other) noexcept : CIntMap(static_cast<CIntMap&&>(other)) {}
    C3DPointSymetryMap& operator=(const C3DPointSymetryMap& other)
    {
        CIntMap::operator=(other);
        return *this;
    }
    C3DPointSymetryMap& operator=(C3DPointSymetryMap&& other) noexcept
    {
        CIntMap::operator=(static_cast<CIntMap&&>(other));
        return *this;
    }
    ~C3DPointSymetryMap() override;

    /// The mirror image of an edge of a mesh.
    ///
    /// @param faces      with its point-to-face graph; without one, no edge is found
    /// @param mirrored   out: the partners of the ends, lower index first
    /// @param keepOrder  a found edge gets the partner of the first end first (C3DEdge::Directed)
    SymetricEdgeInfo GetSymetricEdge(const CFaceList* faces, const C3DEdge& edge, C3DEdge& mirrored, bool keepOrder) const;
};
