#include "scene/Keyframe.h"

#include <cmath>
#include <limits>
#include <typeinfo>
#include <utility>

#include "geometry/Swap.h"
#include "tools/Archive.h"

namespace {
/// `key` as a K, or null: a class id does not vouch for the class. A key of the class of `self` is told without a cast
/// through the class tree.
template <class K> const K* As(const C3DKeyframe& key, const K& self)
{
    return typeid(key) == typeid(self) ? static_cast<const K*>(&key) : dynamic_cast<const K*>(&key);
}

float GetFraction(int time, const CTimeRange& range)
{
    const float way = static_cast<float>(static_cast<std::int64_t>(time) - range.start);
    return range.start == range.end ? way : way / static_cast<float>(static_cast<std::int64_t>(range.end) - range.start);
}

C3DTVector<float> Interpolate(const C3DTVector<float>& a, const C3DTVector<float>& b, float f)
{
    return {a.x * (1 - f) + b.x * f, a.y * (1 - f) + b.y * f, a.z * (1 - f) + b.z * f};
}

/// What a value beyond the type's range becomes is its nearest number.
template <class T> T Truncate(float value)
{
    constexpr float limit = static_cast<float>(std::numeric_limits<T>::max());    // rounds up, to a power of 2
    if (value >= limit)
        return std::numeric_limits<T>::max();
    constexpr float least = static_cast<float>(std::numeric_limits<T>::min());
    return value > least ? static_cast<T>(value) : std::numeric_limits<T>::min();
}

int Interpolate(int a, int b, float f) { return Truncate<int>(static_cast<float>(a) * (1 - f) + static_cast<float>(b) * f); }

unsigned int Interpolate(unsigned int a, unsigned int b, float f)
{
    return Truncate<unsigned int>(static_cast<float>(a) * (1 - f) + static_cast<float>(b) * f);
}

float Interpolate(float a, float b, float f) { return (1 - f) * a + f * b; }

double Interpolate(double a, double b, float f)
{
    const double wide = f;
    return (1 - wide) * a + wide * b;
}

CRGBColor Interpolate(const CRGBColor& a, const CRGBColor& b, float f) { return a * (1 - f) + b * f; }

/// Rotation of a transform as axis and angle, made anew: no rotation is a turn of 0 about x.
CQuaternion GetCleanRotation(const C4x4TMatrix<float>& matrix)
{
    CQuaternion q;
    C3DTVector<float> axis;
    double angle;
    q = matrix;
    q.GetAxisAngle(axis, angle);
    return CQuaternion(axis, angle);
}
}

// ---- C3DKeyframe

C3DKeyframe::C3DKeyframe(const C3DKeyframe& other)
    : m_classId(other.m_classId), m_customData(other.m_customData), m_curve(other.GetKeyCurve()->Copy())
{
}

C3DKeyframe::~C3DKeyframe() = default;

void C3DKeyframe::Serialize(CXArchive& ar)
{
    std::uint64_t classId = m_classId;
    Move(ar, classId);
    if (classId != m_classId)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    m_customData.Serialize(ar);

    unsigned int curveId = m_curve.get()->GetClassID();
    Move(ar, curveId);
    if (ar.IsLoading() && !CreateCurve(curveId) && curveId != 0)
        XThrowArchive(CXArchiveException::ARCHIVE_UNKNOWN_TYPE);
    if (m_curve)
        m_curve->Serialize(ar);
}

bool C3DKeyframe::Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range)
{
    return range.IsInInterval(time) && prev.m_classId == m_classId && next.m_classId == m_classId;
}

bool C3DKeyframe::operator==(const C3DKeyframe& other) const { return m_classId == other.m_classId; }

bool C3DKeyframe::operator=(const C3DKeyframe& other)
{
    if (m_classId != other.m_classId)
        return false;
    if (this != &other)
        m_curve.reset(other.GetKeyCurve()->Copy());
    return true;
}

C3DKeyframe* C3DKeyframe::CreateKey(std::uint64_t classId, unsigned int curveId)
{
    C3DKeyframe* key = nullptr;
    switch (static_cast<unsigned int>(classId >> 32)) {
    case KEY_TYPE_MATRIX: key = new C3DMatrixKey(classId); break;
    case KEY_TYPE_ROTATE: key = new C3DRotateKey(classId); break;
    case KEY_TYPE_SCALE: key = new C3DScaleKey(classId); break;
    case KEY_TYPE_TRANSLATE: key = new C3DTranslateKey(classId); break;
    case KEY_TYPE_VECTOR: key = new C3DVectorKey(classId); break;
    case KEY_TYPE_INT: key = new C3DTypeKey<int>(classId); break;
    case KEY_TYPE_UNSIGNED: key = new C3DTypeKey<unsigned int>(classId); break;
    case KEY_TYPE_FLOAT: key = new C3DTypeKey<float>(classId); break;
    case KEY_TYPE_DOUBLE: key = new C3DTypeKey<double>(classId); break;
    case KEY_TYPE_COLOR: key = new C3DTypeKey<CRGBColor>(classId); break;
    default: return nullptr;
    }
    if (curveId)
        key->CreateCurve(curveId);
    return key;
}

