// Weld: join points whose grid cells touch.
//
//   plan     old point -> the point that it becomes; touches nothing, so that stopping is free
//   apply    corners of live faces, or POINT_INVALID in a bare cloud of points
//   clean    once, at the end; then the channels join what is equal

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <unordered_map>

#include "channels/Block.h"
#include "channels/DependentChannels.h"
#include "geometry/3DPointList.h"
#include "geometry/GeomInfo.h"
#include "meshops/CellTable.h"
#include "scene/GeomObject.h"
#include "tools/BlockVector.h"
#include "tools/HashMix.h"
#include "windows/ProgressDlg.h"

namespace {

/// Which points take part, by their flags.
class CWeldConditions {
public:
    void Read(unsigned int count, va_list& pairs)
    {
        for (unsigned int i = 0; i < count; i++) {
            const unsigned int mask = va_arg(pairs, unsigned int);
            const unsigned int mode = va_arg(pairs, unsigned int);
            if (mask != 0 && mode != 0)
                m_pairs.push_back({mask, mode});
        }
    }
    /// Whether a point with these flags may be joined to another one, and whether it may take others.
    bool MayJoin(unsigned int flags) const { return !IsForbidden(flags, 1); }
    bool MayTake(unsigned int flags) const { return !IsForbidden(flags, 4); }

private:
    struct Pair {
        unsigned int mask, mode;
    };
    /// `with` is the mode's bit against points with the mask; the bit above is the one against those without it.
    bool IsForbidden(unsigned int flags, unsigned int with) const
    {
        for (const Pair& pair : m_pairs)
            if (pair.mode & (flags & pair.mask ? with : with << 1))
                return true;
        return false;
    }
    CBlockVector<Pair> m_pairs;
};

/// The plan. Told point by point it is this: each point i in order that nobody has taken yet becomes a source; it takes each point j of its
/// cell and of those around that is free, and from another source r it takes j over when |j - i| < |r - i|. A source keeps itself.
///
/// What a source does to one point does not depend on the others, so the sources come first and the points after:
///
///   pass 1   a point is a source unless its surroundings hold one already. Then all in these surroundings are taken: a cell holds one
///            source at most, and no two of them touch, unless points that must not be joined become sources one by one
///   pass 2   points with one source around go to it, at no cost, however many lie in a cell. The others go through theirs in order
class CWeldPlan {
public:
    CWeldPlan(const C3DPointList& list, const CWeldConditions& conditions)
        : m_points(list.GetFirst()), m_count(list.GetSize()), m_conditions(conditions), m_cells(static_cast<std::size_t>(m_count)),
          m_target(static_cast<std::size_t>(m_count))
    {
    }

    /// False when the user stops.
    bool Build(const CIntCoordMap& grid, CProgressDlg& progress)
    {
        const int step = std::max(m_count / 200, 10000);
        int next = step;
        const bool finished = ForCellsOfPoints(
            grid, m_cells, m_points, m_count,
            [&](int point, bool inGrid, const Cell& cell, std::uint32_t hash) { Enter(point, inGrid, cell, hash); },
            [&](int done) {
                if (done < next)
                    return true;
                next += step;
                progress.SetPos(done, false);
                return !progress.CheckCancelButton();
            });
        if (!finished || progress.CheckCancelButton())    // a small list asks here alone
            return false;
        Resolve();
        return true;
    }

    bool HasMerges() const { return m_merges; }
    /// Old point -> the point that it becomes, itself for one that stays.
    const CBlock<unsigned int>& GetTargets() const { return m_target; }

private:
    using Cell = CIntCoordMap::Cell;
    static constexpr unsigned int NONE = 0x7FFFFFFF;     ///< above all points
    static constexpr unsigned int STAYS = 0x80000000;    ///< between the passes, above all cells
    static constexpr std::size_t MANY = 16;

