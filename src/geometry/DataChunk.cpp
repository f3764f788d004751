#include "geometry/DataChunk.h"

#include <algorithm>

#include "geometry/ElementMethods.h"
#include "geometry/StreamLimits.h"
#include "tools/Archive.h"
#include "tools/Exception.h"
#include "tools/Hash.h"

namespace {

constexpr unsigned int NO_ID = 0xFFFFFFFF;
constexpr unsigned int STORED_FLAGS = 0xFF;
constexpr int MOST_LOADED_GROWTH = 1 << 20;    // elements: what a stream says costs no more than some megabytes

}

const CDataChunk::Chunk* CDataChunk::Find(unsigned int id) const
{
    for (const Chunk& chunk : m_chunks)
        if (chunk.id == id)
            return &chunk;
    return nullptr;
}

unsigned int CDataChunk::AddDataChunk(unsigned int id, CElementMethods* methods, unsigned int flags)
{
    if (Chunk* chunk = Find(id)) {
        if (flags & CHUNK_MAIN)
            m_mainId = id;
        const CElementMethods* held = chunk->array->GetMethods();
        const bool alike = held && methods && held->GetType() == methods->GetType() && held->GetSizeof() == methods->GetSizeof();
        if (!(flags & CHUNK_REPLACE) && alike) {
            chunk->array->SetMethods(methods);
            chunk->flags = flags & STORED_FLAGS;
            UpdateMainChunk();
            return GetChunksNbr();
        }
    }
    auto* array = new CElementArray(methods);    // first: `methods` may be those of the chunk that goes
    RemoveDataChunk(id);
    ApplyPreAllocation(*array);
    array->SetSize(static_cast<int>(m_size), true, m_grow);
    Insert(id, flags & STORED_FLAGS, array);
    if (flags & CHUNK_MAIN)
        m_mainId = id;
    UpdateMainChunk();
    return GetChunksNbr();
}

void CDataChunk::Insert(unsigned int id, unsigned int flags, CElementArray* array)
{
    m_chunks.push_back({id, flags, m_sequence++, array});
    SortBySlot();
}

void CDataChunk::SortBySlot()
{
    if (m_chunks.size() < 2)
        return;
    std::ranges::sort(m_chunks, {}, &Chunk::sequence);
    CHashMap<unsigned int, std::size_t> slots;
    for (std::size_t i = 0; i < m_chunks.size(); i++)
        slots.Insert(m_chunks[i].id, i);
    std::vector<Chunk> sorted;
    for (const auto& [id, place] : slots)
        sorted.push_back(m_chunks[place]);
    m_chunks = std::move(sorted);
}

bool CDataChunk::RemoveDataChunk(unsigned int id)
{
    Chunk* chunk = Find(id);
    if (!chunk)
        return false;
    delete chunk->array;
    m_chunks.erase(m_chunks.begin() + (chunk - m_chunks.data()));
    SortBySlot();
    if (id == m_mainId) {
        m_mainId = NO_ID;
        m_main = nullptr;
    }
    return true;
}

unsigned int CDataChunk::GetSizeOfDataChunk(unsigned int id) const
{
    const Chunk* chunk = Find(id);
    return chunk ? chunk->array->GetSizeof() : 0;
}

CElementArray* CDataChunk::GetData(unsigned int id) const
{
    const Chunk* chunk = Find(id);
    return chunk ? chunk->array : nullptr;
}

void* CDataChunk::GetData(unsigned int id, unsigned int index) const
{
    const Chunk* chunk = Find(id);
    return chunk ? chunk->array->GetAt(static_cast<int>(index)) : nullptr;
}

CElementArray* CDataChunk::GetNextChunk(unsigned int& pos, unsigned int& id) const
{
    if (pos >= m_chunks.size()) {
        pos = NO_ID;
        return nullptr;
    }
    const Chunk& chunk = m_chunks[pos];
    id = chunk.id;
    pos = pos + 1 < m_chunks.size() ? pos + 1 : NO_ID;
    return chunk.array;
}

