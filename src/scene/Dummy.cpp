#include "scene/Dummy.h"

ZEL_IMPLEMENT_CREATABLE(C3DDummy, C3DBaseObject)

C3DDummy::C3DDummy() : C3DBaseObject(OBJECT_DUMMY) {}

C3DDummy::~C3DDummy() = default;

unsigned int C3DDummy::GetChecksum(unsigned int) const { return 0; }

static constexpr unsigned int DUMMY_TYPE = FourCC("DYTY");

DummyType C3DDummy::GetType() const
{
    DummyType type;
    GetCustomData().GetUnsigned(DUMMY_TYPE, type, DUMMY_VOID);
    return type;
}

void C3DDummy::SetType(DummyType type) { GetCustomData().SetUnsigned(DUMMY_TYPE, type); }
