#pragma once

#include "tools/ElementArray.h"
#include "tools/FourCC.h"

// Side data of lists: plain values, copied and stored byte by byte.

/// Main data of a face.
struct CFacePropertyData {
    unsigned int flags = 0;    ///< _FACE_PROPERTIES
};

/// Main data of a face of geometry.
struct C3DFacePropertyData {
    unsigned int flags = 0;       ///< _FACE_PROPERTIES
    unsigned int material = 0;    ///< material id
};

/// Base of the plain methods: a new element is `defaultByte` repeated.
class ZEL_API CPlainMethods : public CElementMethods {
    ZEL_DECLARE_DYNAMIC(CPlainMethods)
public:
    unsigned int GetSizeof() const override { return m_size; }
    unsigned int GetType() const override { return m_type; }
    unsigned int GetBaseType() const override { return m_baseType; }
    void ConstructElement(void* element) const override;

protected:
    CPlainMethods(unsigned int size, unsigned int type, unsigned int baseType, unsigned char defaultByte);
    ~CPlainMethods() override;

private:
    unsigned int m_size, m_type, m_baseType;
    unsigned char m_defaultByte;
};

/// Whether the array's elements are plain values of that base type, of at least `size` bytes. A stream names the methods of its chunks:
/// who brings a chunk in asks before anybody looks at its elements.
ZEL_API bool HoldsPlain(const CElementArray& array, unsigned int baseType, unsigned int size);

constexpr unsigned int BASE_ORIGINAL_INDEX = FourCC("ORIN");
constexpr unsigned int BASE_BACK_MATERIAL = FourCC("BKMT");
constexpr unsigned int BASE_FACE_PROPERTIES = FourCC("FACE");

/// Index that an element had at an earlier moment; 0xFFFFFFFF for one that came later.
class ZEL_API COriginalIndexMethods : public CPlainMethods {
    ZEL_DECLARE_CREATABLE(COriginalIndexMethods)
public:
    COriginalIndexMethods();

protected:
    ~COriginalIndexMethods() override;
};

/// Back-face material id; 0xFFFFFFFF for none.
class ZEL_API CBackFaceMaterialMethods : public CPlainMethods {
    ZEL_DECLARE_CREATABLE(CBackFaceMaterialMethods)
public:
    CBackFaceMaterialMethods();

protected:
    ~CBackFaceMaterialMethods() override;
};

/// 32 bits that an exchange partner keeps with a face.
class ZEL_API CMaxFaceMethods : public CPlainMethods {
    ZEL_DECLARE_CREATABLE(CMaxFaceMethods)
public:
    CMaxFaceMethods();

protected:
    CMaxFaceMethods(unsigned int size, unsigned int type);
    ~CMaxFaceMethods() override;
};

/// The same with 64 bits.
class ZEL_API CMaxFaceMethods2 : public CMaxFaceMethods {
    ZEL_DECLARE_CREATABLE(CMaxFaceMethods2)
public:
    CMaxFaceMethods2();

protected:
    ~CMaxFaceMethods2() override;
};

/// CFacePropertyData.
class ZEL_API CFacePropertyMethods : public CPlainMethods {
    ZEL_DECLARE_CREATABLE(CFacePropertyMethods)
public:
    CFacePropertyMethods();

protected:
    CFacePropertyMethods(unsigned int size, unsigned int type);
    ~CFacePropertyMethods() override;
};

/// C3DFacePropertyData.
class ZEL_API C3DFacePropertyMethods : public CFacePropertyMethods {
    ZEL_DECLARE_CREATABLE(C3DFacePropertyMethods)
public:
    C3DFacePropertyMethods();

protected:
    ~C3DFacePropertyMethods() override;
};
