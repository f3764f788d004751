#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "tools/Memory.h"

/// Array of plain values, undefined at first, in the memory of the big lists: first-touched small pages would cost more than
/// what is done with them.
template <class T> class CBlock {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    CBlock() = default;
    explicit CBlock(std::size_t size) : m_data(static_cast<T*>(XAllocBlock(size * sizeof(T)))), m_size(size) {}
    CBlock(std::size_t size, T value) : CBlock(size) { std::fill(m_data, m_data + size, value); }
    CBlock(CBlock&& other) noexcept : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)) {}
    CBlock& operator=(CBlock&& other) noexcept
    {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        return *this;
    }
    ~CBlock() { XFreeBlock(m_data, m_size * sizeof(T)); }

    std::size_t GetSize() const { return m_size; }
    T* GetData() { return m_data; }
    const T* GetData() const { return m_data; }
    T& operator[](std::size_t index) { return m_data[index]; }
    const T& operator[](std::size_t index) const { return m_data[index]; }

private:
    T* m_data = nullptr;
    std::size_t m_size = 0;
};