bool CDataChunk::IsPlainOrAbsent(unsigned int id, unsigned int baseType, unsigned int size) const
{
    const Chunk* chunk = Find(id);
    return !chunk || HoldsPlain(*chunk->array, baseType, size);
}

bool CDataChunk::HasObjects() const
{
    return std::ranges::any_of(m_chunks,
                               [](const Chunk& chunk) { return chunk.array->GetMethods() && chunk.array->GetMethods()->IsObject(); });
}

unsigned int CDataChunk::GetChunkFlags(unsigned int id) const
{
    const Chunk* chunk = Find(id);
    return chunk ? chunk->flags : 0;
}

void CDataChunk::UpdateMainChunk()
{
    const Chunk* main = Find(m_mainId);
    m_main = main ? main->array : nullptr;
}

void CDataChunk::ApplyPreAllocation(CElementArray& array) const
{
    if (m_preAllocate == 0 || array.GetSize() > 0)
        return;
    if (m_preAllocateConstruct)
        array.SetConstruct(true);
    array.PreAllocate(static_cast<int>(m_preAllocate));
}

void CDataChunk::SetDataSize(int n, bool keep, int grow)
{
    if (n < 0)
        return;
    if (!keep) {
        m_preAllocate = 0;
        m_preAllocateConstruct = false;
    }
    m_size = static_cast<unsigned int>(n);
    m_grow = grow;
    for (const Chunk& chunk : m_chunks) {
        ApplyPreAllocation(*chunk.array);
        chunk.array->SetSize(n, keep, grow);
    }
}

void CDataChunk::PreAllocate(int n, bool construct)
{
    RemoveAll();
    m_preAllocate = static_cast<unsigned int>(std::max(n, 0));
    m_preAllocateConstruct = construct;
}

void CDataChunk::RemoveAll()
{
    for (const Chunk& chunk : m_chunks)
        chunk.array->RemoveAll();
    m_size = m_preAllocate = 0;
    m_preAllocateConstruct = false;
}

void CDataChunk::DeleteAll()
{
    for (const Chunk& chunk : m_chunks)
        delete chunk.array;
    m_chunks.clear();
    m_size = m_preAllocate = m_sequence = 0;
    m_preAllocateConstruct = false;
    m_mainId = NO_ID;
    m_main = nullptr;
    m_grow = -1;
}

void CDataChunk::FreeExtra()
{
    m_preAllocate = 0;
    m_preAllocateConstruct = false;
    for (const Chunk& chunk : m_chunks)
        chunk.array->FreeExtra();
}

int CDataChunk::SetGrowFactor(int grow)
{
    for (const Chunk& chunk : m_chunks)
        chunk.array->SetGrowFactor(grow);
    return m_chunks.empty() ? 0 : grow;
}

void CDataChunk::InitDataChunks(const CDataChunk& model, unsigned int n)
{
    if (&model == this)
        return;
    DeleteAll();
    m_size = n == NO_ID ? model.m_size : n;
    for (const Chunk& chunk : model.m_chunks) {
        if (!(chunk.flags & CHUNK_INHERITED))
            continue;
        CElementArray* array = chunk.array->Duplicate(false);
        array->SetSize(static_cast<int>(m_size), false, m_grow);
        m_chunks.push_back({chunk.id, chunk.flags, chunk.sequence, array});
    }
    m_sequence = model.m_sequence;
    SortBySlot();
    m_mainId = model.m_mainId;
    UpdateMainChunk();
}

void CDataChunk::AppendDataChunks(const CDataChunk& other, bool empty)
{
    if (&other == this)
        return;
    for (const Chunk& chunk : other.m_chunks) {
        if (!(chunk.flags & CHUNK_INHERITED) || HasDataChunk(chunk.id))
            continue;
        CElementArray* array = chunk.array->Duplicate(!empty);
        array->SetSize(static_cast<int>(m_size), true, m_grow);
        Insert(chunk.id, chunk.flags, array);
        if ((chunk.flags & CHUNK_MAIN) && m_mainId == NO_ID)
            m_mainId = chunk.id;
    }
    UpdateMainChunk();
}

