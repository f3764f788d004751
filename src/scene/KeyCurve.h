#pragma once

#include "tools/Api.h"
#include "tools/FourCC.h"

class CXArchive;

inline constexpr unsigned int CURVE_TCB = FourCC("TCB ");

/// Shape of the curve at a key. Carried along with its key, copied and stored; interpolation does not look at it.
class ZEL_API C3DKeyCurve {
public:
    virtual ~C3DKeyCurve();
    virtual void Serialize(CXArchive& ar);
    virtual bool operator==(const C3DKeyCurve& other) const;    // the class ids
    /// False, with nothing changed, for a curve of another class id.
    virtual bool operator=(const C3DKeyCurve& other);
    bool operator!=(const C3DKeyCurve& other) const { return !(*this == other); }

    /// 0 for a null `this`.
    unsigned int GetClassID() const;
    /// A copy that the caller owns; null for a null `this`.
    C3DKeyCurve* Copy() const;
    /// A new curve that the caller owns; null for an id without a class, 0 too.
    static C3DKeyCurve* CreateCurve(unsigned int curveId);

protected:
    explicit C3DKeyCurve(unsigned int classId) : m_classId(classId) {}
    C3DKeyCurve(const C3DKeyCurve&) = default;

private:
    unsigned int m_classId;
};

/// Five floats of a tension-continuity-bias curve, kept as they stand.
class ZEL_API C3DTCBCurve : public C3DKeyCurve {
public:
    C3DTCBCurve() : C3DKeyCurve(CURVE_TCB) {}
    C3DTCBCurve(const C3DTCBCurve&) = default;
    ~C3DTCBCurve() override;
    /// The five floats.
    void Serialize(CXArchive& ar) override;
    bool operator=(const C3DKeyCurve& other) override;
    bool operator=(const C3DTCBCurve& other) { return *this = static_cast<const C3DKeyCurve&>(other); }

    float values[5] = {0, 0, 0, 25, 25};
};
