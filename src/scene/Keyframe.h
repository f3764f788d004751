#pragma once

#include <cstdint>
#include <memory>

#include "geometry/4x4Matrix.h"
#include "geometry/Quaternion.h"
#include "scene/KeyCurve.h"
#include "tools/Color.h"
#include "tools/CustomData.h"
#include "tools/FourCC.h"

class CXArchive;

/// Frames from start to end, both included.
class CTimeRange {
public:
    CTimeRange() = default;
    CTimeRange(int start_, int end_) : start(start_), end(end_) {}

    /// The nearest time of the range.
    int AdjustTime(int time) const { return time < start ? start : time > end ? end : time; }
    /// end - start, and 1 for a range of one frame.
    unsigned int GetLength() const { return start == end ? 1 : static_cast<unsigned int>(end) - static_cast<unsigned int>(start); }
    /// Not 0 when the range holds the time.
    int IsInInterval(int time) const { return start <= time && time <= end; }
    /// Intersection. Of ranges apart from each other the result holds no time: its end lies before its start.
    CTimeRange& operator&=(const CTimeRange& other)
    {
        start = start > other.start ? start : other.start;
        end = end < other.end ? end : other.end;
        return *this;
    }
    /// The smallest range that holds both.
    CTimeRange& operator|=(const CTimeRange& other)
    {
        start = start < other.start ? start : other.start;
        end = end > other.end ? end : other.end;
        return *this;
    }
    bool operator==(const CTimeRange&) const = default;

    int start = 0, end = 0;
};

// A key's class id: which class it has (high half), and what its value stands for (low half).

enum _KEY_TYPES : unsigned int {
    KEY_TYPE_MATRIX = FourCC("MATR"),
    KEY_TYPE_ROTATE = FourCC("ROTA"),
    KEY_TYPE_SCALE = FourCC("SCAL"),
    KEY_TYPE_TRANSLATE = FourCC("TRAN"),
    KEY_TYPE_VECTOR = FourCC("VECT"),
    KEY_TYPE_INT = FourCC(" INT"),
    KEY_TYPE_UNSIGNED = FourCC("UINT"),
    KEY_TYPE_FLOAT = FourCC("FLOA"),
    KEY_TYPE_DOUBLE = FourCC("DOUB"),
    KEY_TYPE_COLOR = FourCC("COLO"),
};

constexpr std::uint64_t KeyClassID(unsigned int typeId, unsigned int contentId)
{
    return static_cast<std::uint64_t>(typeId) << 32 | contentId;
}

inline constexpr std::uint64_t KEY_ANY = 0;    ///< in a lookup: every key
inline constexpr std::uint64_t KEY_MATRIX = KeyClassID(KEY_TYPE_MATRIX, 0);
inline constexpr std::uint64_t KEY_ROTATE = KeyClassID(KEY_TYPE_ROTATE, 0);
inline constexpr std::uint64_t KEY_SCALE = KeyClassID(KEY_TYPE_SCALE, 0);
inline constexpr std::uint64_t KEY_TRANSLATE = KeyClassID(KEY_TYPE_TRANSLATE, FourCC("TRAN"));
inline constexpr std::uint64_t KEY_PIVOT = KeyClassID(KEY_TYPE_VECTOR, FourCC("PIVO"));
inline constexpr std::uint64_t KEY_MAP_TILE = KeyClassID(KEY_TYPE_VECTOR, FourCC("MPTL"));
inline constexpr std::uint64_t KEY_MAP_SWAP = KeyClassID(KEY_TYPE_VECTOR, FourCC("MPSW"));
inline constexpr std::uint64_t KEY_AMBIENT_COLOR = KeyClassID(KEY_TYPE_COLOR, FourCC("MTAR"));
inline constexpr std::uint64_t KEY_DIFFUSE_COLOR = KeyClassID(KEY_TYPE_COLOR, FourCC("MTDR"));
inline constexpr std::uint64_t KEY_SPECULAR_COLOR = KeyClassID(KEY_TYPE_COLOR, FourCC("MTSR"));
inline constexpr std::uint64_t KEY_AMBIENT_FACTOR = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTAF"));
inline constexpr std::uint64_t KEY_DIFFUSE_FACTOR = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTDF"));
inline constexpr std::uint64_t KEY_SPECULAR_FACTOR = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTSF"));
inline constexpr std::uint64_t KEY_BUMP_FACTOR = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTBM"));
inline constexpr std::uint64_t KEY_TRANSPARENCY_FACTOR = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTTY"));
inline constexpr std::uint64_t KEY_VERTEX_COLOR_STRENGTH = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTVC"));
inline constexpr std::uint64_t KEY_SMOOTH_ANGLE = KeyClassID(KEY_TYPE_FLOAT, FourCC("MTSM"));

