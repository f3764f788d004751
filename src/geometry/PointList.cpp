#include "geometry/PointList.h"

#include "geometry/ElementMethods.h"
#include "geometry/FaceList.h"
#include "tools/Archive.h"
#include "tools/Exception.h"

ZEL_IMPLEMENT_DYNAMIC(CPointList, CElementArray)

CPointList::~CPointList() = default;

void CPointList::Init(CElementMethods* methods, const CPointList* model)
{
    SetMethods(methods);
    DeleteMe(methods);
    if (model)
        m_chunks.InitDataChunks(model->m_chunks, 0);
}

void CPointList::Serialize(CXArchive& ar)
{
    if (ar.IsStoring()) {
        m_chunks.Serialize(ar);
        CElementArray::Serialize(ar);
        return;
    }
    RemoveAll();
    try {
        m_chunks.Serialize(ar);
        CElementArray::Serialize(ar);    // takes only elements of this list's kind
        if (m_chunks.GetDataSize() != static_cast<unsigned int>(GetSize()) ||
            !m_chunks.IsPlainOrAbsent(CHUNK_POINT_ORIGINAL_INDEX, BASE_ORIGINAL_INDEX, sizeof(unsigned int)))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    } catch (...) {
        m_chunks.DeleteAll();
        RemoveAll();
        throw;
    }
}

bool CPointList::SetSize(int size, bool keep, int grow)
{
    if (size < 0)
        return false;
    if (size != GetSize())
        SetFlag(POINTLIST_CHANGED, true);
    m_chunks.SetDataSize(size, keep, grow);
    return CElementArray::SetSize(size, keep, grow);
}

void CPointList::RemoveAll()
{
    m_changedStamp++;
    m_listFlags = 0;
    m_chunks.RemoveAll();
    CElementArray::RemoveAll();
}

CElementArray* CPointList::Duplicate(bool data) const { return CElementArray::Duplicate(data); }

unsigned int CPointList::GetChecksum(unsigned int mask) const
{
    if (!(mask & 2))
        return 0;
    unsigned int hash = 0;
    for (int i = GetChecksumStart(), count = GetSize(); i < count; i++) {
        const unsigned int flags = ElementAt(i)->flags;
        if (!(flags & POINT_INVALID))
            hash = (hash + flags + static_cast<unsigned int>(i)) * 16;
    }
    return hash;
}

int CPointList::GetChecksumStart() const
{
    int start = GetSize();
    for (int live = 0; start > 0 && live < 8;)
        live += !(ElementAt(--start)->flags & POINT_INVALID);
    return start;
}

void CPointList::Inherit(const CPointList& model)
{
    m_listFlags = model.m_listFlags;
    m_chunks.InitDataChunks(model.m_chunks, static_cast<unsigned int>(GetSize()));
}

CPointList& CPointList::operator=(const CPointList& other)
{
    if (this == &other)
        return *this;
    Inherit(other);
    m_chunks.CopyData(other.m_chunks);
    CElementArray::Copy(other, false);
    SetFlag(POINTLIST_CHANGED, true);
    return *this;
}

bool CPointList::UpdateList(const CGeomInfo*)
{
    if (!IsFlagSet(POINTLIST_CHANGED))
        return false;
    SetFlag(POINTLIST_CHANGED, false);
    return true;
}

void CPointList::SetFlag(_POINTLIST_PROPERTIES mask, bool set)
{
    m_listFlags = set ? m_listFlags | mask : m_listFlags & ~static_cast<unsigned int>(mask);
    if (set && (mask & POINTLIST_CHANGED))
        m_changedStamp++;
}

bool CPointList::CopyPoint(int to, int from) { return to == from || CopyPoint(to, from, *this); }

bool CPointList::CopyPoint(int to, int from, const CPointList& source)
{
    if (!ElementAt(to) || !source.ElementAt(from))
        return false;
    CElementArray::CopyElement(to, from, source);
    m_chunks.CopyData(static_cast<unsigned int>(to), static_cast<unsigned int>(from), source.m_chunks);
    return true;
}