C3DKeyframe* C3DKeyframe::Copy() const
{
    C3DKeyframe* copy = CreateKey(m_classId, 0);
    if (copy)
        *copy = *this;
    return copy;
}

void C3DKeyframe::SetKeyCurve(const C3DKeyCurve& curve) { m_curve.reset(curve.Copy()); }

void C3DKeyframe::SetKeyCurve(C3DKeyCurve* curve)
{
    if (curve != m_curve.get())
        m_curve.reset(curve);
}

C3DKeyCurve* C3DKeyframe::CreateCurve(unsigned int curveId)
{
    m_curve.reset(C3DKeyCurve::CreateCurve(curveId));
    return m_curve.get();
}

// ---- C3DMatrixKey

C3DMatrixKey::~C3DMatrixKey() = default;

void C3DMatrixKey::Serialize(CXArchive& ar)
{
    C3DKeyframe::Serialize(ar);
    m_matrix.Serialize(ar);
}

bool C3DMatrixKey::Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range)
{
    const auto *a = As<C3DMatrixKey>(prev, *this), *b = As<C3DMatrixKey>(next, *this);
    if (!a || !b || !C3DKeyframe::Evaluate(prev, next, time, range))
        return false;

    const float f = GetFraction(time, range);
    C3DTVector<float> scaleA, scaleB;
    a->m_matrix.GetScale(scaleA);
    b->m_matrix.GetScale(scaleB);
    const C3DTVector<float> scale = Interpolate(scaleA, scaleB, f);
    const C3DTVector<float> translation = Interpolate(a->m_matrix.GetTranslation(), b->m_matrix.GetTranslation(), f);
    const CQuaternion rotation = CQuaternion::Slerp(GetCleanRotation(a->m_matrix), GetCleanRotation(b->m_matrix), f);

    m_matrix.FromQuaternion(rotation);
    m_matrix.Scale(scale.x, scale.y, scale.z);
    m_matrix.SetTranslation(translation.x, translation.y, translation.z);
    return true;
}

bool C3DMatrixKey::operator==(const C3DKeyframe& other) const
{
    const auto* key = As<C3DMatrixKey>(other, *this);
    return key && C3DKeyframe::operator==(other) && m_matrix == key->m_matrix;
}

bool C3DMatrixKey::operator=(const C3DKeyframe& other)
{
    const auto* key = As<C3DMatrixKey>(other, *this);
    if (!key || !C3DKeyframe::operator=(other))
        return false;
    m_matrix = key->m_matrix;
    return true;
}

void C3DMatrixKey::SwapCoordinates(unsigned int code, bool adjust)
{
    m_matrix = adjust ? AdjustMatrix(code, m_matrix) : SwapMatrix(code, m_matrix);
}

// ---- C3DVectorKey, C3DScaleKey, C3DTranslateKey

C3DVectorKey::~C3DVectorKey() = default;

void C3DVectorKey::Serialize(CXArchive& ar)
{
    C3DKeyframe::Serialize(ar);
    m_vector.Serialize(ar);
    if (ar.IsLoading())
        UpdateMatrix();
}

bool C3DVectorKey::Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range)
{
    const auto *a = As<C3DVectorKey>(prev, *this), *b = As<C3DVectorKey>(next, *this);
    if (!a || !b || !C3DKeyframe::Evaluate(prev, next, time, range))
        return false;
    SetVector(Interpolate(a->m_vector, b->m_vector, GetFraction(time, range)));
    return true;
}

bool C3DVectorKey::operator=(const C3DKeyframe& other)
{
    const auto* key = As<C3DVectorKey>(other, *this);
    if (!key || !C3DMatrixKey::operator=(other))
        return false;
    m_vector = key->m_vector;
    return true;
}

void C3DVectorKey::UpdateMatrix()
{
    m_matrix.SetTranslation(m_vector.x, m_vector.y, m_vector.z);
    m_matrix.m[3][3] = 1;
}

void C3DVectorKey::SetVector(const C3DTVector<float>& vector)
{
    m_vector = vector;
    UpdateMatrix();
}

void C3DVectorKey::SwapCoordinates(unsigned int code)
{
    int a, b, mirror;
    if (!GetXYZSwap(code, a, b, mirror))
        return;
    if (a != -1)
        std::swap(m_vector[a], m_vector[b]);
    if (mirror != -1)
        m_vector[mirror] = -m_vector[mirror];
    UpdateMatrix();
}

C3DScaleKey::C3DScaleKey(std::uint64_t classId) : C3DVectorKey(classId)
{
    m_vector = C3DTVector<float>(1, 1, 1);    // as the matrix says already
}

C3DScaleKey::~C3DScaleKey() = default;

