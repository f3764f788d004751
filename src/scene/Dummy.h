#pragma once

#include "scene/BaseObject.h"
#include "tools/FourCC.h"

/// What a dummy stands for, a four-character code; hosts and parsers bring their own.
using DummyType = unsigned int;
constexpr DummyType DUMMY_VOID = FourCC("VOID");

/// Marker without geometry.
class ZEL_API C3DDummy : public C3DBaseObject {
    ZEL_DECLARE_CREATABLE(C3DDummy)
public:
    C3DDummy();

    unsigned int GetChecksum(unsigned int mode) const override;    // 0

    DummyType GetType() const;    ///< DUMMY_VOID unless set
    void SetType(DummyType type);

protected:
    ~C3DDummy() override;
};
