#pragma once

#include "channels/Channel.h"

class CWeightFaceList;
class CWeightPointList;

/// Weights, in one of two forms.
///
/// Points only: no face list, weight i belongs to geometry point i. Per corner: laid out like texture coordinates. Copies
/// and streams keep the form.
class ZEL_API CWeightChannel : public CChannel {
    ZEL_DECLARE_CREATABLE(CWeightChannel)
public:
    explicit CWeightChannel(unsigned int id = NO_CHANNEL_ID, bool pointsOnly = true);

    CWeightFaceList* GetWeightFaceList() const;    // null in the points-only form
    CWeightPointList* GetWeightPointList() const;

    /// Difference of at most `tolerance`.
    bool Compare(const CPt* a, const CPt* b, double tolerance) const override;
    CWeightChannel* Duplicate(bool inherit) const override;

    /// Smallest and largest weight, those of invalid points included; both 0 for an empty channel.
    void GetLimits(float& minimum, float& maximum);
    /// Maps the limits to 0 and 1, with `invert` to 1 and 0. Equal weights all count as the smallest.
    void Normalize(bool invert);
    /// A weight per geometry point: the channel's own list in the points-only form, else a new list of the means over the
    /// corners (0 for a point without data). The caller releases it with DeleteMe.
    CWeightPointList* GetWeightPointOnlyList(CGeomInfo* info);

protected:
    ~CWeightChannel() override;
};
