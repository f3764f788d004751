#include "tools/ElementArray.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <memory>

#include "tools/Archive.h"
#include "tools/BitArray.h"
#include "tools/Exception.h"
#include "tools/Memory.h"

ZEL_IMPLEMENT_DYNAMIC(CElementMethods, CXObject)
ZEL_IMPLEMENT_CREATABLE(CElementArray, CXObject)

CElementMethods::~CElementMethods() = default;

void CElementMethods::Serialize(CXArchive&) {}
bool CElementMethods::IsObject() const { return false; }
bool CElementMethods::IsKindOf(const CElementMethods* other) const { return other && other->GetBaseType() == GetBaseType(); }
void CElementMethods::DestructElement(void*) const {}

void CElementMethods::CopyElement(void* to, const CElementMethods* toMethods, const void* from, const CElementMethods* fromMethods) const
{
    std::memcpy(to, from, std::min(toMethods->GetSizeof(), fromMethods->GetSizeof()));
}

void CElementMethods::CopyElement(void* to, const void* from) const { std::memcpy(to, from, GetSizeof()); }

void CElementMethods::SerializeElement(CXArchive& ar, void* element) const
{
    ar.MoveNumbers(static_cast<unsigned char*>(element), GetSizeof());
}

namespace {

constexpr std::size_t CACHED_BYTES = 32 << 10;    // blocks that are gone over twice stay in the first cache

// Copies the element at `block` over the `count - 1` places behind it.
void Replicate(unsigned char* block, std::size_t stride, std::size_t count)
{
    const std::size_t total = stride * count, most = std::max(stride, CACHED_BYTES / stride * stride);
    for (std::size_t done = stride; done < total;) {
        const std::size_t size = std::min({done, most, total - done});
        std::memcpy(block + done, block, size);
        done += size;
    }
}

// Calls `body` with the stride as a constant where that is a common one: copies of a known size are a few instructions.
template <class BODY> void WithStride(std::size_t stride, BODY body)
{
    switch (stride) {
    case 4: return body(std::integral_constant<std::size_t, 4>());
    case 8: return body(std::integral_constant<std::size_t, 8>());
    case 16: return body(std::integral_constant<std::size_t, 16>());
    case 24: return body(std::integral_constant<std::size_t, 24>());
    default: return body(stride);
    }
}

bool IsPermutation(const unsigned int* order, unsigned int n)
{
    CBitArray seen(n, false);
    for (unsigned int i = 0; i < n; i++) {
        if (order[i] >= n || seen.GetAt(order[i]))
            return false;
        seen.SetAt(order[i], true);
    }
    return true;
}

unsigned int SumOfWords(const unsigned char* bytes, std::size_t size)
{
    unsigned int sum = 0;
    for (; size >= 4; bytes += 4, size -= 4) {
        unsigned int word;
        std::memcpy(&word, bytes, 4);
        sum += word;
    }
    unsigned int rest = 0;
    std::memcpy(&rest, bytes, size);
    return sum + rest;
}

}

CElementArray::CElementArray(CElementMethods* methods) { SetMethods(methods); }

CElementArray::~CElementArray()
{
    Free();
    DeleteMe(m_methods);
}

void CElementArray::SetMethods(CElementMethods* methods)
{
    const unsigned int stride = methods ? methods->GetSizeof() : 0;
    if (stride != m_stride)
        Free();
    if (methods)
        methods->AddRef();
    DeleteMe(m_methods);
    m_methods = methods;
    m_stride = stride;
}

bool CElementArray::HasSameElements(const CElementArray& other) const
{
    return m_methods == other.m_methods ||
           (m_methods && other.m_methods && m_stride == other.m_stride && m_methods->GetType() == other.m_methods->GetType());
}

void CElementArray::Free()
{
    Unbuild(0);
    XFreeBlock(m_base, Bytes(m_capacity));
    m_base = nullptr;
    m_capacity = 0;
}

void CElementArray::RemoveAll()
{
    Free();
    m_construct = false;
}

