#include "geometry/ElementMethods.h"

#include <cstring>

ZEL_IMPLEMENT_DYNAMIC(CPlainMethods, CElementMethods)
ZEL_IMPLEMENT_CREATABLE(COriginalIndexMethods, CPlainMethods)
ZEL_IMPLEMENT_CREATABLE(CBackFaceMaterialMethods, CPlainMethods)
ZEL_IMPLEMENT_CREATABLE(CMaxFaceMethods, CPlainMethods)
ZEL_IMPLEMENT_CREATABLE(CMaxFaceMethods2, CMaxFaceMethods)
ZEL_IMPLEMENT_CREATABLE(CFacePropertyMethods, CPlainMethods)
ZEL_IMPLEMENT_CREATABLE(C3DFacePropertyMethods, CFacePropertyMethods)

CPlainMethods::CPlainMethods(unsigned int size, unsigned int type, unsigned int baseType, unsigned char defaultByte)
    : m_size(size), m_type(type), m_baseType(baseType), m_defaultByte(defaultByte)
{
    m_stored = {0, size};
}

CPlainMethods::~CPlainMethods() = default;

void CPlainMethods::ConstructElement(void* element) const
{
    if (element)
        std::memset(element, m_defaultByte, m_size);
}

bool HoldsPlain(const CElementArray& array, unsigned int baseType, unsigned int size)
{
    const CElementMethods* const methods = array.GetMethods();
    return methods && !methods->IsObject() && methods->GetBaseType() == baseType && array.GetSizeof() >= size;
}

COriginalIndexMethods::COriginalIndexMethods() : CPlainMethods(4, FourCC("ORIN"), BASE_ORIGINAL_INDEX, 0xFF) {}
COriginalIndexMethods::~COriginalIndexMethods() = default;

CBackFaceMaterialMethods::CBackFaceMaterialMethods() : CPlainMethods(4, FourCC("BKMT"), BASE_BACK_MATERIAL, 0xFF) {}
CBackFaceMaterialMethods::~CBackFaceMaterialMethods() = default;

CMaxFaceMethods::CMaxFaceMethods() : CMaxFaceMethods(4, FourCC("MXDT")) {}
CMaxFaceMethods::CMaxFaceMethods(unsigned int size, unsigned int type) : CPlainMethods(size, type, FourCC("MXDT"), 0) {}
CMaxFaceMethods::~CMaxFaceMethods() = default;

CMaxFaceMethods2::CMaxFaceMethods2() : CMaxFaceMethods(8, FourCC("MXD2")) {}
CMaxFaceMethods2::~CMaxFaceMethods2() = default;

CFacePropertyMethods::CFacePropertyMethods() : CFacePropertyMethods(sizeof(CFacePropertyData), FourCC("FACE")) {}
CFacePropertyMethods::CFacePropertyMethods(unsigned int size, unsigned int type) : CPlainMethods(size, type, BASE_FACE_PROPERTIES, 0) {}
CFacePropertyMethods::~CFacePropertyMethods() = default;

C3DFacePropertyMethods::C3DFacePropertyMethods() : CFacePropertyMethods(sizeof(C3DFacePropertyData), FourCC("3DFA")) {}
C3DFacePropertyMethods::~C3DFacePropertyMethods() = default;