/// A typed value at a time. The time itself is kept by the list that owns the key.
class ZEL_API C3DKeyframe {
public:
    virtual ~C3DKeyframe();
    /// Class id, custom data, curve; derived classes add their value. Throws when the stream holds another class id than the
    /// key has, or an unknown curve.
    virtual void Serialize(CXArchive& ar);
    /// Gives this key the value between `prev` at range.start and `next` at range.end. False, with nothing changed, when the
    /// range does not hold the time or the class ids differ.
    virtual bool Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range);
    /// Equal values; here equal class ids.
    virtual bool operator==(const C3DKeyframe& other) const;
    /// Value and curve of a key of the same class id; the custom data stays. False, with nothing changed, for another class id.
    virtual bool operator=(const C3DKeyframe& other);
    bool operator!=(const C3DKeyframe& other) const { return !(*this == other); }

    /// A new key that the caller owns, with the class's default value; null for an unknown type id. A `curveId` other than 0
    /// makes a curve too.
    static C3DKeyframe* CreateKey(std::uint64_t classId, unsigned int curveId);
    /// A new key with the same class id, value and curve; without the custom data. The caller owns it.
    C3DKeyframe* Copy() const;

    std::uint64_t GetClassID() const { return m_classId; }
    unsigned int GetTypeID() const { return static_cast<unsigned int>(m_classId >> 32); }
    unsigned int GetContentID() const { return static_cast<unsigned int>(m_classId); }
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }

    /// The curve or null.
    const C3DKeyCurve* GetKeyCurve() const { return m_curve.get(); }
    void SetKeyCurve(const C3DKeyCurve& curve);    // a copy
    /// Takes ownership; null removes the curve.
    void SetKeyCurve(C3DKeyCurve* curve);
    /// Replaces the curve by a new one; null, and no curve, for an unknown id.
    C3DKeyCurve* CreateCurve(unsigned int curveId);

protected:
    explicit C3DKeyframe(std::uint64_t classId) : m_classId(classId) {}
    C3DKeyframe(const C3DKeyframe& other);    // custom data too

private:
    std::uint64_t m_classId;
    CCustomData m_customData;
    std::unique_ptr<C3DKeyCurve> m_curve;
};

/// A transform. Base of all keys that can stand for one.
class ZEL_API C3DMatrixKey : public C3DKeyframe {
public:
    explicit C3DMatrixKey(std::uint64_t classId) : C3DKeyframe(classId) {}
    explicit C3DMatrixKey(const C4x4TMatrix<float>& matrix) : C3DKeyframe(KEY_MATRIX), m_matrix(matrix) {}
    C3DMatrixKey(const C3DMatrixKey&) = default;
    ~C3DMatrixKey() override;

    /// The 16 values.
    void Serialize(CXArchive& ar) override;
    /// By parts: translation and scale linear, rotation the short way. A shear is lost, at the keys too.
    bool Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range) override;
    /// All 16 values equal, also for the keys that derive from this one.
    bool operator==(const C3DKeyframe& other) const override;
    bool operator=(const C3DKeyframe& other) override;
    bool operator=(const C3DMatrixKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }
    virtual const C4x4TMatrix<float>& ToMatrix() const { return m_matrix; }

    void SetMatrix(const C4x4TMatrix<float>& matrix) { m_matrix = matrix; }
    /// Swap code through AdjustMatrix when `adjust` is set, else through SwapMatrix.
    void SwapCoordinates(unsigned int code, bool adjust);

protected:
    C4x4TMatrix<float> m_matrix;
};

/// A vector, which the matrix expresses as a translation.
class ZEL_API C3DVectorKey : public C3DMatrixKey {
public:
    explicit C3DVectorKey(std::uint64_t classId) : C3DMatrixKey(classId) {}
    C3DVectorKey(const C3DVectorKey&) = default;
    ~C3DVectorKey() override;

