#pragma once

#include <memory>
#include <vector>

#include "tools/Array.h"
#include "tools/CustomData.h"
#include "tools/Hash.h"
#include "tools/Object.h"

class CFaceList;
class CGeomInfo;
class CPointList;
class CPt;
template <class T> class C4x4TMatrix;

/// Kinds of channel, one bit each; kinds combine into masks.
enum _Channel3DType : int {
    CHANNEL_ANY = 0,    ///< no kind; as an argument, any
    CHANNEL_UVW = 1,    ///< texture coordinates
    CHANNEL_VC = 4,     ///< vertex colours
    CHANNEL_WEIGHT = 8,
    CHANNEL_POINT_NORMAL = 16,    ///< smoothed normals, worked out
    CHANNEL_FACE_NORMAL = 32,     ///< one normal a face, worked out
    CHANNEL_SPEC_NORMAL = 64,     ///< normals that were given
    CHANNEL_ALL = 0xFFFF,
};

/// Flags of a channel.
enum _CHANNEL_PROPERTIES : unsigned int {
    CHANNEL_INVALID = 0x1,        ///< out of step with the geometry; to be removed
    CHANNEL_DERIVED = 0x2,        ///< the data can be worked out from the geometry (of given normals the computed ones)
    CHANNEL_STALE = 0x4,          ///< the data must be worked out before use
    CHANNEL_UNFOLLOWED = 0x8,     ///< corner removal in the geometry does not reach this channel; not welded
    CHANNEL_SKIP_UNSET = 0x10,    ///< the channel graph leaves out points with POINT_UNSET
};

/// Options of CChannel::Copy and CDependentChannels::CopyChannels.
enum _CHANNEL_COPY : unsigned int {
    CHANNEL_COPY_KEEP_ID = 1,
    CHANNEL_COPY_SKIP_INVALID = 2,
    CHANNEL_COPY_APPEND = 4,
    CHANNEL_COPY_NO_DATA = 8,
    CHANNEL_COPY_SKIP_UNFOLLOWED = 16,    ///< and the point and face normal channels
    CHANNEL_COPY_SHARE = 32,
};

constexpr unsigned int NO_CHANNEL_ID = 0xFFFFFFFF;

/// Item of a channel graph: a channel point and the geometry face that uses it at some geometry point.
struct _ChannelConnectionInfo {
    int channelPoint;
    int face;
};

/// Layer of per-corner data over the faces of a geometric object.
///
/// Channel face i belongs to geometry face i and corner k to corner k; indices point into the channel's own point list,
/// whose points are values. A geometry face without data keeps its place as a face with FACE_EMPTY and no corners. Two
/// forms have no face list: in a face normal channel point i belongs to geometry face i, in a points-only weight channel to
/// geometry point i.
///
/// Reference counted: a new channel belongs to its maker, who passes it on (AddChannel) or drops it with DeleteMe. A channel
/// owns one reference on each of its lists. Not thread-safe.
class ZEL_API CChannel : public CXObject, public CInstanciatedObject {
    ZEL_DECLARE_DYNAMIC(CChannel)
public:
    /// A new channel of that kind with empty lists; null for what is not exactly one kind. NO_CHANNEL_ID asks for a new
    /// id. A weight channel comes in its points-only form.
    static CChannel* Create(_Channel3DType type, unsigned int id);
    /// The next id of the process, from 10000 on; never NO_CHANNEL_ID. When the last channel dies the count starts anew.
    static unsigned int CreateID();

    /// Type, flags, id, lists (each behind a presence word), custom data. Loading checks the kind of the channel, of its
    /// points and that its corners lie inside them. A channel with CHANNEL_DERIVED comes out stale, and the id counter moves
    /// past the id.
    void Serialize(CXArchive& ar) override;
    /// Exchanges and mirrors axes by a code of GetXYZSwap. True when the data changed.
    virtual bool SwapCoordinates(unsigned int code);
    virtual bool MatrixTransform(const C4x4TMatrix<float>& matrix);

    // Clean.cpp

    /// True when Clean is to repair degenerate faces of the channel's own list.
    virtual bool CleanRemoveDuplicateIndex();
    /// Follows a clean of the geometry and drops channel points without a corner.
    ///
    /// @param faceMap   old geometry face -> new one or 0xFFFFFFFF. Null, or of another size than the channel's face list:
    ///                  no geometry face went
    /// @param pointMap  the same for geometry points; only a channel without face list looks at it
    /// @return true when the channel changed. False when there was nothing to do, and also, with CHANNEL_INVALID set, when
    ///         the face count differs from the geometry's
    virtual bool Clean(const CGeomInfo* info, CXArray<unsigned int, unsigned int>* faceMap, CXArray<unsigned int, unsigned int>* pointMap);

    // ChannelWeld.cpp

    /// Joins equal channel points that meet at one geometry point; the first one met survives and the others go.
    ///
    /// @param tolerance  0..1, read by Compare; anything else counts as 0, which asks for exact equality
    /// @return true when points were joined
    ///
    /// Cost: linear in the corners, plus for a tolerance above 0 the square of the distinct channel points of each
    /// geometry point.
    virtual bool Weld(const CGeomInfo* info, double tolerance);
    /// Whether two points of this channel's kind count as equal. With tolerance 0, points that do have equal coordinates:
    /// Weld finds them by these.
    virtual bool Compare(const CPt* a, const CPt* b, double tolerance) const;

