#include "geometry/FaceList.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <type_traits>
#include <vector>

#include "geometry/Edge.h"
#include "geometry/ElementMethods.h"
#include "geometry/SingleFace.h"
#include "tools/Archive.h"
#include "tools/Array.h"
#include "tools/AssociationMap.h"

ZEL_IMPLEMENT_DYNAMIC(CFaceList, CXObject)

CFaceList::CFaceList() = default;

CFaceList::CFaceList(const CFaceList* model)
{
    if (model)
        m_chunks.InitDataChunks(model->m_chunks, 0);
}

CFaceList::~CFaceList() = default;

// A view adds nothing to CFace and needs no destruction, so its memory goes back as it came.
void CFaceList::ReleaseFace(CFace* face) const
{
    static_assert(std::is_trivially_destructible_v<CFace>);
    ::operator delete(face);
}

void CFaceList::SetFlag(_FACELIST_PROPERTIES mask, bool set)
{
    m_flags = set ? m_flags | mask : m_flags & ~mask;
    if (mask & FACELIST_CHANGED)
        m_changedStamp++;
}

bool CFaceList::HasMainChunk(unsigned int elementSize) const
{
    const CElementArray* main = m_chunks.GetMainArray();
    return main && HoldsPlain(*main, BASE_FACE_PROPERTIES, elementSize) && main->GetSize() == m_size;
}

// --- Size -----------------------------------------------------------------------------------------------------------

bool CFaceList::SetSize(int count, int capacity, SetSizeMode mode, int grow)
{
    using C = IndexCollection;
    constexpr unsigned int flagsOfMode[] = {
        C::ENTRIES_EMPTY | C::ESTIMATE_ADDED,
        C::ENTRIES_EMPTY | C::ESTIMATE_ADDED | C::NO_MARGIN,
        C::ENTRIES_EMPTY | C::ESTIMATE_ADDED | C::KEEP_POOL,
    };
    if (count < 0 || capacity < 0 || capacity > CFace::MAX_CORNERS)
        return false;
    const int old = m_size;
    const unsigned int oldEntries = m_indexes.GetEntryCount();
    if (mode == SIZE_KEEP && count == 0) {
        if (capacity)
            m_indexes.SetDefaultCapacity(capacity);
    } else
        m_indexes.SetCollectionSize(count, capacity, flagsOfMode[mode]);
    m_size = count;
    m_chunks.SetDataSize(count, true, grow);
    ClearCorners(old, std::min(oldEntries, static_cast<unsigned int>(count)));
    if (count != old)
        SetFlag(FACELIST_CHANGED, true);
    return true;
}

// Faces that SIZE_KEEP once left behind in the pool come back empty.
void CFaceList::ClearCorners(unsigned int first, unsigned int end)
{
    for (unsigned int i = first; i < end; i++)
        m_indexes.SetEntrySize(i, 0, true);
}

// Entries that SIZE_KEEP left behind go.
void CFaceList::DropSurplus() { m_indexes.DropEntries(m_size); }

bool CFaceList::SetSize(int count, const unsigned int* capacities, int capacity, int grow)
{
    if (count < 0 || capacity < 0 || capacity > CFace::MAX_CORNERS)
        return false;
    if (capacities && std::any_of(capacities, capacities + count, [](unsigned int c) { return c > CFace::MAX_CORNERS; }))
        return false;
    RemoveAll();
    m_indexes.SetCollectionSize(count, capacity,
                                IndexCollection::ENTRIES_EMPTY | IndexCollection::ESTIMATE_ADDED | IndexCollection::NO_MARGIN, capacities);
    m_size = count;
    m_chunks.SetDataSize(count, true, grow);
    return true;
}

void CFaceList::SetSize(const CFaceList& model, int grow)
{
    const int count = model.m_size;
    IndexCollection layout;
    layout.AppendCollection(model.m_indexes, true, true);
    RemoveAll();
    m_indexes.Swap(layout);
    m_size = count;
    DropSurplus();
    m_chunks.SetDataSize(count, true, grow);
}

bool CFaceList::SetSizeAndFlags(int count, unsigned int flags)
{
    const int old = m_size;
    if (!SetSize(count, 4, SIZE_GROW, -1))
        return false;
    SetFacesFlags(old, count, flags, true);
    return true;
}

void CFaceList::SetSizeAndFlags(const CFaceList& model, unsigned int flags)
{
    SetSize(model, -1);
    SetFacesFlags(flags, true);
}

void CFaceList::ExpandSize(const CFaceList& model)
{
    const int added = model.m_size;
    DropSurplus();
    m_indexes.AppendCollection(model.m_indexes, true, false);
    m_size += added;
    DropSurplus();
    m_chunks.ExpandDataSize(added);
    SetFlag(FACELIST_CHANGED, true);
}