unsigned int CDataChunk::CopyData(const CDataChunk& source)
{
    if (&source == this)
        return GetChunksNbr();
    for (std::size_t i = m_chunks.size(); i-- > 0;)
        if (const unsigned int id = m_chunks[i].id; !source.HasDataChunk(id))
            RemoveDataChunk(id);
    unsigned int handled = 0;
    for (const Chunk& chunk : source.m_chunks) {
        if (CElementArray* array = GetData(chunk.id))
            array->Copy(*chunk.array, false);
        else if (chunk.flags & CHUNK_INHERITED)
            Insert(chunk.id, chunk.flags, chunk.array->Duplicate(true));
        else
            continue;
        handled++;
    }
    m_mainId = source.m_mainId;
    UpdateMainChunk();
    SetDataSize(static_cast<int>(source.m_size), true, m_grow);
    return handled;
}

unsigned int CDataChunk::CopyData(unsigned int to, unsigned int from, const CDataChunk& source)
{
    if (to >= m_size || from >= source.m_size)
        return 0;
    unsigned int copied = 0;
    for (const Chunk& chunk : source.m_chunks)
        if (CElementArray* array = GetData(chunk.id))
            copied += array->CopyElement(static_cast<int>(to), static_cast<int>(from), *chunk.array);
    return copied;
}

unsigned int CDataChunk::GatherData(int to, const CDataChunk& source, const int* from, int count)
{
    unsigned int taken = 0;
    for (const Chunk& chunk : source.m_chunks)
        if (CElementArray* array = GetData(chunk.id))
            taken += array->Gather(to, *chunk.array, from, count);
    return taken;
}

bool CDataChunk::Reorder(const unsigned int* order, unsigned int n, bool inverse)
{
    bool all = true;
    for (const Chunk& chunk : m_chunks)
        all = chunk.array->Reorder(order, n, inverse) && all;
    return all;
}

void CDataChunk::Serialize(CXArchive& ar)
{
    if (ar.IsLoading())
        return Load(ar);
    if (GetChunksNbr() > MOST_STORED_CHUNKS)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT, L"a list has more chunks than a stream can hold");
    ar << GetChunksNbr() << m_size << static_cast<unsigned int>(m_grow);
    for (const Chunk& chunk : m_chunks) {
        ar << chunk.id << chunk.flags << 1u;    // an array always has a class of its own
        ar.WriteClass(chunk.array->GetRuntimeClassDescriptor());
        chunk.array->Serialize(ar);
    }
}

void CDataChunk::Load(CXArchive& ar)
{
    DeleteAll();
    unsigned int count, size, grow;
    ar >> count >> size >> grow;
    ar.CheckCount(count, 3 * sizeof(unsigned int));
    if (size > 0x7FFFFFFF || count > MOST_STORED_CHUNKS)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
    m_grow = std::clamp(static_cast<int>(grow), -1, MOST_LOADED_GROWTH);
    CHashTable<unsigned int> ids;
    for (unsigned int i = 0; i < count; i++) {
        unsigned int id, flags, hasClass;
        ar >> id >> flags >> hasClass;
        if (hasClass && ar.ReadClass() != CElementArray::GetThisRuntimeClassDescriptor())
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
        if (!ids.Insert(id))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        if (flags & CHUNK_MAIN)
            flags |= CHUNK_INHERITED;    // copies of the list need it too
        auto* array = new CElementArray;
        m_chunks.push_back({id, flags & STORED_FLAGS, m_sequence++, array});    // owned from here on
        array->Serialize(ar);
        if (!array->GetMethods() || array->GetSize() != static_cast<int>(size))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        if (flags & CHUNK_MAIN)
            m_mainId = id;
    }
    SortBySlot();
    m_size = size;
    UpdateMainChunk();
}
