#pragma once

#include "geometry/DataChunk.h"
#include "tools/SimpleCollection.h"

class CFaceList;

/// A detached face: scratch storage for the corners and side data of one face of a list.
///
/// Exactly one entry, and one element in each chunk, once SetList has shaped it.
class ZEL_API CSingleFace : public CSimpleCollection<int, unsigned short> {
public:
    CSingleFace() = default;
    explicit CSingleFace(const CFaceList& list) { SetList(list); }
    CSingleFace(const CSingleFace&) = delete;
    CSingleFace& operator=(const CSingleFace&) = delete;

    /// Room for a face of that list: one entry of 10 corners without any, and the list's chunks with one default
    /// element each.
    void SetList(const CFaceList& list);
    const CDataChunk& GetDataChunks() const { return m_chunks; }
    CDataChunk& GetDataChunks() { return m_chunks; }

private:
    CDataChunk m_chunks;
};
