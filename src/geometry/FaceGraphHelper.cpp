#include "geometry/FaceGraphHelper.h"

CFaceGraphHelper::CFaceGraphHelper() = default;
CFaceGraphHelper::~CFaceGraphHelper() = default;

int* CFaceGraphHelper::GetArray(unsigned int n)
{
    if (n >= m_capacity) {
        m_capacity = n + n / 2 + 1;
        m_array = std::make_unique_for_overwrite<int[]>(m_capacity);
    }
    return m_array.get();
}

const int* CFaceGraphHelper::CopySet(int& count)
{
    count = m_set.GetSize();
    int* array = GetArray(m_set.GetCount());
    int* next = array;
    for (const int item : m_set)
        *next++ = item;
    return count ? array : nullptr;
}
