#include <vector>

#include "geometry/FaceList.h"

// Reordering: the order becomes one table, position -> face that comes there; it is checked, then the pool and the chunks
// are each laid out anew in one pass. Nothing moves face by face.

namespace {

constexpr unsigned int STAYS = 0xFFFFFFFF;

// Empty when `order` is no permutation.
std::vector<unsigned int> SourceTable(const unsigned int* order, unsigned int n, bool inverse)
{
    std::vector<unsigned int> source(n, STAYS), target(n, STAYS);
    for (unsigned int i = 0; i < n; i++) {
        const unsigned int other = order[i] == STAYS ? i : order[i];
        if (other >= n)
            return {};
        const unsigned int from = inverse ? i : other, to = inverse ? other : i;
        if (source[to] != STAYS || target[from] != STAYS)
            return {};
        source[to] = from;
        target[from] = to;
    }
    return source;
}

}

bool CFaceList::ReorderFaces(const unsigned int* order, unsigned int n, bool inverse)
{
    if (!order || n == 0 || n != static_cast<unsigned int>(m_size))
        return false;
    const std::vector<unsigned int> source = SourceTable(order, n, inverse);
    if (source.empty())
        return false;
    DropSurplus();
    m_indexes.Reorder(source.data(), n);
    m_chunks.Reorder(source.data(), n, false);
    SetFlag(FACELIST_CHANGED, true);
    return true;
}
