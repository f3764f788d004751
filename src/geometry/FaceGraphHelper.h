#pragma once

#include <memory>

#include "tools/Api.h"
#include "tools/Hash.h"

/// Workspace of graph queries. A result in the buffer lives until the next query on the helper; kept across a loop, queries allocate
/// nothing once the buffer has grown.
class ZEL_API CFaceGraphHelper {
public:
    CFaceGraphHelper();
    virtual ~CFaceGraphHelper();
    CFaceGraphHelper(const CFaceGraphHelper&) = delete;
    CFaceGraphHelper& operator=(const CFaceGraphHelper&) = delete;

    /// A buffer of at least `n` + 1 ints, content undefined.
    int* GetArray(unsigned int n);
    void ReleaseArray(const int*) {}
    CHashTable<int>& GetSet() { return m_set; }
    /// The set in the buffer, in slot order.
    const int* CopySet(int& count);

private:
    CHashTable<int> m_set;
    std::unique_ptr<int[]> m_array;
    unsigned int m_capacity = 0;
};
