#pragma once

#include "scene/GeomObject.h"
#include "tools/BlockVector.h"

/// Cuts objects out of one object. The tables that this takes are made once, so that many small parts cost what they hold.
class ZEL_API CSubObjectCutter {
public:
    /// Nobody changes the object while this lives.
    explicit CSubObjectCutter(C3DGeomObject& object);

    /// A new object of the listed live faces, or null for none: their points in order of first use, and their channels, but for those
    /// that the geometry gives anyway.
    C3DObject* Cut(const int* faces, unsigned int count);

private:
    /// New numbers for the points of one list.
    class Renumbering {
    public:
        explicit Renumbering(const CPointList* points);
        void Reset();
        /// The new number of a point, the next one when it is met for the first time; -1 for one that is not there.
        int operator()(int point);
        const CBlockVector<int>& GetUsed() const { return m_used; }

    private:
        CBlockVector<int> m_numbers;    // by old number; -1
        CBlockVector<int> m_used;       // old numbers, by new number
    };

    void ListLiveFaces(const int* faces, unsigned int count);
    CChannel* CutChannel(const CChannel& channel, Renumbering& numbers);

    C3DGeomObject& m_object;
    CBlockVector<int> m_live;
    Renumbering m_points;
    CBlockVector<Renumbering> m_channelPoints;    // by channel
};
