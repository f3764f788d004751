
#include "geometry/FaceList.h"
#include "tools/BitArray.h"
#include "tools/BlockVector.h"

// Reordering: the order becomes one table, position -> face that comes there; it is checked, then the pool and the
// chunks are each laid out anew in one pass. Nothing moves face by face.

namespace {

constexpr unsigned int STAYS = 0xFFFFFFFF;

// Empty when `order` is no permutation.
CBlockVector<unsigned int> SourceTable(const unsigned int* order, unsigned int n, bool inverse)
{
    CBlockVector<unsigned int> table(order, order + n);
    CBitArray seen(n, false);
    for (unsigned int i = 0; i < n; i++) {
        if (table[i] == STAYS)
            table[i] = i;
        if (table[i] >= n || seen[table[i]])
            return {};
        seen.SetAt(table[i], true);
    }
    if (!inverse)
        return table;
    CBlockVector<unsigned int> source(n);
    for (unsigned int i = 0; i < n; i++)
        source[table[i]] = i;
    return source;
}

}

bool CFaceList::ReorderFaces(const unsigned int* order, unsigned int n, bool inverse)
{
    if (!order || n == 0 || n != static_cast<unsigned int>(m_size))
        return false;
    const CBlockVector<unsigned int> source = SourceTable(order, n, inverse);
    if (source.empty())
        return false;
    DropSurplus();
    m_indexes.Reorder(source.data(), n);
    m_chunks.Reorder(source.data(), n, false);
    SetFlag(FACELIST_CHANGED, true);
    return true;
}
