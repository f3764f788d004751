#pragma once

#include <cmath>
#include <typeinfo>

#include "geometry/MatrixProduct.h"
#include "scene/3DScene.h"

// What the matrices of nodes are made of, for NodeTransforms.cpp and NodeWalkTM.cpp.

inline bool IsSceneRoot(const C3DSceneNode* node) { return node->GetScene() && node->GetScene()->IsSceneRoot(node); }

inline bool IsZeroVector(const C3DTCoordinates<float>& v)
{
    return std::fabs(v.x) < 1e-15 && std::fabs(v.y) < 1e-15 && std::fabs(v.z) < 1e-15;
}

/// What the product with an identity gives: the same values, and no negative zeros.
inline void CopyMatrix(const float (&from)[4][4], float (&to)[4][4])
{
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            to[i][j] = from[i][j] + 0.0f;
}

/// The keys of a node that stand for its transform at a time: of each class the last one up to then and the first one after.
///
/// A look-up for each class in a long list; else one pass over the places of the keys, which ends when all classes are found. What is not
/// interpolated is taken from its key as it stands, without a copy.
class CTransformKeys {
public:
    CTransformKeys(const CKeyPlaces& places, int time, int behind) : m_time(time)
    {
        if (places.HasClassPlaces()) {
            LookUp(places, behind);
            return;
        }
        for (int i = behind, missing = PARTS; i-- > 0 && missing;)
            missing -= Note(places[i], &Around::before);
        for (int i = behind, missing = PARTS; i < places.GetSize() && missing; i++)
            missing -= Note(places[i], &Around::after);
    }

    /// The matrix of a list that holds one key, a matrix, as the keys of most nodes do; null for every other list.
    static const C4x4TMatrix<float>* GetSingleMatrix(const CKeyPlaces& places)
    {
        if (places.GetSize() != 1 || places[0].tag != KeyTag(KEY_MATRIX))
            return nullptr;
        return GetHeldMatrix<C3DMatrixKey>(*places[0].key, KEY_MATRIX);
    }

    /// Matrix, translation, rotation and scale, as far as there are any, multiplied in that order.
    void GetLocal(C4x4TMatrix<float>& matrix) const
    {
        matrix.SetIdentity();
        Multiply(MATRIX, C3DMatrixKey(KEY_MATRIX), matrix);
        Multiply(TRANSLATE, C3DTranslateKey(), matrix);
        Multiply(ROTATE, C3DRotateKey(), matrix);
        Multiply(SCALE, C3DScaleKey(), matrix);
    }

    /// The pivot point goes where the matrix takes it, and becomes the origin.
    void ApplyPivot(C4x4TMatrix<float>& matrix) const
    {
        C3DVectorKey key(KEY_PIVOT);
        if (!Evaluate(PIVOT, key) || IsZeroVector(key.GetVector()))
            return;
        const C3DTPoint<float> position = matrix * C3DTPoint<float>(key.GetVector());
        matrix.SetTranslation(position.x, position.y, position.z);
        matrix.m[3][3] = 1;
    }

private:
    enum Part { MATRIX, TRANSLATE, ROTATE, SCALE, PIVOT, PARTS };
    static constexpr std::uint64_t IDS[PARTS] = {KEY_MATRIX, KEY_TRANSLATE, KEY_ROTATE, KEY_SCALE, KEY_PIVOT};

    struct Around {
        const _KeyframeInfo *before = nullptr, *after = nullptr;
    };

    void LookUp(const CKeyPlaces& places, int behind)
    {
        for (int part = 0; part < PARTS; part++) {
            if (const int before = places.FindBefore(behind, IDS[part]); before >= 0)
                m_around[part].before = &places[before];
            if (const int after = places.FindFrom(behind, IDS[part]); after < places.GetSize())
                m_around[part].after = &places[after];
        }
    }

    /// 1 when the place is the first one of its class on that side.
    int Note(const _KeyframeInfo& info, const _KeyframeInfo* Around::*side)
    {
        for (int part = 0; part < PARTS; part++) {
            if (info.tag != KeyTag(IDS[part]) || info.key->GetClassID() != IDS[part])
                continue;
            if (m_around[part].*side)
                return 0;
            m_around[part].*side = &info;
            return 1;
        }
        return 0;
    }

    /// As C3DKeyframable::Evaluate.
    template <class KEY> bool Evaluate(Part part, KEY& key) const
    {
        const auto& [before, after] = m_around[part];
        if (before && after)
            return key.Evaluate(*before->key, *after->key, m_time, CTimeRange(before->time, after->time));
        if (before || after)
            key = *(before ? before : after)->key;
        return before || after;
    }

    /// The matrix in a key of exactly that class, which a class id alone does not vouch for; else null.
    template <class KEY> static const C4x4TMatrix<float>* GetHeldMatrix(const C3DKeyframe& key, std::uint64_t classId)
    {
        if (key.GetClassID() != classId || typeid(key) != typeid(KEY))
            return nullptr;
        return &static_cast<const KEY&>(key).KEY::ToMatrix();
    }

    template <class KEY> void Multiply(Part part, KEY&& key, C4x4TMatrix<float>& matrix) const
    {
        const auto& [before, after] = m_around[part];
        if (!before && !after)
            return;
        if (!before != !after) {
            if (const C4x4TMatrix<float>* held = GetHeldMatrix<KEY>(*(before ? before : after)->key, IDS[part])) {
                matrix *= *held;
                return;
            }
        }
        if (Evaluate(part, key))
            matrix *= key.ToMatrix();
    }

    int m_time;
    Around m_around[PARTS];
};
