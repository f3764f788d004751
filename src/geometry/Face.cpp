#include "geometry/Face.h"

#include <algorithm>

#include "geometry/FaceList.h"

bool CFace::SetSize(int size)
{
    if (!CCollectionElement::SetSize(size))
        return false;
    SetFlag(FACE_INVALID, size < 3);
    return true;
}

int* CFace::Resize(int size)
{
    if (!m_collection || (GetSize() != size && !CCollectionElement::SetSize(size)))
        return nullptr;
    SetFlag(FACE_INVALID, false);
    return m_items;
}

void CFace::SetTriangle(int a, int b, int c)
{
    if (int* items = Resize(3)) {
        items[0] = a;
        items[1] = b;
        items[2] = c;
    }
}

void CFace::SetQuadrangle(int a, int b, int c, int d)
{
    if (int* items = Resize(4)) {
        items[0] = a;
        items[1] = b;
        items[2] = c;
        items[3] = d;
    }
}

int CFace::AddIndex(int index)
{
    if (Add(index))
        SetFlag(FACE_INVALID, GetSize() < 2);
    return GetSize();
}

bool CFace::RemoveIndex(int value)
{
    for (int i = GetSize() - 1; i >= 0; i--) {
        if (m_items[i] != value)
            continue;
        RemoveAt(i);
        if (GetSize() < 3)
            SetFlag(FACE_INVALID, true);
        return true;
    }
    return false;
}

int CFace::ReplaceIndex(int from, int to)
{
    if (from == to)
        return 0;
    int replaced = 0;
    for (int i = 0, size = GetSize(); i < size; i++)
        if (m_items[i] == from) {
            m_items[i] = to;
            replaced++;
        }
    return replaced > 1 ? 5 : replaced;
}

int CFace::IsFacePoint(int point) const
{
    for (int i = 0, size = GetSize(); i < size; i++)
        if (m_items[i] == point)
            return i;
    return -1;
}

int CFace::IsFaceEdge(int a, int b, bool directed) const
{
    for (int i = 0, size = GetSize(); i < size; i++) {
        const int from = m_items[i], to = m_items[i + 1 < size ? i + 1 : 0];
        if ((from == a && to == b) || (!directed && from == b && to == a))
            return i;
    }
    return -1;
}

bool CFace::CompareIndexes(const CFace& other, bool rotate) const
{
    const int size = GetSize();
    if (other.GetSize() != size)
        return false;
    if (size == 0)
        return true;
    const int start = rotate ? other.IsFacePoint(m_items[0]) : 0;
    if (start < 0)
        return false;
    const int untilEnd = size - start;
    return std::equal(m_items, m_items + untilEnd, other.m_items + start) && std::equal(m_items + untilEnd, m_items + size, other.m_items);
}

void CFace::Flip() { std::reverse(m_items, m_items + GetSize()); }

void CFace::RemoveAll()
{
    CCollectionElement::SetSize(0);
    SetFlag(FACE_INVALID, true);
}

void CFace::Copy(const CFace& other)
{
    if (!m_list || !other.m_list)
        return;
    CCollectionElement::Copy(other);
    Inherit(other);
}

void CFace::Copy(unsigned int face)
{
    CFace other;
    if (m_list && m_list->GetFace(face, other) && face != m_entry)
        Copy(other);
}

void CFace::Inherit(const CFace& other)
{
    if (m_list && other.m_list)
        m_list->GetDataChunks().CopyData(m_entry, other.m_entry, other.m_list->GetDataChunks());
}

void* CFace::GetData(unsigned int id) const { return m_list ? m_list->GetData(id, m_entry) : nullptr; }

unsigned int CFace::GetSizeOfData(unsigned int id) const { return m_list ? m_list->GetSizeOfData(id) : 0; }
