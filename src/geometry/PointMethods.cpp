#include "geometry/PointMethods.h"

#include "tools/FourCC.h"

ZEL_IMPLEMENT_DYNAMIC(CPointMethods, CElementMethods)
ZEL_IMPLEMENT_CREATABLE(C2DPointMethods, CPointMethods)
ZEL_IMPLEMENT_CREATABLE(C3DPointMethods, CPointMethods)
ZEL_IMPLEMENT_CREATABLE(C3DVectorMethods, CPointMethods)

CPointMethods::CPointMethods(unsigned int size, unsigned int type, unsigned int payload) : m_size(size), m_type(type)
{
    m_stored = {sizeof(void*), static_cast<unsigned int>(sizeof(CPt::flags)) + payload};
}

CPointMethods::~CPointMethods() = default;

bool CPointMethods::IsObject() const { return true; }
unsigned int CPointMethods::GetBaseType() const { return FourCC("PNTS"); }

// A stream can name any methods for a chunk: plain bytes must not be taken for an object.
void CPointMethods::CopyElement(void* to, const CElementMethods*, const void* from, const CElementMethods* fromMethods) const
{
    if (IsKindOf(fromMethods))
        CopyElement(to, from);
}

void CPointMethods::CopyElement(void* to, const void* from) const { *static_cast<CPt*>(to) = *static_cast<const CPt*>(from); }

void CPointMethods::SerializeElement(CXArchive& ar, void* element) const { static_cast<CPt*>(element)->Serialize(ar); }

C2DPointMethods::C2DPointMethods() : C2DPointMethods(sizeof(C2DTPoint<float>), FourCC("2DPT")) {}
C2DPointMethods::C2DPointMethods(unsigned int size, unsigned int type) : CPointMethods(size, type, 2 * sizeof(float)) {}
C2DPointMethods::~C2DPointMethods() = default;
void C2DPointMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) C2DTPoint<float>;
}

C3DPointMethods::C3DPointMethods() : CPointMethods(sizeof(C3DTPoint<float>), FourCC("3DPT"), 3 * sizeof(float)) {}
C3DPointMethods::~C3DPointMethods() = default;
void C3DPointMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) C3DTPoint<float>;
}

C3DVectorMethods::C3DVectorMethods() : CPointMethods(sizeof(C3DTVector<float>), FourCC("3DVE"), 3 * sizeof(float)) {}
C3DVectorMethods::~C3DVectorMethods() = default;
void C3DVectorMethods::ConstructElement(void* element) const
{
    if (element)
        new (element) C3DTVector<float>;
}
