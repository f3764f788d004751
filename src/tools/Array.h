#pragma once

#include <type_traits>
#include <vector>

#include "tools/Archive.h"
#include "tools/Exception.h"

/// Growing array with checked access: an index outside the bounds throws CXInvalidArgException.
///
/// `ARG` is how an element is passed in. Elements are kept in one block; new ones are value-initialised.
template <class T, class ARG = const T&> class CXArray {
public:
    CXArray() = default;

    int GetSize() const { return static_cast<int>(m_items.size()); }
    bool IsEmpty() const { return m_items.empty(); }
    /// Keeps the first elements. A negative size throws. `grow` reserves that many places more when it is above 0.
    void SetSize(int size, int grow = -1)
    {
        if (size < 0)
            XThrowInvalidIndex();
        if (grow > 0 && static_cast<size_t>(size) > m_items.capacity())
            m_items.reserve(static_cast<size_t>(size) + grow);
        m_items.resize(size);
    }
    void PreAllocate(int size) { m_items.reserve(size > 0 ? size : 0); }
    void FreeExtra() { m_items.shrink_to_fit(); }
    void RemoveAll() { m_items.clear(); }

    const T& GetAt(int index) const { return m_items[Check(index)]; }
    T& ElementAt(int index) { return m_items[Check(index)]; }
    void SetAt(int index, ARG item) { m_items[Check(index)] = item; }
    const T& operator[](int index) const { return m_items[Check(index)]; }
    T& operator[](int index) { return m_items[Check(index)]; }
    T* GetData() { return m_items.data(); }
    const T* GetData() const { return m_items.data(); }

    /// Appends; returns the new element's index.
    int Add(ARG item)
    {
        m_items.push_back(item);
        return GetSize() - 1;
    }
    /// Grows to hold `index` when needed, then stores.
    void SetAtGrow(int index, ARG item)
    {
        if (index < 0)
            XThrowInvalidIndex();
        if (index < GetSize())
            m_items[index] = item;
        else {
            T copy = item;    // `item` may lie in the block that moves
            m_items.resize(static_cast<size_t>(index) + 1);
            m_items[index] = std::move(copy);
        }
    }
    /// Inserts before `index`, which may equal the size.
    void InsertAt(int index, ARG item)
    {
        if (index < 0 || index > GetSize())
            XThrowInvalidIndex();
        m_items.insert(m_items.begin() + index, item);
    }
    void RemoveAt(int index, int count = 1)
    {
        if (index < 0 || count < 0 || count > GetSize() - index)
            XThrowInvalidIndex();
        m_items.erase(m_items.begin() + index, m_items.begin() + index + count);
    }
    /// Appends all of `other`; returns the index of the first one.
    int Append(const CXArray& other)
    {
        const size_t first = m_items.size(), added = other.m_items.size();
        m_items.reserve(first + added);
        for (size_t i = 0; i < added; i++)
            m_items.push_back(other.m_items[i]);
        return static_cast<int>(first);
    }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

    /// Count, then the elements; numbers move as one block.
    void Serialize(CXArchive& ar)
    {
        if (ar.IsStoring())
            ar.WriteCount(m_items.size());
        else {
            const std::uint64_t count = ar.ReadCount(std::is_arithmetic_v<T> ? sizeof(T) : 1);
            if (count > 0x7FFFFFFF)
                XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
            m_items.resize(count);
        }
        if constexpr (std::is_arithmetic_v<T>)
            ar.MoveNumbers(m_items.data(), m_items.size());
        else
            for (T& item : m_items)
                Move(ar, item);
    }

private:
    size_t Check(int index) const
    {
        if (static_cast<size_t>(static_cast<unsigned int>(index)) >= m_items.size())
            XThrowInvalidIndex();
        return static_cast<size_t>(index);
    }

    std::vector<T> m_items;
};
