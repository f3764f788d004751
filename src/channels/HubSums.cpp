#include "channels/HubSums.h"

#include <algorithm>
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
    for (int other = 0; other < count; other++)
        for (int g = 0; g < GROUPS; g++)
            AddToGroup(groups[g], begin + g * LANES, other);
    for (int i = begin; i < end; i++) {
        const Group& group = groups[(i - begin) / LANES];
        const int lane = i % LANES;
        m_sums[i] = {C3DTVector<float>(group.sum[0][lane], group.sum[1][lane], group.sum[2][lane]), !group.outside[lane]};
    }
}

// A part that is left out counts as +0, which changes no sum: none of them is ever -0.
inline void CHubSums::AddToGroup(Group& group, int first, int other) const
{
    constexpr float DOUBT = 6e-6f;    // what the angle test leaves open, and what rounding to float adds
    const float limit = static_cast<float>(m_angle.GetCosine());
    const Lanes cosine =
        group.normal[0] * m_normalAxes[0][other] + group.normal[1] * m_normalAxes[1][other] + group.normal[2] * m_normalAxes[2][other];
    Mask inside = cosine > limit + DOUBT, outside = cosine < limit - DOUBT;
    const Mask decided = inside | outside;
    const bool isAmong = static_cast<unsigned int>(other - first) < static_cast<unsigned int>(LANES);
    if (isAmong || (decided[0] & decided[1] & decided[2] & decided[3]) == 0)
        for (int lane = 0; lane < LANES; lane++) {
            if (first + lane == other || first + lane >= static_cast<int>(m_faces.size()))
                inside[lane] = outside[lane] = 0;
            else if (!decided[lane])
                (m_angle.IsWithin(*m_normals[first + lane], *m_normals[other]) ? inside : outside)[lane] = -1;
        }
    group.outside |= outside;
    for (int axis = 0; axis < 3; axis++) {
        const Lanes part = Lanes{} + m_partAxes[axis][other];
        group.sum[axis] += reinterpret_cast<Lanes>(reinterpret_cast<Mask>(part) & inside);
    }
}