void CFaceList::ExpandSizeAndFlags(const CFaceList& model, unsigned int flags)
{
    const int old = m_size;
    ExpandSize(model);
    SetFacesFlags(old, m_size, flags, true);
}

bool CFaceList::SetFacesSize(unsigned int corners)
{
    if (corners > CFace::MAX_CORNERS)
        return false;
    CFace face;
    for (int i = 0; i < m_size; i++)
        if (GetFace(i, face))
            face.SetSize(static_cast<int>(corners));
    return true;
}

void CFaceList::PreAllocate(int faces, int corners, bool construct)
{
    RemoveAll();
    m_indexes.ReserveCollection(std::max(faces, 0), std::max(corners, 0));
    m_chunks.PreAllocate(std::max(faces, 0), construct);
}

void CFaceList::PreAllocateExact(int faces, std::int64_t corners)
{
    RemoveAll();
    m_indexes.ReserveExact(static_cast<unsigned int>(faces), static_cast<std::uint64_t>(corners));
    m_chunks.PreAllocate(faces, false);
}

void CFaceList::FreeExtra()
{
    DropSurplus();
    m_indexes.FreeExtra();
    m_chunks.FreeExtra();
}

void CFaceList::RemoveAll()
{
    DropGraphs();
    m_flags = 0;
    m_size = 0;
    m_indexes.RemoveAll();
    m_chunks.RemoveAll();
    SetFlag(FACELIST_CHANGED, true);
}

// --- Bulk fills -----------------------------------------------------------------------------------------------------

bool CFaceList::PrepareAppend(int count)
{
    DropSurplus();
    return count >= 0 && count <= 0x7FFFFFFF - m_size;
}

void CFaceList::FinishAppend(int count)
{
    m_size += count;
    m_chunks.SetDataSize(m_size, true, -1);
    if (count)
        SetFlag(FACELIST_CHANGED, true);
}

bool CFaceList::AppendFaces(int count, int corners, const int* indexes)
{
    if (corners == 3)    // a constant size copies without a call
        return AppendFaces(count, 3, [indexes](int* to, std::size_t k) { std::memcpy(to, indexes + k * 3, 3 * sizeof(int)); });
    return AppendFaces(count, corners, [indexes, corners](int* to, std::size_t k) { std::copy_n(indexes + k * corners, corners, to); });
}

bool CFaceList::AppendFaces(int count, const unsigned int* sizes, const int* indexes)
{
    const auto copy = [&](int* to, unsigned int k) {
        std::copy_n(indexes, sizes[k], to);
        indexes += sizes[k];
    };
    if (!PrepareAppend(count) || !m_indexes.AppendEntries(count, sizes, copy))
        return false;
    FinishAppend(count);
    return true;
}

CBlockVector<unsigned int> CFaceList::GetSizes(const CFaceList& source, const int* faces, int count, unsigned int& uniform)
{
    const CFaceFlags flags(source);
    const auto size = [&](int k) {
        const unsigned int face = static_cast<unsigned int>(faces ? faces[k] : k);
        return face < static_cast<unsigned int>(source.m_size) && !flags.IsDead(face) ? source.m_indexes.GetItemCount(face) : 0;
    };
    uniform = count > 0 ? size(0) : 0;
    int k = 0;
    while (k < count && size(k) == uniform)
        k++;
    if (k == count)
        return {};
    CBlockVector<unsigned int> sizes(static_cast<std::size_t>(count), uniform);
    for (; k < count; k++)
        sizes[static_cast<std::size_t>(k)] = size(k);
    return sizes;
}

// --- Copies ---------------------------------------------------------------------------------------------------------

void CFaceList::Inherit(const CFaceList& model)
{
    if (&model == this)
        return;
    m_flags = 0;
    m_chunks.InitDataChunks(model.m_chunks, static_cast<unsigned int>(m_size));
}

CFaceList& CFaceList::operator=(const CFaceList& model)
{
    if (&model == this)
        return *this;
    m_size = model.m_size;
    Inherit(model);
    m_chunks.CopyData(model.m_chunks);
    m_indexes = model.m_indexes;
    DropSurplus();
    FreeGraphs();
    SetFlag(FACELIST_CHANGED, true);
    return *this;
}

bool CFaceList::CopyFace(unsigned int to, unsigned int from, bool dataOnly) { return to == from || CopyFace(to, from, *this, dataOnly); }

bool CFaceList::CopyFace(unsigned int to, const CFace& from, bool dataOnly)
{
    CFace face;
    if (!from.GetFaceList() || !GetFace(to, face))
        return false;
    if (dataOnly)
        face.Inherit(from);
    else
        face.Copy(from);
    return true;
}

