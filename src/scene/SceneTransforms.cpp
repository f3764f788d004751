#include "geometry/Swap.h"
#include "scene/3DScene.h"
#include "scene/MaterialMap.h"
#include "scene/NodeWalkTM.h"

// Time

CTimeRange C3DScene::GetTimeRange(std::uint64_t classID)
{
    CTimeRange range;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        range |= GetNextNode(pos)->GetTimeRange(classID);
    return range;
}

const C3DKeyframe* C3DScene::GetConstKey(int time, unsigned int mode, std::uint64_t classID, int* keyTime) const
{
    const C3DKeyframe* found = nullptr;
    int foundTime = -1;
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;) {
        int nodeTime;
        const C3DKeyframe* key = GetNextNode(pos)->GetConstKey(time, mode, classID, &nodeTime);
        if (!key)
            continue;
        const bool exact = mode & KEY_EXACT && nodeTime == time;
        const bool nearer = mode & KEY_AFTER ? nodeTime < foundTime : mode & KEY_BEFORE && nodeTime > foundTime;
        if (!found || exact || nearer) {
            found = key;
            foundTime = nodeTime;
        }
        if (exact)
            break;
    }
    if (keyTime)
        *keyTime = foundTime;
    return found;
}

bool C3DScene::SetCurrentTime(int time)
{
    const int adjusted = GetTimeRange(KEY_ANY).AdjustTime(time);
    if (adjusted == m_currentTime)
        return false;
    m_currentTime = adjusted;
    return true;
}

void C3DScene::DeleteAllKeys()
{
    GetRoot()->DeleteAllKeys();
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY); pos;)
        GetNextNode(pos)->DeleteAllKeys();
}

// Space

/// Multiplies a matrix on the left of the matrix key at time 0 of everything directly below the root.
static void TransformScene(const C3DScene& scene, const C4x4TMatrix<float>& matrix)
{
    for (C3DSceneNode* node = scene.GetChildNode(nullptr); node; node = scene.GetRightNode(node)) {
        auto* key = static_cast<C3DMatrixKey*>(node->CreateKey(0, KEY_MATRIX, 0));
        key->SetMatrix(matrix * key->ToMatrix());
    }
}

bool C3DScene::OrientScene(_UP_AXIS_MODE mode, bool import)
{
    if (mode == UP_AXIS_Z)
        return false;
    // Column by column the images of x, y and z; the way back is the transpose.
    static constexpr float Y_UP[3][3] = {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}};
    static constexpr float X_UP[3][3] = {{0, -1, 0}, {0, 0, -1}, {1, 0, 0}};
    C4x4TMatrix<float> turn;
    if (mode == UP_AXIS_Y || mode == UP_AXIS_X) {
        const auto& rotation = mode == UP_AXIS_Y ? Y_UP : X_UP;
        for (int row = 0; row < 3; row++)
            for (int column = 0; column < 3; column++)
                turn.m[row][column] = import ? rotation[row][column] : rotation[column][row];
    }
    TransformScene(*this, turn);
    return true;
}

void C3DScene::Scale(const C3DTVector<float>& factors)
{
    C4x4TMatrix<float> scale;
    scale.Scale(factors.x, factors.y, factors.z);
    TransformScene(*this, scale);
}

bool C3DScene::SwapCoordinates(int mode)
{
    const unsigned int code = static_cast<unsigned int>(mode);
    int a, b, mirror;
    if (!GetXYZSwap(code, a, b, mirror))
        return false;    // points would stay where keys turn
    for (C3DNodePos pos = GetFirstNode(OBJECT_GEOMETRIC, ITER_UNIQUE_OBJECTS); pos;)
        GetNextNode(pos)->SwapPoints(code);
    GetRoot()->SwapTransformations(code);
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_EMPTY_NODES); pos;)
        GetNextNode(pos)->SwapTransformations(code);
    for (unsigned int pos = m_materials.GetFirst(); pos != 0xFFFFFFFF;) {
        unsigned int id;
        C3DMaterial* material;
        m_materials.GetNext(pos, id, material);
        for (unsigned int type = MAP_DIFFUSE; type <= MAP_BUMP; type++) {
            if (CMaterialMap* map = material->GetMaterialMap(static_cast<MapType>(type)))
                map->SwapCoordinates(code);
        }
    }
    return true;
}

int C3DScene::ConvertToGlobalCoordinates(C3DSceneNode* start)
{
    const bool all = !start || IsSceneRoot(start);
    CNodeWalkTM walk(m_currentTime, all);
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_SUBTREE, start); pos;) {
        C3DSceneNode* node = GetNextNode(pos);
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        if (!(matrix == C4x4TMatrix<float>())) {    // no tolerance: the keys go
            node->DeleteObjectInstanciation();
            node->GetBaseObject()->MatrixTransform(matrix);
        }
    }
    for (C3DNodePos pos = GetFirstNode(OBJECT_ANY, ITER_SUBTREE | ITER_EMPTY_NODES, start); pos;)
        GetNextNode(pos)->DeleteAllKeys();
    if (all)
        GetRoot()->DeleteAllKeys();
    return 0;
}
