#pragma once

#include <cstddef>
#include <new>

#include "geometry/Point.h"
#include "tools/ElementArray.h"

/// Base of the methods of point lists: elements of CPt's family.
class ZEL_API CPointMethods : public CElementMethods {
    ZEL_DECLARE_DYNAMIC(CPointMethods)
public:
    bool IsObject() const override;
    unsigned int GetSizeof() const override { return m_size; }
    unsigned int GetType() const override { return m_type; }
    unsigned int GetBaseType() const override;
    /// Through the element's virtual assignment: coordinates are converted, flags taken over. From what is no point: nothing.
    void CopyElement(void* to, const CElementMethods* toMethods, const void* from, const CElementMethods* fromMethods) const override;
    void CopyElement(void* to, const void* from) const override;
    void SerializeElement(CXArchive& ar, void* element) const override;

protected:
    /// @param payload  bytes behind the flags, stored as they stand in memory
    CPointMethods(unsigned int size, unsigned int type, unsigned int payload);
    ~CPointMethods() override;

private:
    unsigned int m_size, m_type;
};

/// C2DTPoint<float>.
class ZEL_API C2DPointMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(C2DPointMethods)
public:
    C2DPointMethods();
    void ConstructElement(void* element) const override;

protected:
    C2DPointMethods(unsigned int size, unsigned int type);
    ~C2DPointMethods() override;
};

/// C3DTPoint<float>.
class ZEL_API C3DPointMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(C3DPointMethods)
public:
    C3DPointMethods();
    void ConstructElement(void* element) const override;

protected:
    ~C3DPointMethods() override;
};

/// C3DTVector<float>.
class ZEL_API C3DVectorMethods : public CPointMethods {
    ZEL_DECLARE_CREATABLE(C3DVectorMethods)
public:
    C3DVectorMethods();
    void ConstructElement(void* element) const override;

protected:
    ~C3DVectorMethods() override;
};