bool CPointList::GatherPoints(int to, const CPointList& source, const int* from, int count)
{
    if (!CElementArray::Gather(to, source, from, count))
        return false;
    m_chunks.GatherData(to, source.m_chunks, from, count);
    return true;
}

void CPointList::PreAllocate(int n, bool construct)
{
    RemoveAll();
    m_chunks.PreAllocate(n, construct);
    if (construct)
        SetConstruct(true);
    CElementArray::PreAllocate(n);
}

void CPointList::FreeExtra()
{
    m_chunks.FreeExtra();
    CElementArray::FreeExtra();
}

void CPointList::SetGrowFactor(int grow)
{
    m_chunks.SetGrowFactor(grow);
    CElementArray::SetGrowFactor(grow);
}

bool CPointList::Reorder(const unsigned int* order, unsigned int n, bool inverse)
{
    m_chunks.Reorder(order, n, inverse);
    return CElementArray::Reorder(order, n, inverse);
}

unsigned int CPointList::AddDataChunk(unsigned int id, CElementMethods* methods)
{
    return m_chunks.AddDataChunk(id, methods, CHUNK_INHERITED | CHUNK_REPLACE);
}

void CPointList::AppendDataChunks(CPointList* other, bool empty)
{
    if (other)
        m_chunks.AppendDataChunks(other->m_chunks, empty);
}

void CPointList::SavePointsIndex()
{
    auto* methods = new COriginalIndexMethods;
    AddDataChunk(CHUNK_POINT_ORIGINAL_INDEX, methods);
    DeleteMe(methods);
    auto* indexes = static_cast<unsigned int*>(m_chunks.GetData(CHUNK_POINT_ORIGINAL_INDEX)->GetBase());
    for (unsigned int i = 0, count = static_cast<unsigned int>(GetSize()); i < count; i++)
        indexes[i] = i;
}

unsigned int CPointList::GetOriginalIndex(unsigned int index) const
{
    const auto* original = static_cast<const unsigned int*>(GetData(CHUNK_POINT_ORIGINAL_INDEX, index));
    return original ? *original : 0xFFFFFFFF;
}

int CPointList::GetNumberOfPoints(unsigned int mask, bool wanted) const
{
    int number = 0;
    const CPt* point = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++, point = GetNext(point))
        number += ((point->flags & mask) != 0) == wanted;
    return number;
}

int CPointList::GetNumberOfPoints(_POINT_PROPERTIES mask, bool wanted) const
{
    int number = 0;
    const CPt* point = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++, point = GetNext(point))
        number += ((point->flags & mask) == mask) == wanted;
    return number;
}

void CPointList::SetPointsFlags(unsigned int mask, bool set)
{
    CPt* point = GetFirst();
    for (int i = 0, count = GetSize(); i < count; i++, point = GetNext(point))
        point->SetFlags(mask, set);
}

void CPointList::SetInvalidPoints(CFaceList& faces, bool keep) { SetInvalidPoints(&faces, keep); }

void CPointList::SetInvalidPoints(CFaceList* faces, bool keep)
{
    if (!keep)
        SetPointsFlags(POINT_INVALID, false);
    const unsigned int pointCount = static_cast<unsigned int>(GetSize());
    CBlockVector<unsigned char> used(pointCount, 0);
    if (faces)
        faces->ForEachLiveFace([&, used = used.data()](int, const int* corners, int count) {
            for (int k = 0; k < count; k++)
                if (static_cast<unsigned int>(corners[k]) < pointCount)
                    used[corners[k]] = 1;
        });
    CPt* point = GetFirst();
    for (unsigned int i = 0; i < pointCount; i++, point = GetNext(point))
        if (!used[i])
            point->flags |= POINT_INVALID;
}