void C3DScaleKey::UpdateMatrix()
{
    for (int i = 0; i < 3; i++)
        m_matrix.m[i][i] = m_vector[i];
}

C3DTranslateKey::~C3DTranslateKey() = default;

void C3DTranslateKey::UpdateMatrix() { C3DVectorKey::UpdateMatrix(); }

// ---- C3DRotateKey

C3DRotateKey::C3DRotateKey(float angle, const C3DTVector<float>& axis) : C3DMatrixKey(KEY_ROTATE) { SetRotation(angle, axis); }

C3DRotateKey::~C3DRotateKey() = default;

void C3DRotateKey::Serialize(CXArchive& ar)
{
    C3DKeyframe::Serialize(ar);
    Move(ar, m_angle);
    m_axis.Serialize(ar);
    if (ar.IsLoading())
        UpdateMatrix();
}

bool C3DRotateKey::Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range)
{
    const auto *a = As<C3DRotateKey>(prev, *this), *b = As<C3DRotateKey>(next, *this);
    if (!a || !b || !C3DKeyframe::Evaluate(prev, next, time, range))
        return false;
    SetQuaternion(CQuaternion::Slerp(a->GetQuaternion(), b->GetQuaternion(), GetFraction(time, range)));
    return true;
}

bool C3DRotateKey::operator=(const C3DKeyframe& other)
{
    const auto* key = As<C3DRotateKey>(other, *this);
    if (!key || !C3DMatrixKey::operator=(other))
        return false;
    m_angle = key->m_angle;
    m_axis = key->m_axis;
    return true;
}

void C3DRotateKey::SetRotation(double angle, const C3DTVector<float>& axis)
{
    m_angle = angle;
    m_axis = axis;
    UpdateMatrix();
}

C3DTVector<float> C3DRotateKey::GetRotation(double& angle) const
{
    angle = m_angle;
    return m_axis;
}

void C3DRotateKey::SetQuaternion(const CQuaternion& q)
{
    q.GetAxisAngle(m_axis, m_angle);
    m_matrix.FromQuaternion(q);
}

void C3DRotateKey::SwapCoordinates(unsigned int code)
{
    // An exchange of two axes turns the sense of rotation round, and so does a mirror: of the axis, the mirrored component
    // stays and the others change sign.
    int a, b, mirror;
    const unsigned int pair = code & SWAP_PAIR_MASK, mirrors = code & MIRROR_MASK;
    if (GetXYZSwap(pair, a, b, mirror)) {
        m_axis = -m_axis;
        std::swap(m_axis[a], m_axis[b]);
    }
    if (GetXYZSwap(mirrors, a, b, mirror))
        for (int i = 0; i < 3; i++)
            if (i != mirror)
                m_axis[i] = -m_axis[i];
    UpdateMatrix();
}

void C3DRotateKey::UpdateMatrix()
{
    constexpr double ZERO = 1e-15;
    m_matrix.SetIdentity();
    C3DTVector<double> axis(m_axis);
    if (std::fabs(m_angle) < ZERO || (std::fabs(axis.x) < ZERO && std::fabs(axis.y) < ZERO && std::fabs(axis.z) < ZERO))
        return;
    axis.Normalize();

    const double c = std::cos(m_angle), s = std::sin(m_angle);
    for (int i = 0; i < 3; i++) {
        const int j = (i + 1) % 3, k = (j + 1) % 3;
        const double common = axis[i] * axis[j] * (1 - c);
        m_matrix.m[i][i] = static_cast<float>((1 - axis[i] * axis[i]) * c + axis[i] * axis[i]);
        m_matrix.m[i][j] = static_cast<float>(common + s * axis[k]);
        m_matrix.m[j][i] = static_cast<float>(common - s * axis[k]);
    }
}

// ---- C3DTypeKey

template <class T> C3DTypeKey<T>::~C3DTypeKey() = default;

template <class T> void C3DTypeKey<T>::Serialize(CXArchive& ar)
{
    C3DKeyframe::Serialize(ar);
    Move(ar, value);
}

template <class T> bool C3DTypeKey<T>::Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range)
{
    const auto *a = As<C3DTypeKey>(prev, *this), *b = As<C3DTypeKey>(next, *this);
    if (!a || !b)
        return false;
    value = Interpolate(a->value, b->value, GetFraction(time, range));
    return true;
}

template <class T> bool C3DTypeKey<T>::operator==(const C3DKeyframe& other) const
{
    const auto* key = As<C3DTypeKey>(other, *this);
    return key && C3DKeyframe::operator==(other) && value == key->value;
}

template <class T> bool C3DTypeKey<T>::operator=(const C3DKeyframe& other)
{
    const auto* key = As<C3DTypeKey>(other, *this);
    if (!key || !C3DKeyframe::operator=(other))
        return false;
    value = key->value;
    return true;
}

template class C3DTypeKey<int>;
template class C3DTypeKey<unsigned int>;
template class C3DTypeKey<float>;
template class C3DTypeKey<double>;
template class C3DTypeKey<CRGBColor>;
