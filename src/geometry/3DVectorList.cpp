#include "geometry/3DVectorList.h"

#include <utility>

#include "geometry/CoordinateLoops.h"
#include "geometry/PointMethods.h"

ZEL_IMPLEMENT_CREATABLE(C3DVectorList, CPointList)

C3DVectorList::C3DVectorList() : C3DVectorList(nullptr) {}
C3DVectorList::C3DVectorList(const C3DVectorList* model) { Init(new C3DVectorMethods, model); }
C3DVectorList::~C3DVectorList() = default;
C3DVectorList* C3DVectorList::Create(C3DVectorList* model) { return new C3DVectorList(model); }

C3DVectorList& C3DVectorList::operator=(const CPointList& other)
{
    CPointList::operator=(other);
    return *this;
}

unsigned int C3DVectorList::GetChecksum(unsigned int mask) const
{
    return mask & 3 ? ChecksumOfCoordinates(GetFirst(), GetChecksumStart(), GetSize()) : 0;
}

bool C3DVectorList::MatrixTransform(const C4x4TMatrix<float>& matrix)
{
    C4x4TMatrix<float> rotation = matrix;
    rotation.RemoveScale();
    for (int row = 0; row < 3; row++)
        rotation.m[row][3] = 0;
    rotation.m[3][3] = 1;
    if (rotation.IsIdentity())
        return false;
    const LaneMatrix columns(rotation);
    C3DTVector<float>* vectors = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++) {
        const Lanes loaded = LoadLanes(vectors[i]);
        StoreLanes(vectors[i], columns.Vector(loaded), loaded);
    }
    return true;
}

bool C3DVectorList::SwapCoordinates(unsigned int code) { return SwapAllCoordinates(GetFirst(), GetSize(), code); }