    struct CellState {
        unsigned int first;      ///< lowest source in the surroundings
        unsigned int several;    ///< there are others
        unsigned int own;        ///< chain of the sources in the cell itself, the last one first
    };
    struct Source {
        unsigned int point;
        unsigned int next;    ///< in the same cell, or NONE
    };
    using Table = CCellTable<CellState>;

    // Pass 1

    void Enter(int point, bool inGrid, const Cell& cell, std::uint32_t hash)
    {
        m_target[point] = STAYS;
        if (!inGrid)
            return;    // not finite: near to nothing
        bool added;
        const unsigned int entry = m_cells.Insert(cell, hash, {NONE, false, NONE}, added);
        m_around.clear();
        if (added)
            MeetSources(entry);
        const unsigned int flags = m_points[point].flags;
        if (m_cells[entry].value.first != NONE && m_conditions.MayJoin(flags))
            m_target[point] = entry;
        else if (m_conditions.MayTake(flags))
            AddSource(static_cast<unsigned int>(point), entry);
    }

    /// The cells around that are there, the cell itself among them.
    void Gather(unsigned int entry)
    {
        m_around.clear();
        m_cells.ForSurroundings(m_cells[entry].cell, [&](unsigned int near) { m_around.push_back(near); });
    }

    void MeetSources(unsigned int entry)
    {
        Gather(entry);
        for (const unsigned int near : m_around)
            for (unsigned int source = m_cells[near].value.own; source != NONE; source = m_sources[source].next) {
                AddTo(m_cells[entry].value, m_sources[source].point);
                if (m_cells[entry].value.several)
                    break;    // the chain's end may be lower, but `first` of several is not looked at
            }
    }

    void AddSource(unsigned int point, unsigned int entry)
    {
        unsigned int& own = m_cells[entry].value.own;
        if (own == NONE || m_sources[own].next == NONE) {    // the third one tells no cell anything new
            if (m_around.empty())
                Gather(entry);
            for (const unsigned int near : m_around)
                AddTo(m_cells[near].value, point);
        }
        m_sources.push_back({point, own});
        own = static_cast<unsigned int>(m_sources.size() - 1);
    }

    static void AddTo(CellState& state, unsigned int source)
    {
        state.several = state.first != NONE;
        state.first = std::min(state.first, source);
    }

    // Pass 2

    void Resolve()
    {
        for (int i = 0; i < m_count; i++) {
            unsigned int& target = m_target[i];
            if (target == STAYS) {
                target = static_cast<unsigned int>(i);
                continue;
            }
            const CellState& state = m_cells[target].value;
            target = state.several ? FindOwner(i, target) : state.first;
            m_merges = true;
        }
    }

    /// The sources around a cell, ascending: a length, then so many points.
    const unsigned int* GetSources(unsigned int entry)
    {
        if (m_lists.GetSize() == 0)
            m_lists = CBlock<std::size_t>(m_cells.GetCount(), 0);
        if (m_lists[entry] == 0)
            m_lists[entry] = MakeList(entry);
        return &m_pool[m_lists[entry]];
    }
    std::size_t MakeList(unsigned int entry)
    {
        CBlockVector<unsigned int>& list = m_scratch;
        list.clear();
        m_cells.ForSurroundings(m_cells[entry].cell, [&](unsigned int near) {
            for (unsigned int source = m_cells[near].value.own; source != NONE; source = m_sources[source].next)
                list.push_back(m_sources[source].point);
        });
        std::sort(list.begin(), list.end());
        // A source at the place of the one before it takes nothing that this one has not taken.
        list.erase(std::unique(list.begin(), list.end(), [&](unsigned int a, unsigned int b) { return m_points[a] == m_points[b]; }),
                   list.end());
        const std::size_t at = m_pool.size();
        m_pool.push_back(static_cast<unsigned int>(list.size()));
        m_pool.insert(m_pool.end(), list.begin(), list.end());
        return at;
    }

