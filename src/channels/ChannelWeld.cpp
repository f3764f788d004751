// Weld of a channel: join equal channel points that meet at one geometry point.
//
//   join    at each geometry point in turn: old channel point -> the one that stands for it
//   apply   the channel's corners
//   clean   the points that lost all corners

#include <cstdint>
#include <cstring>

#include "channels/Block.h"
#include "channels/Channel.h"
#include "geometry/FaceList.h"
#include "geometry/GeomInfo.h"
#include "geometry/PointList.h"
#include "tools/BlockVector.h"

namespace {

constexpr unsigned int NONE = 0xFFFFFFFF;

class CChannelWeld {
public:
    CChannelWeld(const CChannel& channel, const CPointList& points, double tolerance)
        : m_channel(channel), m_points(points), m_tolerance(tolerance), m_map(points.GetSize(), NONE), m_met(points.GetSize(), NONE)
    {
    }

    void Join(unsigned int geometryPoint, const _ChannelConnectionInfo* items, int count)
    {
        Gather(geometryPoint, items, count);
        if (m_tolerance == 0 && m_candidates.size() > MANY)
            JoinEqual();
        else
            JoinPairs();
    }

    bool HasJoined() const { return m_joined; }
    /// Old channel point -> the one that stands for it; 0xFFFFFFFF where it stays.
    const CBlock<unsigned int>& Finish()
    {
        for (unsigned int i = 0; i < m_map.GetSize(); i++)
            if (m_map[i] != NONE)
                m_map[i] = Root(i);
        return m_map;
    }

private:
    static constexpr std::size_t MANY = 8;    // candidates from which a table beats comparing them all

    /// The distinct candidates in the order met. A point that was joined elsewhere is met as what stands for it: without
    /// that two points could each be sent to the other.
    void Gather(unsigned int geometryPoint, const _ChannelConnectionInfo* items, int count)
    {
        m_candidates.clear();
        for (int i = 0; i < count; i++) {
            if (static_cast<unsigned int>(items[i].channelPoint) >= m_map.GetSize())
                continue;    // a shared graph may be older than the point list
            const unsigned int point = Root(items[i].channelPoint);
            if (m_met[point] == geometryPoint || Point(point)->IsOneFlagSet(POINT_INVALID | POINT_UNSET))
                continue;
            m_met[point] = geometryPoint;
            m_candidates.push_back(point);
        }
    }

    void JoinPairs()
    {
        for (std::size_t a = 0; a + 1 < m_candidates.size(); a++) {
            std::size_t kept = a + 1;
            for (std::size_t b = a + 1; b < m_candidates.size(); b++)
                if (Equal(m_candidates[a], m_candidates[b]))
                    Send(m_candidates[b], m_candidates[a]);
                else
                    m_candidates[kept++] = m_candidates[b];
            m_candidates.resize(kept);
        }
    }

    /// The same result for exact equality, through a table of the first points met.
    void JoinEqual()
    {
        std::size_t size = 16;
        while (size < 2 * m_candidates.size())
            size *= 2;
        m_table.assign(size, NONE);
        for (const unsigned int candidate : m_candidates) {
            if (!Equal(candidate, candidate))
                continue;    // not a number: equal to nothing
            std::size_t slot = Hash(candidate) & (size - 1);
            while (m_table[slot] != NONE && !Equal(m_table[slot], candidate))
                slot = (slot + 1) & (size - 1);
            if (m_table[slot] == NONE)
                m_table[slot] = candidate;
            else
                Send(candidate, m_table[slot]);
        }
    }

    std::uint64_t Hash(unsigned int point) const
    {
        C4DPoint value;
        Point(point)->To4DPoint(value);
        std::uint64_t hash = 0;
        for (int i = 0; i < value.dimension; i++) {
            const double coordinate = value.values[i] + 0.0;    // -0 equals 0
            std::uint64_t bits;
            std::memcpy(&bits, &coordinate, sizeof bits);
            hash = (hash ^ bits) * 0x9E3779B97F4A7C15u;
            hash ^= hash >> 32;
        }
        return hash;
    }

    bool Equal(unsigned int a, unsigned int b) const { return m_channel.Compare(Point(a), Point(b), m_tolerance); }
    const CPt* Point(unsigned int index) const { return m_points.ElementAt(index); }
    void Send(unsigned int point, unsigned int to)
    {
        m_map[point] = to;
        m_joined = true;
    }
    unsigned int Root(unsigned int point)
    {
        unsigned int root = point;
        while (m_map[root] != NONE)
            root = m_map[root];
        while (point != root) {
            const unsigned int next = m_map[point];
            m_map[point] = root;
            point = next;
        }
        return root;
    }

    const CChannel& m_channel;
    const CPointList& m_points;
    const double m_tolerance;
    bool m_joined = false;
    CBlock<unsigned int> m_map;
    CBlock<unsigned int> m_met;    ///< the geometry point that met a channel point last
    CBlockVector<unsigned int> m_candidates;
    CBlockVector<unsigned int> m_table;
};

}    // namespace

bool CChannel::Weld(const CGeomInfo* info, double tolerance)
{
    const CPointList* source = info ? info->GetSrcPointList() : nullptr;
    if (!source || !m_pointList || !m_faceList || IsOneFlagSet(CHANNEL_INVALID | CHANNEL_UNFOLLOWED))
        return false;
    if (!(tolerance >= 0 && tolerance <= 1))
        tolerance = 0;

    InitGraph(info);
    CChannelWeld weld(*this, *m_pointList, tolerance);
    for (int point = 0; point < source->GetSize(); point++) {
        int count;
        const _ChannelConnectionInfo* items = GetChannelPointsConnectedToPoint(point, count);
        if (count > 1)
            weld.Join(point, items, count);
    }
    if (weld.HasJoined()) {
        const CBlock<unsigned int>& map = weld.Finish();
        m_faceList->UpdateIndex(map.GetData(), static_cast<unsigned int>(map.GetSize()), false);
        m_faceList->SetFlag(FACELIST_CHANGED, true);
        Clean(info, nullptr, nullptr);
    }
    DeleteGraph();
    return weld.HasJoined();
}