// Elements before `to` are built afterwards. Those that were stay.
void CElementArray::Build(int to)
{
    if (to <= m_built)
        return;
    if (m_methods->IsBitwise()) {
        m_methods->ConstructElement(At(m_built));
        Replicate(At(m_built), m_stride, static_cast<std::size_t>(to - m_built));
        m_built = to;
    } else
        for (; m_built < to; m_built++)
            m_methods->ConstructElement(At(m_built));
}

// No element from `to` on is left.
void CElementArray::Unbuild(int to)
{
    if (m_methods && !m_methods->IsBitwise())
        for (int i = to; i < m_built; i++)
            m_methods->DestructElement(At(i));
    m_built = std::min(m_built, to);
    m_size = std::min(m_size, to);
}

// `capacity` is not below the number of built elements.
void CElementArray::Reallocate(int capacity)
{
    if (m_methods->IsBitwise())
        m_base = static_cast<unsigned char*>(XReallocBlock(m_base, Bytes(m_capacity), Bytes(capacity)));
    else {
        unsigned char* const moved = static_cast<unsigned char*>(XAllocBlock(Bytes(capacity)));
        for (int i = 0; i < m_built; i++) {
            unsigned char* const element = moved + Bytes(i);
            m_methods->ConstructElement(element);
            m_methods->CopyElement(element, At(i));
            m_methods->DestructElement(At(i));
        }
        XFreeBlock(m_base, Bytes(m_capacity));
        m_base = moved;
    }
    m_capacity = capacity;
}

bool CElementArray::SetSize(int size, bool keep, int grow)
{
    if (size < 0 || !m_methods)
        return false;
    Unbuild(keep ? size : 0);
    if (size > m_capacity) {
        if (grow < 0)
            grow = m_grow >= 0 ? m_grow : size / 4;
        const bool first = m_capacity == 0;
        if (m_built == 0)
            Free();    // nothing to carry over
        Reallocate(first ? size : static_cast<int>(std::min<long long>(INT_MAX, static_cast<long long>(size) + grow)));
    }
    Build(m_construct ? m_capacity : size);
    m_size = size;
    return true;
}

void CElementArray::PreAllocate(int size)
{
    if (!m_methods || size <= m_capacity)
        return;
    Reallocate(size);
    if (m_construct)
        Build(size);
}

void CElementArray::FreeExtra()
{
    m_construct = false;
    Unbuild(m_size);
    if (m_capacity > m_size)
        Reallocate(m_size);
}

CElementArray* CElementArray::Duplicate(bool data) const
{
    auto copy = std::make_unique<CElementArray>(m_methods);
    copy->m_grow = m_grow;
    if (data)
        copy->Copy(*this, false);
    return copy.release();
}

void CElementArray::SetAtGrow(int index, const void* element)
{
    if (index < 0 || index == INT_MAX || !m_methods)
        XThrowInvalidIndex();
    const unsigned char* from = static_cast<const unsigned char*>(element);
    const unsigned char *first = m_base, *end = At(m_size);
    const bool inside = m_base && !std::less<>()(from, first) && std::less<>()(from, end);
    const std::size_t offset = inside ? from - m_base : 0;
    if (index >= m_size)
        SetSize(index + 1);
    if (inside)
        from = m_base + offset;    // the block may have moved
    if (from && from != At(index))
        m_methods->CopyElement(At(index), from);
}

void CElementArray::CopyRange(int to, const CElementArray& source, int from, int count)
{
    if (count == 0)
        return;
    if (!HasSameElements(source)) {
        for (int i = 0; i < count; i++)
            m_methods->CopyElement(At(to + i), m_methods, source.At(from + i), source.m_methods);
    } else if (m_methods->IsBitwise())
        std::memcpy(At(to), source.At(from), Bytes(count));
    else
        for (int i = 0; i < count; i++)
            m_methods->CopyElement(At(to + i), source.At(from + i));
}