    unsigned int FindOwner(int point, unsigned int entry)
    {
        const unsigned int* sources = GetSources(entry);
        const std::size_t count = *sources++;
        if (count <= MANY)
            return FindOwner(m_points[point], sources, count);
        // Points at one place share their fate.
        const auto [known, added] = m_owners.try_emplace(Place(m_points[point], entry), NONE);
        if (added)
            known->second = FindOwner(m_points[point], sources, count);
        return known->second;
    }
    unsigned int FindOwner(const C3DTPoint<float>& place, const unsigned int* sources, std::size_t count) const
    {
        unsigned int owner = sources[0];
        for (std::size_t k = 1; k < count; k++)
            if (Distance2(place, m_points[sources[k]]) < Distance2(m_points[owner], m_points[sources[k]]))
                owner = sources[k];
        return owner;
    }
    static double Distance2(const C3DTPoint<float>& a, const C3DTPoint<float>& b)
    {
        const float dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
        return dx * dx + dy * dy + dz * dz;
    }

    struct Place {
        Place(const C3DTPoint<float>& point, unsigned int cell) : x(Bits(point.x)), y(Bits(point.y)), z(Bits(point.z)), entry(cell) {}
        bool operator==(const Place&) const = default;
        static std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

        std::uint32_t x, y, z;
        unsigned int entry;
    };
    struct PlaceHash {
        std::size_t operator()(const Place& place) const
        {
            return HashMix64(HashMix64(std::uint64_t{place.x} << 32 | place.y) ^ (std::uint64_t{place.z} << 32 | place.entry));
        }
    };

    const C3DTPoint<float>* m_points;
    int m_count;
    const CWeldConditions& m_conditions;
    Table m_cells;
    CBlockVector<Source> m_sources;
    CBlock<unsigned int> m_target;    ///< after pass 1 the cell of a point that will be joined, or STAYS
    bool m_merges = false;

    CBlock<std::size_t> m_lists;    ///< by cell: where its list is; 0 for none yet
    CBlockVector<unsigned int> m_pool{0};
    std::unordered_map<Place, unsigned int, PlaceHash> m_owners;
    CBlockVector<unsigned int> m_around, m_scratch;
};

/// True when a corner moved, or a point of a cloud goes.
bool Apply(const CBlock<unsigned int>& targets, C3DPointList& points, C3DFaceList* faces)
{
    const unsigned int count = static_cast<unsigned int>(targets.GetSize());
    if (faces) {
        const bool changed = faces->UpdateIndex(targets.GetData(), count, true);
        if (changed)
            faces->SetFlag(FACELIST_CHANGED, true);
        return changed;
    }
    bool changed = false;
    for (unsigned int i = 0; i < count; i++) {
        if (targets[i] == i)
            continue;
        points.ElementAt(static_cast<int>(i))->SetFlag(POINT_INVALID, true);
        changed = true;
    }
    return changed;
}

}    // namespace

bool C3DGeomObject::Weld3DPoints(double tolerance, bool absolute, unsigned int channelTypes, unsigned int conditions, ...)
{
    if (!m_points)
        return false;
    CWeldConditions rules;
    va_list pairs;
    va_start(pairs, conditions);
    rules.Read(tolerance != 0 ? conditions : 0, pairs);
    va_end(pairs);

    CProgressDlg progress(L"Merging...");
    progress.SetStatus(L"Merging confused points");
    progress.SetRange(0, m_points->GetSize());

    bool changed = false;
    {
        CWeldPlan plan(*m_points, rules);
        if (!plan.Build(CIntCoordMap::ForPoints(*m_points, tolerance, absolute), progress))
            return false;
        changed = plan.HasMerges() && Apply(plan.GetTargets(), *m_points, m_faces);
    }
    if (changed)
        Clean();

    const CGeomInfo info(this);
    changed |= m_channels->Weld(&info, 0.0, channelTypes);
    CleanChannels(0xFFFFFFFF, true);
    if (changed)
        Invalidate(CHANGE_POINTS | CHANGE_FACES, true);
    return changed;
}
