#include <cmath>

#include "geometry/Swap.h"
#include "scene/MaterialMap.h"

// How a map is laid on the surface: keys, all under the map's own list.

namespace {

/// The key at that time, made when it is missing. Null when a foreign key stands under the id.
template <class KEY> KEY* MakeKey(CMaterialMap& map, unsigned int time, std::uint64_t classId)
{
    return dynamic_cast<KEY*>(map.CreateKey(static_cast<int>(time), classId, 0));
}

C3DTVector<float> GetVector(const CMaterialMap& map, unsigned int time, C3DVectorKey&& key, const C3DTVector<float>& withoutKey)
{
    return map.Evaluate(static_cast<int>(time), key) ? key.GetVector() : withoutKey;
}

void SetVector(CMaterialMap& map, unsigned int time, std::uint64_t classId, const C3DTVector<float>& vector)
{
    if (auto* const key = MakeKey<C3DVectorKey>(map, time, classId))
        key->SetVector(vector);
}

// The swap of axes: a matrix that only exchanges axes and changes signs. A vector key stores its vector alone, so the vector holds
// all of it: for each column the row in which it is not 0, counted from 1, with the sign of what stands there.

C3DTVector<float> GetSwapVector(const C4x4TMatrix<float>& swap)
{
    C3DTVector<float> vector(0, 0, 0);
    for (int column = 0; column < 3; column++)
        for (int row = 0; row < 3; row++)
            vector[column] += static_cast<float>(row + 1) * swap.m[row][column];
    return vector;
}

/// The identity for a vector that says nothing of the kind.
C4x4TMatrix<float> GetSwapMatrix(const C3DTVector<float>& vector)
{
    C4x4TMatrix<float> swap;
    int rows = 0;
    for (int column = 0; column < 3; column++) {
        swap.m[column][column] = 0;
        for (int row = 0; row < 3; row++)
            if (std::fabs(vector[column]) == static_cast<float>(row + 1)) {
                swap.m[row][column] = vector[column] > 0 ? 1.0f : -1.0f;
                rows |= 1 << row;
            }
    }
    return rows == 7 ? swap : C4x4TMatrix<float>();
}

void SetSwap(C3DVectorKey& key, const C4x4TMatrix<float>& swap)
{
    key.SetVector(GetSwapVector(swap));
    key.SetMatrix(swap);
}

}

// ---- Whole placement

void CMaterialMap::GetMatrix(unsigned int time, C4x4TMatrix<float>& matrix) const
{
    matrix.SetIdentity();
    const auto apply = [&](C3DMatrixKey&& key) {
        if (Evaluate(static_cast<int>(time), key))
            matrix *= key.ToMatrix();
    };
    apply(C3DRotateKey());
    apply(C3DMatrixKey(KEY_MATRIX));
    apply(C3DTranslateKey());
    apply(C3DScaleKey());

    C3DVectorKey key(KEY_MAP_SWAP);
    if (!Evaluate(static_cast<int>(time), key))
        return;
    C4x4TMatrix<float> swap = key.ToMatrix();
    swap.SetTranslation(0, 0, 0);
    matrix *= swap;
    const C3DTVector<float> translation = swap * matrix.GetTranslation();
    matrix.SetTranslation(translation.x, translation.y, translation.z);
}

void CMaterialMap::SetMatrix(unsigned int time, const C4x4TMatrix<float>& matrix)
{
    if (auto* const key = MakeKey<C3DMatrixKey>(*this, time, KEY_MATRIX))
        key->SetMatrix(matrix);
}

void CMaterialMap::SwapCoordinates(unsigned int mode)
{
    if (m_projection < PROJECTION_PLANAR)
        return;
    auto* const key = MakeKey<C3DVectorKey>(*this, 0, KEY_MAP_SWAP);
    if (!key)
        return;
    C4x4TMatrix<float> swap;
    swap = SwapMatrix(mode & MIRROR_MASK, SwapMatrix(mode & SWAP_PAIR_MASK, swap));
    SetSwap(*key, key->ToMatrix() * swap);
}

void CMaterialMap::RestoreSwap()
{
    C3DKeyframe* stored;
    for (unsigned int i = 0; (stored = GetKeyByIndex(i, nullptr, KEY_MAP_SWAP)); i++)
        if (auto* const key = dynamic_cast<C3DVectorKey*>(stored))
            SetSwap(*key, GetSwapMatrix(key->GetVector()));
}

// ---- Parts

void CMaterialMap::GetTranslation(unsigned int time, C3DTVector<float>& translation) const
{
    translation = GetVector(*this, time, C3DTranslateKey(), {0, 0, 0});
}

void CMaterialMap::SetTranslation(unsigned int time, const C3DTVector<float>& translation)
{
    SetVector(*this, time, KEY_TRANSLATE, translation);
}

void CMaterialMap::Translate(unsigned int time, const C3DTVector<float>& translation)
{
    C3DTVector<float> sum;
    GetTranslation(time, sum);
    SetTranslation(time, {sum.x + translation.x, sum.y + translation.y, sum.z + translation.z});
}

void CMaterialMap::GetScale(unsigned int time, C3DTVector<float>& scale) const { scale = GetVector(*this, time, C3DScaleKey(), {1, 1, 1}); }

void CMaterialMap::SetScale(unsigned int time, const C3DTVector<float>& scale) { SetVector(*this, time, KEY_SCALE, scale); }

void CMaterialMap::Scale(unsigned int time, const C3DTVector<float>& factors)
{
    C3DTVector<float> product;
    GetScale(time, product);
    SetScale(time, {product.x * factors.x, product.y * factors.y, product.z * factors.z});
}

void CMaterialMap::GetRotation(unsigned int time, CQuaternion& rotation) const
{
    C3DRotateKey key;
    rotation = Evaluate(static_cast<int>(time), key) ? key.GetQuaternion() : CQuaternion();
}

void CMaterialMap::SetRotation(unsigned int time, const CQuaternion& rotation)
{
    if (auto* const key = MakeKey<C3DRotateKey>(*this, time, KEY_ROTATE))
        key->SetQuaternion(rotation);
}

void CMaterialMap::Rotate(unsigned int time, const CQuaternion& rotation)
{
    CQuaternion product;
    GetRotation(time, product);
    SetRotation(time, product *= rotation);
}

void CMaterialMap::GetHPBRotation(unsigned int time, C3DTVector<float>& angles) const
{
    angles = C3DTVector<float>(0, 0, 0);
    C3DRotateKey key;
    if (!Evaluate(static_cast<int>(time), key))
        return;
    double heading, pitch, bank;
    key.GetQuaternion().GetHPBAngles(heading, pitch, bank);
    angles = C3DTVector<float>(static_cast<float>(heading), static_cast<float>(pitch), static_cast<float>(bank));
}

void CMaterialMap::SetHPBRotation(unsigned int time, const C3DTVector<float>& angles)
{
    SetRotation(time, CQuaternion(angles.x, angles.y, angles.z));
}

void CMaterialMap::GetTile(unsigned int time, C3DTVector<float>& tile) const
{
    tile = GetVector(*this, time, C3DVectorKey(KEY_MAP_TILE), {1, 1, 1});
}

void CMaterialMap::SetTile(unsigned int time, const C3DTVector<float>& tile) { SetVector(*this, time, KEY_MAP_TILE, tile); }