bool CElementArray::Copy(const CElementArray& source, bool append)
{
    if (&source == this && !append)
        return true;
    if (!m_methods)
        SetMethods(source.m_methods);
    const int first = append ? m_size : 0, added = source.m_size;
    if (added > INT_MAX - first)
        return false;
    if (!m_methods)
        return true;    // neither has any: both are empty
    const bool overwritten = HasSameElements(source) && m_methods->IsBitwise();
    if (overwritten)
        Unbuild(first);    // no need to build what whole bytes replace
    if (first + added > m_capacity) {
        if (m_built == 0)
            Free();
        const int grow = append && first ? std::max(m_grow, 0) : 0;
        Reallocate(static_cast<int>(std::min<long long>(INT_MAX, static_cast<long long>(first) + added + grow)));
    }
    if (overwritten)
        m_built = m_size = first + added;
    else
        SetSize(first + added);
    CopyRange(first, source, 0, added);
    return true;
}

bool CElementArray::CopyElement(int to, int from) { return CopyElement(to, from, *this); }

bool CElementArray::CopyElement(int to, int from, const CElementArray& source)
{
    void* const target = GetAt(to);
    const void* const element = source.GetAt(from);
    if (!target || !element)
        return false;
    if (target != element)
        CopyRange(to, source, from, 1);
    return true;
}

namespace {

template <std::size_t STRIDE> void GatherBytes(unsigned char* to, const unsigned char* base, std::size_t stride, const int* from, int count)
{
    const std::size_t size = STRIDE ? STRIDE : stride;    // a size known here copies without a call
    for (int i = 0; i < count; i++)
        std::memcpy(to + static_cast<std::size_t>(i) * size, base + static_cast<std::size_t>(from[i]) * size, size);
}

}

bool CElementArray::Gather(int to, const CElementArray& source, const int* from, int count)
{
    if (to < 0 || count < 0 || to > m_size - count || (!from && count > source.m_size))
        return false;
    if (!from) {
        CopyRange(to, source, 0, count);
        return true;
    }
    const auto isThere = [&](int i) { return static_cast<unsigned int>(i) < static_cast<unsigned int>(source.m_size); };
    if (!std::all_of(from, from + count, isThere))
        return false;
    if (!HasSameElements(source) || !m_methods->IsBitwise())
        for (int i = 0; i < count; i++)
            CopyRange(to + i, source, from[i], 1);
    else if (m_stride == 8)
        GatherBytes<8>(At(to), source.m_base, 8, from, count);
    else if (m_stride == 24)
        GatherBytes<24>(At(to), source.m_base, 24, from, count);
    else
        GatherBytes<0>(At(to), source.m_base, m_stride, from, count);
    return true;
}

bool CElementArray::Reorder(const unsigned int* order, unsigned int n, bool inverse)
{
    if (n != static_cast<unsigned int>(m_size) || (n && (!order || !IsPermutation(order, n))))
        return false;
    if (n == 0)
        return true;
    Unbuild(m_size);
    unsigned char* const ordered = static_cast<unsigned char*>(XAllocBlock(Bytes(m_size)));
    if (m_methods->IsBitwise())
        WithStride(m_stride, [&](auto stride) {
            const unsigned char* const old = m_base;
            for (std::size_t i = 0; i < n; i++)
                std::memcpy(ordered + (inverse ? order[i] : i) * stride, old + (inverse ? i : order[i]) * stride, stride);
        });
    else
        for (std::size_t i = 0; i < n; i++) {
            unsigned char* const element = ordered + (inverse ? order[i] : i) * m_stride;
            m_methods->ConstructElement(element);
            m_methods->CopyElement(element, At(static_cast<int>(inverse ? i : order[i])));
        }
    Free();
    m_base = ordered;
    m_size = m_built = m_capacity = static_cast<int>(n);
    return true;
}

unsigned int CElementArray::GetChecksum() const
{
    if (m_size == 0)
        return 0;
    CElementMethods::StoredBytes part = m_methods->GetStoredBytes();
    if (part.size == 0)
        part = {0, m_stride};
    unsigned int h = 0;
    for (int i = 0; i < m_size; i++)
        h = h * 31 + SumOfWords(At(i) + part.offset, part.size);
    return h;
}

