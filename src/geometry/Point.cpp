#include "geometry/Point.h"

#include "tools/Archive.h"

void CPt::Serialize(CXArchive& ar) { Move(ar, flags); }

template <class T> void C2DTPoint<T>::Serialize(CXArchive& ar)
{
    CPt::Serialize(ar);
    Move(ar, x);
    Move(ar, y);
}

template <class T> void C3DTCoordinates<T>::Serialize(CXArchive& ar)
{
    CPt::Serialize(ar);
    Move(ar, x);
    Move(ar, y);
    Move(ar, z);
}

template class C2DTPoint<float>;
template class C3DTCoordinates<float>;
template class C3DTCoordinates<double>;
template class C3DTPoint<float>;
template class C3DTPoint<double>;
template class C3DTVector<float>;
template class C3DTVector<double>;