    /// The vector with its flags; the reader rebuilds the matrix.
    void Serialize(CXArchive& ar) override;
    /// Each component linear, in float.
    bool Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range) override;
    bool operator=(const C3DKeyframe& other) override;
    bool operator=(const C3DVectorKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }
    /// Makes the matrix express the vector.
    virtual void UpdateMatrix();

    void SetVector(const C3DTVector<float>& vector);
    C3DTVector<float> GetVector() const { return m_vector; }
    /// x, y, z. Whoever writes through it calls UpdateMatrix.
    float* GetVectorPtr() { return m_vector.ValPtr(); }
    const float* GetVectorPtr() const { return m_vector.ValPtr(); }
    /// Exchanges and mirrors the components (GetXYZSwap).
    void SwapCoordinates(unsigned int code);

protected:
    C3DTVector<float> m_vector;
};

/// Factors along the axes, 1 by default, which the matrix holds on its diagonal.
class ZEL_API C3DScaleKey : public C3DVectorKey {
public:
    explicit C3DScaleKey(std::uint64_t classId = KEY_SCALE);
    C3DScaleKey(const C3DScaleKey&) = default;
    ~C3DScaleKey() override;
    using C3DVectorKey::operator=;
    bool operator=(const C3DScaleKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }
    void UpdateMatrix() override;
};

/// A translation.
class ZEL_API C3DTranslateKey : public C3DVectorKey {
public:
    explicit C3DTranslateKey(std::uint64_t classId = KEY_TRANSLATE) : C3DVectorKey(classId) {}
    C3DTranslateKey(const C3DTranslateKey&) = default;
    ~C3DTranslateKey() override;
    using C3DVectorKey::operator=;
    bool operator=(const C3DTranslateKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }
    void UpdateMatrix() override;
};

/// A rotation by an angle in radians about an axis. The matrix has the block that C4x4TMatrix::FromQuaternion gives.
class ZEL_API C3DRotateKey : public C3DMatrixKey {
public:
    explicit C3DRotateKey(std::uint64_t classId = KEY_ROTATE) : C3DMatrixKey(classId) {}
    C3DRotateKey(float angle, const C3DTVector<float>& axis);
    C3DRotateKey(const C3DRotateKey&) = default;
    ~C3DRotateKey() override;

    /// Angle, and axis with its flags; the reader rebuilds the matrix.
    void Serialize(CXArchive& ar) override;
    /// CQuaternion::Slerp. An evaluation without rotation gives angle 0 about (1, 0, 0).
    bool Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range) override;
    bool operator=(const C3DKeyframe& other) override;
    bool operator=(const C3DRotateKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }

    void SetRotation(double angle, const C3DTVector<float>& axis);
    /// The axis as it was set.
    C3DTVector<float> GetRotation(double& angle) const;
    CQuaternion GetQuaternion() const { return CQuaternion(m_axis, m_angle); }
    void SetQuaternion(const CQuaternion& q);
    void SwapCoordinates(unsigned int code);

private:
    void UpdateMatrix();

    double m_angle = 0;
    C3DTVector<float> m_axis{1, 0, 0};
};

/// A plain value: int, unsigned, float, double or CRGBColor. Read and written directly.
template <class T> class ZEL_API C3DTypeKey : public C3DKeyframe {
public:
    explicit C3DTypeKey(std::uint64_t classId, const T& value_ = T()) : C3DKeyframe(classId), value(value_) {}
    C3DTypeKey(const C3DTypeKey&) = default;
    ~C3DTypeKey() override;

    void Serialize(CXArchive& ar) override;
    /// Linear, without a test of the range or of the class ids; whole numbers in float, then truncated. False only for keys
    /// of another class.
    bool Evaluate(const C3DKeyframe& prev, const C3DKeyframe& next, int time, const CTimeRange& range) override;
    bool operator==(const C3DKeyframe& other) const override;
    bool operator=(const C3DKeyframe& other) override;
    bool operator=(const C3DTypeKey& other) { return *this = static_cast<const C3DKeyframe&>(other); }

    T value;
};

extern template class C3DTypeKey<int>;
extern template class C3DTypeKey<unsigned int>;
extern template class C3DTypeKey<float>;
extern template class C3DTypeKey<double>;
extern template class C3DTypeKey<CRGBColor>;
