#pragma once

#include <cstddef>

#include "tools/Object.h"

class CXArchive;

/// How the elements of a CElementArray are built, copied and stored. Shared by reference count.
///
/// The base copies and stores elements as raw bytes of GetSizeof.
class ZEL_API CElementMethods : public CXObject, public CInstanciatedObject {
    ZEL_DECLARE_DYNAMIC(CElementMethods)
public:
    void Serialize(CXArchive& ar) override;
    /// True when elements are objects of CPt's family, copied and stored through their own virtual operations.
    virtual bool IsObject() const;
    /// Same base type as `other`; false for null.
    virtual bool IsKindOf(const CElementMethods* other) const;
    virtual unsigned int GetSizeof() const = 0;
    virtual unsigned int GetType() const = 0;
    virtual unsigned int GetBaseType() const = 0;
    /// Builds a default element; ignores null.
    virtual void ConstructElement(void* element) const = 0;
    virtual void DestructElement(void* element) const;
    /// Copies between two kinds of element. The base copies the bytes that both have.
    virtual void CopyElement(void* to, const CElementMethods* toMethods, const void* from, const CElementMethods* fromMethods) const;
    virtual void CopyElement(void* to, const void* from) const;
    virtual void SerializeElement(CXArchive& ar, void* element) const;
    using CXObject::IsKindOf;

    /// What one element writes to a stream: `size` bytes from `offset` on, exactly as SerializeElement moves them. A
    /// size of 0 means that only SerializeElement knows.
    struct StoredBytes {
        unsigned int offset, size;
    };
    StoredBytes GetStoredBytes() const { return m_stored; }
    /// True when an element may be copied byte by byte and needs no destruction: whole arrays then move as blocks.
    bool IsBitwise() const { return m_bitwise; }

protected:
    CElementMethods() = default;
    ~CElementMethods() override;

    bool m_bitwise = true;
    StoredBytes m_stored = {0, 0};
};

/// Array of elements whose size is known at run time: one block, elements side by side.
///
/// The block moves when the array grows. Elements are built with ConstructElement.
class ZEL_API CElementArray : public CXObject {
    ZEL_DECLARE_CREATABLE(CElementArray)
public:
    /// Takes one reference of its own on `methods`; null until SetMethods or Serialize.
    explicit CElementArray(CElementMethods* methods = nullptr);
    CElementArray(const CElementArray&) = delete;
    CElementArray& operator=(const CElementArray&) = delete;
    ~CElementArray() override;

    /// Class of the methods, element count, bytes of a stored element, elements. Loading replaces the elements. An array
    /// with methods takes only elements of the same methods' class or of one that derives from it, of the same size; an
    /// array without takes what comes, and its owner looks at GetMethods then.
    void Serialize(CXArchive& ar) override;
    /// Resizes. With `keep` the first elements stay; without it every element becomes a default one. `grow` is the number
    /// of places to add when the block must grow: -1 the factor of SetGrowFactor when that was set, else a quarter of the
    /// size; 0 none. A block is first made without any. False for a negative size or without methods.
    virtual bool SetSize(int size, bool keep = true, int grow = -1);
    /// No elements, no memory.
    virtual void RemoveAll();
    /// A new array with the same methods; with `data`, with the elements too. The caller owns it.
    virtual CElementArray* Duplicate(bool data) const;

    /// Replaces the methods. When the element size changes the array is emptied, otherwise the elements stay.
    void SetMethods(CElementMethods* methods);
    CElementMethods* GetMethods() const { return m_methods; }
    int GetSize() const { return m_size; }
    int GetCapacity() const { return m_capacity; }
    unsigned int GetStride() const { return m_stride; }
    unsigned int GetSizeof() const { return m_stride; }
    void* GetBase() { return m_base; }
    const void* GetBase() const { return m_base; }
    /// Element at `index`; null outside the array.
    void* GetAt(int index)
    {
        const bool there = static_cast<unsigned int>(index) < static_cast<unsigned int>(m_size);
        return there ? m_base + static_cast<std::size_t>(index) * m_stride : nullptr;
    }
    const void* GetAt(int index) const { return const_cast<CElementArray*>(this)->GetAt(index); }

    /// Copies `element` (of the array's kind) to `index`, growing when needed. A negative index throws.
    void SetAtGrow(int index, const void* element);
    /// Room for `size` elements. With SetConstruct the room is filled with default elements at once.
    void PreAllocate(int size);
    void SetConstruct(bool construct) { m_construct = construct; }
    void FreeExtra();
    void SetGrowFactor(int grow) { m_grow = grow; }
    int GetGrowFactor() const { return m_grow; }

    /// Becomes a copy of `source`'s elements. Of another kind they are converted by CopyElement. `append` adds them behind.
    /// An array without methods takes those of `source`. False when there would be too many elements.
    bool Copy(const CElementArray& source, bool append);
    /// Copies one element; false when an index is out of range.
    bool CopyElement(int to, int from);
    bool CopyElement(int to, int from, const CElementArray& source);
    /// Copies the elements from[0], from[1] ... of another array (null: all, from the first on) to `to` and the places behind. All places
    /// are there already; false, with nothing copied, when one is not.
    bool Gather(int to, const CElementArray& source, const int* from, int count);
    /// Moves the elements: `order[d] = s` puts the element of s at d; with `inverse` the element of d goes to order[d].
    /// False, with nothing changed, unless `n` is the size and `order` a permutation.
    bool Reorder(const unsigned int* order, unsigned int n, bool inverse);
    /// h = h * 31 + the bytes that an element stores, summed as little-endian words; 0 for an empty array.
    unsigned int GetChecksum() const;

private:
    unsigned char* At(int index) const { return m_base + static_cast<std::size_t>(index) * m_stride; }
    std::size_t Bytes(int count) const { return static_cast<std::size_t>(count) * m_stride; }
    bool HasSameElements(const CElementArray& other) const;
    void Free();
    void Reallocate(int capacity);
    void Build(int to);
    void Unbuild(int to);
    void CopyRange(int to, const CElementArray& source, int from, int count);
    void StoreElements(CXArchive& ar);
    void LoadElements(CXArchive& ar, int count);
    CElementMethods* LoadMethods(CXArchive& ar) const;

    unsigned char* m_base = nullptr;
    unsigned int m_stride = 0;
    int m_size = 0;
    int m_capacity = 0;
    int m_built = 0;    ///< elements that are constructed: at least the size, at most the capacity
    int m_grow = -1;
    bool m_construct = false;
    CElementMethods* m_methods = nullptr;
};
