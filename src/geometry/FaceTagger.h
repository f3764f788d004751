#pragma once

#include "tools/Api.h"

class C3DEdge;
class CFaceList;
class CGeomInfo;
class CPointList;

/// Callback of CFaceList::TagFaces: decides which connections hold a group of faces together, and receives the groups.
class ZEL_API CFaceTagger {
public:
    virtual ~CFaceTagger();
    /// False ends the fill before it starts.
    virtual bool InitProcess(CGeomInfo* info);
    virtual void EndProcess(unsigned int groupCount);
    virtual void BeginNewGroup(unsigned int group, unsigned int face);
    /// Whether the `count` faces around a point of `face` join its group. An entry set to -1 is left out alone.
    virtual bool BelongToGroup(unsigned int face, unsigned int point, int* faces, unsigned int count);
    /// The same across an edge.
    virtual bool BelongToGroup(unsigned int face, C3DEdge& edge, int* faces, unsigned int count);
    /// A finished group, in breadth-first order.
    virtual void ProcessGroup(unsigned int* faces, unsigned int count) = 0;

protected:
    friend class CFaceList;

    /// Set by a tagger that takes every neighbour and overrides no BelongToGroup: it is asked for none, and a walk by points goes round each
    /// point once. Without it a point of n faces costs n times its faces, since each face's turn tells of those that have no group yet.
    bool m_takesAll = false;
    CGeomInfo* m_info = nullptr;
    CPointList* m_points = nullptr;
    CFaceList* m_faces = nullptr;
};