void CElementArray::Serialize(CXArchive& ar)
{
    if (ar.IsStoring()) {
        ar.WriteClass(m_methods ? m_methods->GetRuntimeClassDescriptor() : nullptr);
        if (m_methods)
            m_methods->Serialize(ar);
        ar.WriteCount(static_cast<unsigned int>(m_size));
        ar << (m_methods ? m_methods->GetStoredBytes().size : 0u);
        StoreElements(ar);
        return;
    }
    Free();
    if (CElementMethods* const methods = LoadMethods(ar)) {
        SetMethods(methods);
        DeleteMe(methods);
    } else
        SetMethods(nullptr);
    const std::uint64_t count = ar.ReadCount(0);
    unsigned int stored;
    ar >> stored;
    if (stored != (m_methods ? m_methods->GetStoredBytes().size : 0))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    ar.CheckCount(count, std::max(stored, 1u));
    if (count > INT_MAX || (count && !m_methods))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
    if (count)
        LoadElements(ar, static_cast<int>(count));
}

// A new methods object as the stream names it, or null for none. Throws for one that this array cannot take.
CElementMethods* CElementArray::LoadMethods(CXArchive& ar) const
{
    const CXRuntimeClass* const expected =
        m_methods ? m_methods->GetRuntimeClassDescriptor() : CElementMethods::GetThisRuntimeClassDescriptor();
    const CXRuntimeClass* const type = ar.ReadClass(expected);
    if (!type && !m_methods)
        return nullptr;
    CElementMethods* const methods = type ? static_cast<CElementMethods*>(type->CreateObject()) : nullptr;
    if (!methods)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    struct Release {
        void operator()(CElementMethods* m) const { DeleteMe(m); }
    };
    std::unique_ptr<CElementMethods, Release> owner(methods);
    methods->Serialize(ar);
    if (methods->GetSizeof() == 0 || (m_methods && methods->GetSizeof() != m_stride))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    return owner.release();
}

// Elements go through a packing buffer, a cacheful at a time: the same bytes as one by one.
void CElementArray::StoreElements(CXArchive& ar)
{
    if (m_size == 0)
        return;
    const auto [offset, size] = m_methods->GetStoredBytes();
    if (size == 0) {
        for (int i = 0; i < m_size; i++)
            m_methods->SerializeElement(ar, At(i));
    } else if (size == m_stride)
        ar.Write(m_base, Bytes(m_size));
    else {
        const int block = static_cast<int>(std::max<std::size_t>(1, CACHED_BYTES / size));
        const auto packed = std::make_unique_for_overwrite<unsigned char[]>(static_cast<std::size_t>(block) * size);
        for (int done = 0; done < m_size; done += block) {
            const int count = std::min(block, m_size - done);
            const unsigned char* from = At(done) + offset;
            WithStride(size, [&](auto width) {
                for (int i = 0; i < count; i++)
                    std::memcpy(packed.get() + i * width, from + Bytes(i), width);
            });
            ar.Write(packed.get(), static_cast<std::size_t>(count) * size);
        }
    }
}

void CElementArray::LoadElements(CXArchive& ar, int total)
{
    Reallocate(total);
    const auto [offset, size] = m_methods->GetStoredBytes();
    if (size == 0) {
        for (; m_size < total; m_size++) {
            Build(m_size + 1);
            m_methods->SerializeElement(ar, At(m_size));
        }
    } else if (size == m_stride) {
        ar.Read(m_base, Bytes(total));
        m_size = m_built = total;
    } else {
        const int block = static_cast<int>(std::max<std::size_t>(1, CACHED_BYTES / size));
        const auto packed = std::make_unique_for_overwrite<unsigned char[]>(static_cast<std::size_t>(block) * size);
        while (m_size < total) {
            const int count = std::min(block, total - m_size);
            ar.Read(packed.get(), static_cast<std::size_t>(count) * size);
            Build(m_size + count);
            unsigned char* to = At(m_size) + offset;
            WithStride(size, [&](auto width) {
                for (int i = 0; i < count; i++)
                    std::memcpy(to + Bytes(i), packed.get() + i * width, width);
            });
            m_size += count;
        }
    }
}