    // Channel.cpp

    /// True when the channel need not be stored: it is rebuilt on demand.
    virtual bool CanBeRecomputed();
    /// A new channel of the same class and form, with a new id; with `inherit` after Inherit, without it as constructed.
    virtual CChannel* Duplicate(bool inherit) const = 0;
    /// Duplicate, custom data and, unless CHANNEL_COPY_NO_DATA, the lists' contents; CHANNEL_COPY_KEEP_ID keeps the id.
    CChannel* Copy(unsigned int options) const;
    /// Takes flags (derived data comes out stale) and the lists' chunk structure, no elements.
    void Inherit(const CChannel& source);

    unsigned int GetChannelID() const { return m_id; }
    /// NO_CHANNEL_ID takes a new id.
    void SetChannelID(unsigned int id);
    _Channel3DType GetType() const { return m_type; }
    /// Name of the kind in the language in force.
    CXTString<wchar_t> GetTypeString() const;
    CCustomData& GetCustomData() { return m_customData; }
    const CCustomData& GetCustomData() const { return m_customData; }

    CPointList* GetPointList() const { return m_pointList; }
    CFaceList* GetFaceList() const { return m_faceList; }
    /// Stores a list of the class that belongs to the kind, and takes the caller's reference. The old one is released with
    /// `deleteOld`, else it is the caller's. Nothing happens when the list is the one held. The type is not looked at.
    void SetPointList(_Channel3DType type, CPointList* list, bool deleteOld);
    void SetFaceList(_Channel3DType type, CFaceList* list, bool deleteOld);
    void FreeExtra();

    /// All bits of the mask.
    bool IsFlagSet(unsigned int mask) const { return (m_flags & mask) == mask; }
    /// Any bit of the mask.
    bool IsOneFlagSet(unsigned int mask) const { return (m_flags & mask) != 0; }
    void SetFlag(_CHANNEL_PROPERTIES flag, bool set) { m_flags = set ? m_flags | flag : m_flags & ~static_cast<unsigned int>(flag); }
    unsigned int GetFlags() const { return m_flags; }

    // ChannelGraph.cpp

    /// Builds the graph from geometry points to channel points, or joins the one that is there. Pairs with DeleteGraph.
    ///
    /// A change of the geometry's or of the channel's face list, seen by its stamp, has the next InitGraph build afresh.
    /// Corners whose point or channel point does not exist are left out. Cost: two walks over the corners.
    void InitGraph(const CGeomInfo* info);
    /// The last of the users frees the graph; without users nothing happens.
    void DeleteGraph();
    /// The channel point of a geometry point at a geometry face; null when the graph holds none.
    CPt* GetChannelPointIndex(int face, int point);
    /// The channel points at a geometry point, ascending by face and in a face by corner; null and 0 for none. They belong
    /// to the graph and live until it changes.
    _ChannelConnectionInfo* GetChannelPointsConnectedToPoint(int point, int& count);
    /// The same; `references` is the number of corners that geometry faces without FACE_INVALID have at the point. Where
    /// it exceeds `count`, some corner has no data. 0 when there is no item.
    _ChannelConnectionInfo* GetChannelPointsConnectedToPoint(int point, int& count, int& references);

protected:
    /// Takes the caller's reference on the lists, which may be null.
    CChannel(_Channel3DType type, unsigned int id, unsigned int flags, CPointList* points, CFaceList* faces);
    CChannel(const CChannel&) = delete;
    CChannel& operator=(const CChannel&) = delete;
    ~CChannel() override;

    void CreateGraph(const CGeomInfo* info);

private:
    struct Graph;

    void Store(CXArchive& ar);
    void Load(CXArchive& ar);
    void LoadFaces(CXArchive& ar);
    void LoadPoints(CXArchive& ar);
    bool CleanFaces(const CXArray<unsigned int, unsigned int>* faceMap);
    bool CleanCornerPoints();
    bool CleanParallelPoints(const CXArray<unsigned int, unsigned int>* pointMap);

    unsigned int m_id;
    const _Channel3DType m_type;
    unsigned int m_flags;
    CPointList* m_pointList;
    CFaceList* m_faceList;
    CCustomData m_customData;
    std::unique_ptr<Graph> m_graph;      ///< null while empty
    unsigned int m_geometryStamp = 0;    ///< of the geometry's face list when the graph was built
    unsigned int m_channelStamp = 0;     ///< of the channel's face list when the graph was built
    unsigned int m_graphUsers = 0;
};

/// Names a channel: id and type.
class CChannelInfo {
public:
    CChannelInfo(unsigned int id, _Channel3DType type) : m_id(id), m_type(type) {}
    /// NO_CHANNEL_ID and CHANNEL_ANY for null.
    explicit CChannelInfo(CChannel* channel)
        : m_id(channel ? channel->GetChannelID() : NO_CHANNEL_ID), m_type(channel ? channel->GetType() : CHANNEL_ANY)
    {
    }

    unsigned int GetChannelID() const { return m_id; }
    _Channel3DType GetType() const { return m_type; }
    bool operator==(const CChannelInfo& other) const = default;
    unsigned int GetHash() const { return (m_id + static_cast<unsigned int>(m_type)) << 4; }

private:
    unsigned int m_id;
    _Channel3DType m_type;
};

/// From channels as they were to the channels that took them in.
using CChannelMap = CHashMap<CChannelInfo, const CChannelInfo&, CChannelInfo>;
