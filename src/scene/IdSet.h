#pragma once

#include <memory>

#include "tools/Hash.h"

/// A set of ids in the slot order of CHashTable. One id, by far the usual case, needs no table.
///
/// 0xFFFFFFFF is no id.
class CIdSet {
public:
    void Insert(unsigned int id)
    {
        if (m_table)
            m_table->Insert(id);
        else if (m_only == NONE || m_only == id)
            m_only = id;
        else {
            m_table = std::make_unique<CHashTable<unsigned int>>();
            m_table->Insert(m_only);
            m_table->Insert(id);
        }
    }
    void Remove(unsigned int id)
    {
        if (m_table)
            m_table->Remove(id);    // its slot counts on: the table stays
        else if (m_only == id)
            m_only = NONE;
    }
    unsigned int GetCount() const { return m_table ? m_table->GetCount() : m_only != NONE; }

    /// Position of an id that is in the set, in the order of the walk.
    unsigned int GetPosition(unsigned int id) const { return m_table ? m_table->GetPosition(id) : 0; }
    /// Position of the first id, or HASH_END.
    unsigned int GetFirst() const { return m_table ? m_table->GetFirst() : m_only != NONE ? 0 : HASH_END; }
    /// The id at `pos`, which moves on (start with GetFirst, end at HASH_END).
    unsigned int GetNext(unsigned int& pos) const
    {
        if (m_table)
            return m_table->GetNext(pos);
        pos = HASH_END;
        return m_only;
    }

private:
    static constexpr unsigned int NONE = 0xFFFFFFFF;

    unsigned int m_only = NONE;    ///< while there is no table
    std::unique_ptr<CHashTable<unsigned int>> m_table;
};
