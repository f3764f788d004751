#include "channels/HubSums.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>

void CHubSums::Add(int face, const C3DTVector<float>& unitNormal, const C3DTVector<float>& part)
{
    m_faces.push_back(face);
    m_normals.push_back(&unitNormal);
    const bool isUnit = IsNearlyUnit(unitNormal);
    for (int axis = 0; axis < 3; axis++) {
        m_normalAxes[axis].push_back(isUnit ? unitNormal[axis] : std::numeric_limits<float>::quiet_NaN());
        m_partAxes[axis].push_back(part[axis]);
    }
}

int CHubSums::Find(int face) const
{
    const auto found = std::lower_bound(m_faces.begin(), m_faces.end(), face);
    return found != m_faces.end() && *found == face ? static_cast<int>(found - m_faces.begin()) : -1;
}

bool CHubSums::Has(int face) const { return Find(face) >= 0; }

bool CHubSums::Get(int face, C3DTVector<float>& sum)
{
    m_sums.resize(m_faces.size());
    m_known.resize(m_faces.size() / BLOCK + 1, false);
    const int place = Find(face), block = place / BLOCK;
    if (!m_known[block])
        WorkOut(block);
    m_known[block] = true;
    sum = m_sums[place].vector;
    return m_sums[place].allAgree;
}

void CHubSums::WorkOut(int block)
{
    const int begin = block * BLOCK, count = static_cast<int>(m_faces.size()), end = std::min(begin + BLOCK, count);
    Group groups[GROUPS] = {};
    for (int i = begin; i < end; i++)
        for (int axis = 0; axis < 3; axis++) {
            groups[(i - begin) / LANES].normal[axis][i % LANES] = m_normalAxes[axis][i];
            groups[(i - begin) / LANES].sum[axis][i % LANES] = m_partAxes[axis][i];
        }
    AddOthers(groups, begin, 0, begin);
    for (int member = begin; member < end; member++)    // one at a time: none adds its own part again
        AddOthers(groups, begin, member, member + 1);
    AddOthers(groups, begin, end, count);
    for (int i = begin; i < end; i++) {
        const Group& group = groups[(i - begin) / LANES];
        const int lane = i % LANES;
        m_sums[i] = {C3DTVector<float>(group.sum[0][lane], group.sum[1][lane], group.sum[2][lane]), !group.outside[lane]};
    }
}

static bool IsAllSet(const auto& mask)
{
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(mask);
    return (halves[0] & halves[1]) == ~std::uint64_t{0};
}

// The faces from `first` up to `last`, to those of the block. A part that is left out counts as +0, which changes no sum: none of them is
// ever -0.
void CHubSums::AddOthers(Group (&groups)[GROUPS], int begin, int first, int last) const
{
    constexpr float DOUBT = 6e-6f;    // what the angle test leaves open, and what rounding to float adds
    const float low = static_cast<float>(m_angle.GetCosine()) - DOUBT, high = static_cast<float>(m_angle.GetCosine()) + DOUBT;
    const float* const normals[] = {m_normalAxes[0].data(), m_normalAxes[1].data(), m_normalAxes[2].data()};
    const float* const parts[] = {m_partAxes[0].data(), m_partAxes[1].data(), m_partAxes[2].data()};
    const int count = static_cast<int>(m_faces.size());
    const bool areMembers = first >= begin && first < begin + BLOCK;
    for (int other = first; other < last; other++) {
        Mask inside[GROUPS], outside[GROUPS], decided = ~Mask{};
        for (int g = 0; g < GROUPS; g++) {
            const Lanes cosine =
                groups[g].normal[0] * normals[0][other] + groups[g].normal[1] * normals[1][other] + groups[g].normal[2] * normals[2][other];
            inside[g] = cosine > high;
            outside[g] = cosine < low;
            decided &= inside[g] | outside[g];
        }
        if (areMembers || !IsAllSet(decided))
            for (int i = 0; i < BLOCK; i++) {
                Mask &in = inside[i / LANES], &out = outside[i / LANES];
                const int face = begin + i, lane = i % LANES;
                if (face == other || face >= count)
                    in[lane] = out[lane] = 0;
                else if (!(in[lane] | out[lane]))
                    (m_angle.IsWithin(*m_normals[face], *m_normals[other]) ? in : out)[lane] = -1;
            }
        for (int g = 0; g < GROUPS; g++) {
            groups[g].outside |= outside[g];
            for (int axis = 0; axis < 3; axis++) {
                const Lanes part = Lanes{} + parts[axis][other];
                groups[g].sum[axis] += reinterpret_cast<Lanes>(reinterpret_cast<Mask>(part) & inside[g]);
            }
        }
    }
}
