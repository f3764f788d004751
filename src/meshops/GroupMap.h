#pragma once

#include <vector>

#include "tools/Hash.h"

/// Groups of numbers that belong together, each found by any of its members. COUNT counts the members of a group.
template <class ID, class COUNT> class CGroupMap {
public:
    static constexpr std::size_t MOST_MEMBERS = static_cast<COUNT>(~COUNT{0});

    void RemoveAll()
    {
        m_groups.clear();
        m_groupOf.RemoveAll();
    }
    void Reserve(int groups) { m_groups.reserve(static_cast<std::size_t>(groups)); }
    void FreeExtra() { m_groups.shrink_to_fit(); }

    int GetCount() const { return static_cast<int>(m_groups.size()); }
    /// Members in the order in which they came; null and 0 for a number in no group.
    const ID* GetGroupOf(ID member, COUNT& count) const
    {
        const int* group = m_groupOf.Find(member);
        count = group ? static_cast<COUNT>(m_groups[*group].size()) : COUNT{0};
        return group ? m_groups[*group].data() : nullptr;
    }
    const std::vector<ID>& GetGroup(int group) const { return m_groups[static_cast<std::size_t>(group)]; }

    /// A new group, unless `member` is in one.
    void Add(ID member)
    {
        if (m_groupOf.Find(member))
            return;
        m_groupOf.SetAt(member, GetCount());
        m_groups.push_back({member});
    }
    /// `member` joins the group of `first`. False when that is full or is not there.
    bool Add(ID first, ID member)
    {
        const int* group = m_groupOf.Find(first);
        if (!group || m_groups[*group].size() >= MOST_MEMBERS)
            return false;
        m_groups[*group].push_back(member);
        m_groupOf.SetAt(member, int{*group});
        return true;
    }

private:
    std::vector<std::vector<ID>> m_groups;
    CHashMap<ID, int> m_groupOf;
};
