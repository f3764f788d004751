#pragma once

#include "channels/Channel.h"

class C3DVectorList;
class CFaceNormalChannel;
class CNormalFaceList;
class CPointNormalChannel;
class CSpecNormalChannel;
class CUVWChannel;
class CUVWFaceList;
class CUVWPointList;
class CVCChannel;
class CVCFaceList;
class CVCPointList;

/// The channels of one object, in the order of their addition.
///
/// Holds one reference on each channel. Every query accepts a null `this`, which answers 0, -1, false or null. Queries find
/// the first match; those with `skipInvalid` neither find nor count channels with CHANNEL_INVALID. Lists that a query hands
/// out belong to their channel; they are null when it finds none.
class ZEL_API CDependentChannels : public CXArray<CChannel*, CChannel*>, public CInstanciatedObject {
public:
    static CDependentChannels* Create();
    CDependentChannels(const CDependentChannels&) = delete;
    /// Copies of the channels, with their ids.
    CDependentChannels& operator=(CDependentChannels& source);

    int GetSize() const;
    /// Appends and takes the caller's reference; the new index, -1 for null.
    int AddChannel(CChannel* channel);
    void RemoveAll();

    /// `type` CHANNEL_ANY takes any kind. Invalid channels are found too.
    CChannel* GetChannelByID(unsigned int id, _Channel3DType type);
    CChannel* GetChannelByID(unsigned int id, CFaceList*& faces, CPointList*& points, _Channel3DType type);
    /// The channel at place `index` among those whose type is in the mask; with mask 0, at that position of the array.
    CChannel* GetChannelByIndex(int index, unsigned int typeMask, bool skipInvalid);
    /// The same, skipping invalid channels.
    CChannel* GetChannelByIndex(int index, CFaceList*& faces, CPointList*& points, _Channel3DType typeMask);
    /// Place of a channel among those of its type, -1 for none.
    int GetChannelIndex(unsigned int id, _Channel3DType type, bool skipInvalid);
    /// Type at a position of the array; CHANNEL_ANY out of range.
    _Channel3DType GetChannelType(int index);
    /// Positions of the channels whose type is in the mask; returns their number.
    int GetChannels(unsigned int typeMask, CXArray<unsigned int, unsigned int>& positions, bool skipInvalid) const;
    int GetChannelsNumber(unsigned int typeMask, bool skipInvalid);

    /// The first valid channel of the kind. Without one, a new one is appended.
    CFaceNormalChannel* GetFaceNormalChannel();
    CPointNormalChannel* GetPointNormalChannel();
    /// The first valid channel of the kind, or null.
    CSpecNormalChannel* GetSpecNormalChannel();
    CSpecNormalChannel* GetSpecNormalChannel(CNormalFaceList*& faces, C3DVectorList*& vectors);
    CUVWChannel* GetUVWChannelByID(unsigned int id, CUVWFaceList*& faces, CUVWPointList*& points);
    CVCChannel* GetVCChannelByID(unsigned int id, CVCFaceList*& faces, CVCPointList*& points);
    /// By place among the valid channels of the kind.
    CUVWChannel* GetUVWChannelByIndex(int index, CUVWFaceList*& faces, CUVWPointList*& points);
    CVCChannel* GetVCChannelByIndex(int index, CVCFaceList*& faces, CVCPointList*& points);

    /// Removes and releases; each tells whether there was such a channel.
    bool RemoveChannel(CChannel* channel);
    bool RemoveChannelByID(unsigned int id, _Channel3DType typeMask);
    /// The channel that GetChannelByIndex selects, invalid ones counted.
    bool RemoveChannelByIndex(int index, _Channel3DType typeMask);
    /// Removes the channels of the mask; with a flag other than 0 only those where IsFlagSet(flag) is `wanted`. Returns how
    /// many went.
    int RemoveChannels(unsigned int typeMask, unsigned int flag, bool wanted);
    /// Removes each channel that has all the bits, of whatever type; false for flag 0 or when none went.
    bool RemoveChannelsByFlag(_CHANNEL_PROPERTIES flag, _Channel3DType);

    /// Fills this array from another (options: _CHANNEL_COPY); without CHANNEL_COPY_APPEND it is emptied first. Returns the
    /// number added.
    int CopyChannels(const CDependentChannels& source, unsigned int typeMask, unsigned int options);
    /// Marks the channels of the mask stale.
    void Invalidate(unsigned int typeMask);
    void SetFlag(unsigned int typeMask, _CHANNEL_PROPERTIES flag, bool set);
    /// True when a channel changed; false for a matrix that is an identity by IsIdentity.
    bool MatrixTransform(const C4x4TMatrix<float>& matrix, unsigned int typeMask);
    bool SwapCoordinates(unsigned int code, unsigned int typeMask);
    /// CChannel::Weld on the channels of the mask; true when one changed.
    bool Weld(const CGeomInfo* info, double tolerance, unsigned int typeMask);

    /// CChannel::Clean on every channel; returns how many answered false. Defined in Clean.cpp.
    int CleanChannels(const CGeomInfo* info, CXArray<unsigned int, unsigned int>* faceMap, CXArray<unsigned int, unsigned int>* pointMap);

    /// Marks the source points where the valid UVW, colour and given normal channels break: POINT_SHARE_UV,
    /// POINT_VC_FRONTIER, POINT_NORMAL_BREAK. Defined in BreakFlags.cpp.
    ///
    /// @param uvTolerance      distance in texture space; 0 asks for equality
    /// @param colourTolerance  largest difference of a colour byte
    /// @param normalAngle      radians
    /// @return true when at least one channel was looked at
    bool InitBreakFlags(const CGeomInfo* info, unsigned int, float uvTolerance, int colourTolerance, float normalAngle);

    /// Count, then class and contents of each channel that cannot be recomputed. Loading replaces everything.
    void Serialize(CXArchive& ar);

protected:
    CDependentChannels() = default;
    ~CDependentChannels() override;

private:
    CChannel* FirstOrNew(_Channel3DType type);
    template <class REMOVE> int RemoveIf(REMOVE remove);
};
