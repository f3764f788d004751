#pragma once

#include "channels/NormalMode.h"
#include "geometry/3DFace.h"
#include "geometry/Point.h"

class C3DFaceList;
class C3DPointList;
class C3DVectorList;
class CGeomInfo;

/// What faces contribute to the normals of their points: the working context of one pass over a mesh.
///
/// The smooth mode is that of the info. Set a point, set each of its faces, and call AddContribution with the sum that is to become
/// the point's normal. The lists of the info are referred to, not held; they stay as they are while the context lives.
///
/// Cost: a list of raw normals for the modes that weigh by them, made with the context; a contribution costs no allocation.
class ZEL_API CFaceNormalContributionInfo {
public:
    using Callback = void (*)(CFaceNormalContributionInfo& context, C3DTVector<float>& sum);

    explicit CFaceNormalContributionInfo(const CGeomInfo* info);
    CFaceNormalContributionInfo(const CFaceNormalContributionInfo&) = delete;
    CFaceNormalContributionInfo& operator=(const CFaceNormalContributionInfo&) = delete;
    virtual ~CFaceNormalContributionInfo();

    /// Picks how faces contribute; an unknown mode counts as area.
    void InitNormalCallback(_NormalSmoothMode mode);
    /// Makes the raw normals when the mode weighs by them, otherwise drops them.
    void InitUnormalizedNormal(_NormalSmoothMode mode);

    _NormalSmoothMode GetMode() const { return m_mode; }
    /// One for each face without FACE_INVALID, in the face's place. Null in the modes without them.
    const C3DVectorList* GetUnnormalizedNormals() const { return m_rawNormals; }

    void SetPoint(int point)
    {
        m_point = point;
        m_corner = NO_CORNER;
    }
    /// @param unitNormal  of that face; referred to
    /// @param corner      where the face holds the point, or NO_CORNER for its first corner there
    void SetFace(int face, const C3DTVector<float>* unitNormal, int corner = NO_CORNER)
    {
        m_face = face;
        m_unitNormal = unitNormal;
        m_corner = corner;
    }
    /// Adds the current face's contribution at the current point.
    void AddContribution(C3DTVector<float>& sum) { m_callback(*this, sum); }

    // One for each mode. Where a mode looks at the corner, a face that does not hold the point or has a broken corner beside it adds
    // nothing; nor does, by edge lengths, one with an edge of length 0 there.

    static void NormalUnweight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum) { sum += *context.m_unitNormal; }
    static void NormalAreaWeight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum) { sum += context.m_raw[context.m_face]; }
    static void NormalEdgeWeight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum);
    static void NormalAngleWeight(CFaceNormalContributionInfo& context, C3DTVector<float>& sum);

    static constexpr int NO_CORNER = -1;

private:
    bool FindEdges();

    const CGeomInfo* m_info;
    C3DFaceList* m_faces;
    C3DPointList* m_points;
    _NormalSmoothMode m_mode;
    C3DVectorList* m_rawNormals = nullptr;       ///< owned
    const C3DTVector<float>* m_raw = nullptr;    ///< the first of these
    int m_point = -1;
    int m_face = -1;
    C3DFace m_view;    ///< of the current face, once its corners were asked for
    const C3DTVector<float>* m_unitNormal = nullptr;
    Callback m_callback = nullptr;
    int m_corner = NO_CORNER;
    C3DTVector<float> m_edge1, m_edge2, m_part;    ///< from the point to its neighbours in the face; the contribution
};
