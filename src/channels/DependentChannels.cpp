#include "channels/DependentChannels.h"

#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "channels/SpecNormalChannel.h"
#include "channels/UVWChannel.h"
#include "channels/VCChannel.h"
#include "geometry/4x4Matrix.h"
#include "geometry/StreamLimits.h"

// Every query here accepts a null `this`; nothing may move into the header.

using Channels = CXArray<CChannel*, CChannel*>;

static bool IsOfType(CChannel* channel, unsigned int typeMask) { return (channel->GetType() & typeMask) != 0; }

static bool IsPassedOver(CChannel* channel, bool skipInvalid) { return skipInvalid && channel->IsFlagSet(CHANNEL_INVALID); }

CDependentChannels* CDependentChannels::Create() { return new CDependentChannels; }

CDependentChannels::~CDependentChannels() { RemoveAll(); }

CDependentChannels& CDependentChannels::operator=(CDependentChannels& source)
{
    CopyChannels(source, CHANNEL_ALL, CHANNEL_COPY_KEEP_ID);
    return *this;
}

int CDependentChannels::GetSize() const { return this ? Channels::GetSize() : 0; }

int CDependentChannels::AddChannel(CChannel* channel) { return this && channel ? Add(channel) : -1; }

void CDependentChannels::RemoveAll()
{
    if (!this)
        return;
    for (CChannel* channel : *this)
        DeleteMe(channel);
    Channels::RemoveAll();
}

// Queries

CChannel* CDependentChannels::GetChannelByID(unsigned int id, _Channel3DType type)
{
    for (int i = 0; i < GetSize(); i++) {
        CChannel* channel = GetAt(i);
        if (channel->GetChannelID() == id && (type == CHANNEL_ANY || channel->GetType() == type))
            return channel;
    }
    return nullptr;
}

CChannel* CDependentChannels::GetChannelByIndex(int index, unsigned int typeMask, bool skipInvalid)
{
    if (index < 0)
        return nullptr;
    if (typeMask == 0) {
        CChannel* channel = index < GetSize() ? GetAt(index) : nullptr;
        return channel && !IsPassedOver(channel, skipInvalid) ? channel : nullptr;
    }
    for (int i = 0; i < GetSize(); i++) {
        CChannel* channel = GetAt(i);
        if (IsOfType(channel, typeMask) && !IsPassedOver(channel, skipInvalid) && index-- == 0)
            return channel;
    }
    return nullptr;
}

/// The channel under its own class, and its lists under theirs.
template <class CHANNEL, class FACES, class POINTS> static CHANNEL* HandOut(CChannel* channel, FACES*& faces, POINTS*& points)
{
    // C-style casts: the list classes are only named here
    faces = channel ? (FACES*)channel->GetFaceList() : nullptr;
    points = channel ? (POINTS*)channel->GetPointList() : nullptr;
    return static_cast<CHANNEL*>(channel);
}

CChannel* CDependentChannels::GetChannelByID(unsigned int id, CFaceList*& faces, CPointList*& points, _Channel3DType type)
{
    return HandOut<CChannel>(GetChannelByID(id, type), faces, points);
}

CChannel* CDependentChannels::GetChannelByIndex(int index, CFaceList*& faces, CPointList*& points, _Channel3DType typeMask)
{
    return HandOut<CChannel>(GetChannelByIndex(index, typeMask, true), faces, points);
}

CUVWChannel* CDependentChannels::GetUVWChannelByID(unsigned int id, CUVWFaceList*& faces, CUVWPointList*& points)
{
    return HandOut<CUVWChannel>(GetChannelByID(id, CHANNEL_UVW), faces, points);
}

CVCChannel* CDependentChannels::GetVCChannelByID(unsigned int id, CVCFaceList*& faces, CVCPointList*& points)
{
    return HandOut<CVCChannel>(GetChannelByID(id, CHANNEL_VC), faces, points);
}

CUVWChannel* CDependentChannels::GetUVWChannelByIndex(int index, CUVWFaceList*& faces, CUVWPointList*& points)
{
    return HandOut<CUVWChannel>(GetChannelByIndex(index, CHANNEL_UVW, true), faces, points);
}

CVCChannel* CDependentChannels::GetVCChannelByIndex(int index, CVCFaceList*& faces, CVCPointList*& points)
{
    return HandOut<CVCChannel>(GetChannelByIndex(index, CHANNEL_VC, true), faces, points);
}

