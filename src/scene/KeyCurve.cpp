#include "scene/KeyCurve.h"

#include <algorithm>

#include "tools/Archive.h"

C3DKeyCurve::~C3DKeyCurve() = default;

void C3DKeyCurve::Serialize(CXArchive&) {}    // the key stores the class id, to know what to create

bool C3DKeyCurve::operator==(const C3DKeyCurve& other) const { return m_classId == other.m_classId; }

bool C3DKeyCurve::operator=(const C3DKeyCurve& other) { return m_classId == other.m_classId; }

unsigned int C3DKeyCurve::GetClassID() const { return this ? m_classId : 0; }

C3DKeyCurve* C3DKeyCurve::Copy() const
{
    C3DKeyCurve* copy = CreateCurve(GetClassID());
    if (copy)
        *copy = *this;
    return copy;
}

C3DKeyCurve* C3DKeyCurve::CreateCurve(unsigned int curveId) { return curveId == CURVE_TCB ? new C3DTCBCurve : nullptr; }

C3DTCBCurve::~C3DTCBCurve() = default;

void C3DTCBCurve::Serialize(CXArchive& ar)
{
    for (float& value : values)
        Move(ar, value);
}

bool C3DTCBCurve::operator=(const C3DKeyCurve& other)
{
    const auto* curve = dynamic_cast<const C3DTCBCurve*>(&other);
    if (!curve || !C3DKeyCurve::operator=(other))
        return false;
    std::copy(std::begin(curve->values), std::end(curve->values), values);
    return true;
}