bool CFaceList::CopyFace(unsigned int to, unsigned int from, const CFaceList& source, bool dataOnly)
{
    CFace face;
    return source.GetFace(from, face) && CopyFace(to, face, dataOnly);
}

bool CFaceList::CopyTo(int i, CSingleFace& scratch) const
{
    if (i < 0 || i >= m_size) {
        scratch.SetEntrySize(0, 0, true);
        scratch.GetDataChunks().RemoveAll();
        return false;
    }
    if (scratch.GetDataChunks().GetDataSize() == 0)    // never shaped, or emptied by an earlier call
        scratch.SetList(*this);
    int count;
    const int* indexes = GetIndexes(i, count);
    int* to = scratch.SetEntrySize(0, count, true);
    if (count)
        std::memcpy(to, indexes, count * sizeof(int));
    scratch.GetDataChunks().CopyData(0, i, m_chunks);
    return true;
}

bool CFaceList::CopyFrom(int i, const CSingleFace& scratch)
{
    if (i < 0 || i >= m_size || scratch.GetEntryCount() == 0)
        return false;
    unsigned int count;
    const int* indexes = scratch.GetItems(0, count);
    int* to = m_indexes.SetEntrySize(i, count, true);
    if (count)
        std::memcpy(to, indexes, count * sizeof(int));
    m_chunks.CopyData(i, 0, scratch.GetDataChunks());
    return true;
}

// --- Chunks ---------------------------------------------------------------------------------------------------------

unsigned int CFaceList::AddDataChunk(unsigned int id, CElementMethods* methods)
{
    constexpr unsigned int inherited = CHUNK_INHERITED | CHUNK_REPLACE;
    return m_chunks.AddDataChunk(id, methods, id == CHUNK_FACE_PROPERTIES ? inherited | CHUNK_MAIN : inherited);
}

void CFaceList::AppendDataChunks(CFaceList* other, bool empty)
{
    if (other)
        m_chunks.AppendDataChunks(other->m_chunks, empty);
}

void CFaceList::SaveFacesIndex()
{
    auto* methods = new COriginalIndexMethods;
    AddDataChunk(CHUNK_FACE_ORIGINAL_INDEX, methods);
    DeleteMe(methods);
    auto* numbers = static_cast<unsigned int*>(m_chunks.GetData(CHUNK_FACE_ORIGINAL_INDEX)->GetBase());
    std::iota(numbers, numbers + m_size, 0u);
}

unsigned int CFaceList::GetOriginalIndex(unsigned int i) const
{
    const void* data = GetData(CHUNK_FACE_ORIGINAL_INDEX, i);
    return data ? *static_cast<const unsigned int*>(data) : 0xFFFFFFFF;
}

// --- Flags ----------------------------------------------------------------------------------------------------------

void CFaceList::SetFaceFlags(unsigned int i, unsigned int mask, bool set) { SetFacesFlags(i, i + 1, mask, set); }

bool CFaceList::IsFaceFlagsSet(unsigned int i, unsigned int mask) const
{
    CFace face;
    return GetFace(i, face) && (face.GetFlags() & mask) == mask;
}

bool CFaceList::IsFaceOneFlagSet(unsigned int i, unsigned int mask) const
{
    CFace face;
    return GetFace(i, face) && (face.GetFlags() & mask) != 0;
}

int CFaceList::GetNumberOfFaces(unsigned int mask, bool wanted) const
{
    const CFaceFlags flags(*this);
    int number = 0;
    for (int i = 0; i < m_size; i++)
        number += ((flags[i] & mask) != 0) == wanted;
    return number;
}

int CFaceList::GetNumberOfFaces(_FACE_PROPERTIES mask, bool wanted) const
{
    const CFaceFlags flags(*this);
    int number = 0;
    for (int i = 0; i < m_size; i++)
        number += ((flags[i] & mask) == mask) == wanted;
    return number;
}

void CFaceList::SetFacesFlags(unsigned int first, unsigned int end, unsigned int mask, bool set)
{
    const CFaceFlags flags(*this);
    end = std::min(end, static_cast<unsigned int>(m_size));
    for (unsigned int i = first; i < end; i++)
        flags[i] = set ? flags[i] | mask : flags[i] & ~mask;
}

CFaceFlags::CFaceFlags(const CFaceList& faces)
{
    static thread_local unsigned int nothing;
    if (const CElementArray* main = faces.GetDataChunks().GetMainArray()) {
        m_words = static_cast<unsigned char*>(const_cast<void*>(main->GetBase()));
        m_stride = main->GetStride();
    } else {
        nothing = FACE_INVALID;
        m_words = reinterpret_cast<unsigned char*>(&nothing);
        m_stride = 0;
    }
}

// --- All corners ----------------------------------------------------------------------------------------------------