CSpecNormalChannel* CDependentChannels::GetSpecNormalChannel()
{
    return static_cast<CSpecNormalChannel*>(GetChannelByIndex(0, CHANNEL_SPEC_NORMAL, true));
}

CSpecNormalChannel* CDependentChannels::GetSpecNormalChannel(CNormalFaceList*& faces, C3DVectorList*& vectors)
{
    return HandOut<CSpecNormalChannel>(GetSpecNormalChannel(), faces, vectors);
}

CFaceNormalChannel* CDependentChannels::GetFaceNormalChannel() { return static_cast<CFaceNormalChannel*>(FirstOrNew(CHANNEL_FACE_NORMAL)); }

CPointNormalChannel* CDependentChannels::GetPointNormalChannel()
{
    return static_cast<CPointNormalChannel*>(FirstOrNew(CHANNEL_POINT_NORMAL));
}

CChannel* CDependentChannels::FirstOrNew(_Channel3DType type)
{
    if (!this)
        return nullptr;
    CChannel* channel = GetChannelByIndex(0, type, true);
    if (!channel) {
        channel = CChannel::Create(type, NO_CHANNEL_ID);
        AddChannel(channel);
    }
    return channel;
}

int CDependentChannels::GetChannelIndex(unsigned int id, _Channel3DType type, bool skipInvalid)
{
    int index = 0;
    for (int i = 0; i < GetSize(); i++) {
        CChannel* channel = GetAt(i);
        if (channel->GetType() != type || IsPassedOver(channel, skipInvalid))
            continue;
        if (channel->GetChannelID() == id)
            return index;
        index++;
    }
    return -1;
}

_Channel3DType CDependentChannels::GetChannelType(int index)
{
    return index >= 0 && index < GetSize() ? GetAt(index)->GetType() : CHANNEL_ANY;
}

int CDependentChannels::GetChannels(unsigned int typeMask, CXArray<unsigned int, unsigned int>& positions, bool skipInvalid) const
{
    positions.RemoveAll();
    for (int i = 0; i < GetSize(); i++)
        if (IsOfType(GetAt(i), typeMask) && !IsPassedOver(GetAt(i), skipInvalid))
            positions.Add(i);
    return positions.GetSize();
}

int CDependentChannels::GetChannelsNumber(unsigned int typeMask, bool skipInvalid)
{
    int count = 0;
    for (int i = 0; i < GetSize(); i++)
        count += IsOfType(GetAt(i), typeMask) && !IsPassedOver(GetAt(i), skipInvalid);
    return count;
}

// Removal

/// Removes the channels for which `remove` answers true, in one pass; returns how many went.
template <class REMOVE> int CDependentChannels::RemoveIf(REMOVE remove)
{
    int kept = 0;
    const int size = GetSize();
    for (int i = 0; i < size; i++) {
        CChannel* channel = GetAt(i);
        if (remove(channel))
            DeleteMe(channel);
        else
            SetAt(kept++, channel);
    }
    if (kept != size)
        SetSize(kept);
    return size - kept;
}

bool CDependentChannels::RemoveChannel(CChannel* channel)
{
    for (int i = 0; i < GetSize(); i++) {
        if (GetAt(i) != channel)
            continue;
        RemoveAt(i);
        DeleteMe(channel);
        return true;
    }
    return false;
}

bool CDependentChannels::RemoveChannelByID(unsigned int id, _Channel3DType typeMask)
{
    for (int i = 0; i < GetSize(); i++)
        if (GetAt(i)->GetChannelID() == id && IsOfType(GetAt(i), typeMask))
            return RemoveChannel(GetAt(i));
    return false;
}

bool CDependentChannels::RemoveChannelByIndex(int index, _Channel3DType typeMask)
{
    CChannel* channel = GetChannelByIndex(index, typeMask, false);
    return channel && RemoveChannel(channel);
}

int CDependentChannels::RemoveChannels(unsigned int typeMask, unsigned int flag, bool wanted)
{
    return RemoveIf([=](CChannel* channel) { return IsOfType(channel, typeMask) && (flag == 0 || channel->IsFlagSet(flag) == wanted); });
}

