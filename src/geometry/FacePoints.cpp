#include "geometry/3DPointList.h"
#include "geometry/4DPoint.h"
#include "geometry/Face.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"

// What a face asks of the points at its corners. A corner beyond the points is passed over.

void CFace::GetCenter(const CGeomInfo* info, C4DPoint& center) const
{
    const CPointList* points = info ? info->GetSrcPointList(false) : nullptr;
    C4DPoint sum, value;
    int found = 0;
    for (int i = 0, size = points ? GetSize() : 0; i < size; i++) {
        const CPt* point = points->ElementAt(m_items[i]);
        if (!point)
            continue;
        point->To4DPoint(value);
        sum.dimension = value.dimension;
        sum += value;
        found++;
    }
    if (found)
        center = sum /= found;
}

namespace {

bool MeetsTest(const CPt* point, unsigned int mask, bool wanted) { return ((point ? point->GetFlags() & mask : 0) != 0) == wanted; }

}

FLAGRESULT CFace::IsPointFlagSet(const CGeomInfo* info, unsigned int mask, bool wanted) const
{
    const CPointList* points = info ? info->GetSrcPointList(false) : nullptr;
    if (IsDead() || !points)
        return FLAG_NONE;
    const int size = GetSize();
    int met = 0;
    for (int i = 0; i < size; i++)
        met += MeetsTest(points->ElementAt(m_items[i]), mask, wanted);
    return met == size ? FLAG_ALL : met ? FLAG_SOME : FLAG_NONE;
}

bool CFace::IsOnePointFlagSet(const CGeomInfo* info, unsigned int mask, bool wanted) const
{
    const CPointList* points = info ? info->GetSrcPointList(false) : nullptr;
    if (IsDead() || !points)
        return false;
    for (int i = 0, size = GetSize(); i < size; i++)
        if (MeetsTest(points->ElementAt(m_items[i]), mask, wanted))
            return true;
    return false;
}

void CFace::SetPointFlag(const CGeomInfo* info, unsigned int mask, bool set) const
{
    C3DPointList* points = info ? info->GetSrc3DPointList(false) : nullptr;
    for (int i = 0, size = points ? GetSize() : 0; i < size; i++)
        if (CPt* point = points->ElementAt(m_items[i]))
            point->SetFlags(mask, set);
}