bool CFaceList::UpdateIndex(const unsigned int* map, unsigned int n, bool skipDead)
{
    if (!map || n == 0)
        return false;
    const CFaceFlags flags(*this);
    bool changed = false;
    for (int i = 0; i < m_size; i++) {
        if (skipDead && flags.IsDead(i))
            continue;
        int count;
        int* indexes = GetIndexes(i, count);
        for (int k = 0; k < count; k++) {
            const auto value = static_cast<unsigned int>(indexes[k]);
            if (value >= n || map[value] == value || map[value] == 0xFFFFFFFF)
                continue;
            indexes[k] = static_cast<int>(map[value]);
            changed = true;
        }
    }
    return changed;
}

bool CFaceList::UpdateIndex(const CXArray<unsigned int, unsigned int>* map, bool skipDead)
{
    return map && UpdateIndex(map->GetData(), static_cast<unsigned int>(map->GetSize()), skipDead);
}

void CFaceList::FlipNormals()
{
    const CFaceFlags flags(*this);
    for (int i = 0; i < m_size; i++) {
        if (flags.IsDead(i))
            continue;
        int count;
        int* indexes = GetIndexes(i, count);
        if (count == 3)
            std::swap(indexes[0], indexes[2]);
        else
            std::reverse(indexes, indexes + count);
    }
}

bool CFaceList::AreIndexesBelow(int pointCount, bool deadToo) const
{
    const CFaceFlags flags(*this);
    for (int i = 0; i < m_size; i++) {
        if (!deadToo && flags.IsDead(i))
            continue;
        int count;
        const int* indexes = GetIndexes(i, count);
        for (int k = 0; k < count; k++)
            if (indexes[k] < 0 || indexes[k] >= pointCount)
                return false;
    }
    return true;
}

namespace {

// Thomas Wang's integer hash.
std::uint64_t Mix(std::uint64_t key)
{
    key = ~key + (key << 21);
    key ^= key >> 24;
    key *= 265;
    key ^= key >> 14;
    key *= 21;
    key ^= key >> 28;
    return key * 0x80000001;
}

}

// Each step of the sum shifts it by four bits, so that the last eight corners are all that it still holds.
unsigned int CFaceList::GetCornerChecksum() const
{
    constexpr int held = 8;
    unsigned int last[held];
    int found = 0;
    const CFaceFlags flags(*this);
    for (int i = m_size - 1; i >= 0 && found < held; i--) {
        if (flags.IsDead(i))
            continue;
        int count;
        const int* indexes = GetIndexes(i, count);
        for (int k = count - 1; k >= 0 && found < held; k--)
            last[found++] = static_cast<unsigned int>(indexes[k]);
    }
    unsigned int sum = 0;
    while (found > 0)
        sum = (sum + last[--found]) * 16;
    return sum;
}

unsigned int CFaceList::GetChecksum(unsigned int mask) const
{
    unsigned int sum = mask & 4 ? GetCornerChecksum() : 0;
    if (mask & 8) {
        for (unsigned int pos = m_chunks.GetFirstChunk(), id; pos != HASH_END;) {
            const CElementArray* array = m_chunks.GetNextChunk(pos, id);
            sum += static_cast<unsigned int>(Mix(static_cast<std::uint64_t>(id) << 32 | array->GetChecksum()));
        }
    }
    return sum;
}

bool CFaceList::UpdateList(const CGeomInfo*)
{
    if (!IsFlagSet(FACELIST_CHANGED))
        return false;
    FreeGraphs();
    m_flags &= ~static_cast<unsigned int>(FACELIST_CHANGED);
    return true;
}

// --- Stream ---------------------------------------------------------------------------------------------------------

void CFaceList::Serialize(CXArchive& ar)
{
    if (ar.IsLoading()) {
        Load(ar);
        return;
    }
    DropSurplus();
    ar << m_size << (m_flags & FACELIST_STORED);
    m_indexes.Serialize(ar);
    m_chunks.Serialize(ar);
}

void CFaceList::Load(CXArchive& ar)
{
    RemoveAll();
    try {
        int size;
        unsigned int flags;
        ar >> size >> flags;
        if (size < 0)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
        m_indexes.Serialize(ar);
        m_chunks.Serialize(ar);
        m_size = size;
        if (m_indexes.GetEntryCount() != static_cast<unsigned int>(size) || m_chunks.GetDataSize() != static_cast<unsigned int>(size) ||
            !HasMainChunk(sizeof(CFacePropertyData)) || m_chunks.HasObjects() ||
            !m_chunks.IsPlainOrAbsent(CHUNK_FACE_ORIGINAL_INDEX, BASE_ORIGINAL_INDEX, sizeof(unsigned int)))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        m_flags = flags;
    } catch (...) {
        CFaceList::RemoveAll();
        throw;
    }
}