bool CDependentChannels::RemoveChannelsByFlag(_CHANNEL_PROPERTIES flag, _Channel3DType)
{
    return flag != 0 && RemoveIf([=](CChannel* channel) { return channel->IsFlagSet(flag); }) > 0;
}

// Operations on several channels

int CDependentChannels::CopyChannels(const CDependentChannels& source, unsigned int typeMask, unsigned int options)
{
    if (!this)
        return 0;
    const auto isWanted = [=](CChannel* channel) {
        if (!IsOfType(channel, typeMask) || IsPassedOver(channel, options & CHANNEL_COPY_SKIP_INVALID))
            return false;
        const bool follows = !channel->IsFlagSet(CHANNEL_UNFOLLOWED) && !IsOfType(channel, CHANNEL_POINT_NORMAL | CHANNEL_FACE_NORMAL);
        return follows || !(options & CHANNEL_COPY_SKIP_UNFOLLOWED);
    };

    Channels added;    // first, since the source may be this array
    for (int i = 0; i < source.GetSize(); i++) {
        CChannel* channel = source.GetAt(i);
        if (!isWanted(channel))
            continue;
        if (options & CHANNEL_COPY_SHARE)
            channel->AddRef();
        added.Add(options & CHANNEL_COPY_SHARE ? channel : channel->Copy(options));
    }
    if (!(options & CHANNEL_COPY_APPEND))
        RemoveAll();
    Append(added);
    return added.GetSize();
}

void CDependentChannels::Invalidate(unsigned int typeMask) { SetFlag(typeMask, CHANNEL_STALE, true); }

void CDependentChannels::SetFlag(unsigned int typeMask, _CHANNEL_PROPERTIES flag, bool set)
{
    for (int i = 0; i < GetSize(); i++)
        if (IsOfType(GetAt(i), typeMask))
            GetAt(i)->SetFlag(flag, set);
}

bool CDependentChannels::MatrixTransform(const C4x4TMatrix<float>& matrix, unsigned int typeMask)
{
    if (matrix.IsIdentity())
        return false;
    bool changed = false;
    for (int i = 0; i < GetSize(); i++)
        if (IsOfType(GetAt(i), typeMask))
            changed |= GetAt(i)->MatrixTransform(matrix);
    return changed;
}

bool CDependentChannels::SwapCoordinates(unsigned int code, unsigned int typeMask)
{
    bool changed = false;
    for (int i = 0; code != 0 && i < GetSize(); i++)
        if (IsOfType(GetAt(i), typeMask))
            changed |= GetAt(i)->SwapCoordinates(code);
    return changed;
}

bool CDependentChannels::Weld(const CGeomInfo* info, double tolerance, unsigned int typeMask)
{
    bool changed = false;
    for (int i = 0; i < GetSize(); i++)
        if (IsOfType(GetAt(i), typeMask))
            changed |= GetAt(i)->Weld(info, tolerance);
    return changed;
}

// Stream

/// Class, type, flags, id and two presence words, at the least.
constexpr unsigned int SMALLEST_CHANNEL = 21;

void CDependentChannels::Serialize(CXArchive& ar)
{
    if (ar.IsStoring()) {
        unsigned int count = 0;
        for (int i = 0; i < GetSize(); i++)
            count += !GetAt(i)->CanBeRecomputed();
        if (count > MOST_STORED_CHANNELS)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT, L"an object has more channels than a stream can hold");
        ar.WriteCount(count);
        for (int i = 0; i < GetSize(); i++) {
            if (GetAt(i)->CanBeRecomputed())
                continue;
            ar.WriteClass(GetAt(i)->GetRuntimeClassDescriptor());
            GetAt(i)->Serialize(ar);
        }
        return;
    }

    RemoveAll();
    const std::uint64_t count = ar.ReadCount(SMALLEST_CHANNEL);
    if (count > MOST_STORED_CHANNELS)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT, L"number of channels");
    for (std::uint64_t i = 0; i < count; i++) {
        const CXRuntimeClass* type = ar.ReadClass(CChannel::GetThisRuntimeClassDescriptor());
        CXObject* object = type ? type->CreateObject() : nullptr;
        if (!object)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS, L"class of a channel");
        AddChannel(static_cast<CChannel*>(object));    // at once: a damaged stream must not lose it
        GetAt(static_cast<int>(i))->Serialize(ar);
    }
}
