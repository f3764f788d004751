// Given normals: those to be computed from the faces, and their lengths.

#include <algorithm>
#include <cmath>

#include "channels/Cosine.h"
#include "channels/FaceCorners.h"
#include "channels/FaceNormalContributionInfo.h"
#include "channels/FaceNormals.h"
#include "channels/NormalFaceList.h"
#include "channels/SpecNormalChannel.h"
#include "geometry/3DFaceList.h"
#include "geometry/3DVectorList.h"
#include "geometry/GeomInfo.h"

// Sets the computed vectors to zero; false when there are none.
static bool ClearComputed(C3DVectorList& vectors)
{
    bool found = false;
    C3DTVector<float>* vector = vectors.GetFirst();
    for (int i = 0, count = vectors.GetSize(); i < count; i++, vector++)
        if (vector->IsFlagSet(POINT_COMPUTED)) {
            vector->x = vector->y = vector->z = 0;
            found = true;
        }
    return found;
}

void CSpecNormalChannel::ComputeNormals(const CGeomInfo* info, _NormalSmoothMode)
{
    const CFaceList* faces = info ? info->GetSrcFaceList() : nullptr;
    if (!IsOneFlagSet(CHANNEL_INVALID | CHANNEL_STALE) || !faces || faces->GetSize() == 0 || !GetFaceList() || !GetPointList())
        return;
    SetFlag(CHANNEL_STALE, false);
    C3DVectorList& vectors = *GetNormalVectorList();
    if (!ClearComputed(vectors))
        return;

    CFaceNormalContributionInfo context(info);
    const CFaceNormals unitNormals(info, context.GetUnnormalizedNormals());
    const CFaceFlags flags(*faces), normalFlags(*GetFaceList());
    CFaceCorners faceCorners(*faces);
    const int size = std::min(faces->GetSize(), GetFaceList()->GetSize());
    for (int face = 0; face < size; face++) {
        if (flags[face] & FACE_INVALID || normalFlags.IsDead(face))
            continue;
        int cornerCount, normalCount;
        const int* corners = faces->GetIndexes(face, cornerCount);
        const int* normals = GetFaceList()->GetIndexes(face, normalCount);
        for (int k = 0; k < std::min(cornerCount, normalCount); k++) {
            C3DTVector<float>* vector = vectors.ElementAt(normals[k]);
            if (!vector || !vector->IsFlagSet(POINT_COMPUTED))
                continue;
            context.SetPoint(corners[k]);
            context.SetFace(face, &unitNormals[face], faceCorners.GetFirst(face, corners[k]));
            context.AddContribution(*vector);
        }
    }

    C3DTVector<float>* vector = vectors.GetFirst();
    for (int i = 0, count = vectors.GetSize(); i < count; i++, vector++)
        if (vector->IsFlagSet(POINT_COMPUTED))
            NormalizeSum(*vector);
}

// Makes the vector a unit vector, unless it is one: what is read and saved again and again stays as it is. False for one without length or
// direction, which then is unset.
static bool NormalizeGiven(C3DTVector<float>& v)
{
    if (IsNearlyUnit(v))
        return true;
    const double length = v.Length();
    if (std::isfinite(length) && !(std::abs(v.x) < NO_LENGTH && std::abs(v.y) < NO_LENGTH && std::abs(v.z) < NO_LENGTH)) {
        v /= length;
        return true;
    }
    if (!std::isfinite(length))
        v.x = v.y = v.z = 0;    // from a broken file: no sum may meet it
    v.SetFlag(POINT_UNSET, true);
    return false;
}

bool CSpecNormalChannel::Normalize()
{
    if (!GetFaceList() || !GetPointList())
        return true;
    C3DVectorList& vectors = *GetNormalVectorList();
    bool allSet = true;
    C3DTVector<float>* vector = vectors.GetFirst();
    for (int i = 0, count = vectors.GetSize(); i < count; i++, vector++)
        allSet &= NormalizeGiven(*vector);
    vectors.SetFlag(POINTLIST_CHANGED, true);
    if (allSet)
        return true;

    CNormalFaceList& faces = *GetNormalFaceList();
    bool anyData = false;
    for (int i = 0; i < faces.GetSize(); i++) {
        CNormalFace face;
        faces.GetFace(i, face);
        if (!face.IsDead()) {
            bool anySet = false;
            for (int k = 0; k < face.GetSize(); k++) {
                const C3DTVector<float>* normal = vectors.ElementAt(face[k]);
                anySet |= normal && !normal->IsFlagSet(POINT_UNSET);
            }
            if (!anySet) {
                face.RemoveAll();
                face.SetFlag(FACE_EMPTY, true);
            }
        }
        anyData |= !face.IsFlagSet(FACE_EMPTY);
    }
    faces.SetFlag(FACELIST_CHANGED, true);
    FreeExtra();
    if (anyData)
        return true;
    SetFlag(CHANNEL_INVALID, true);
    return false;
}
