#include "geometry/SingleFace.h"

#include "geometry/FaceList.h"

void CSingleFace::SetList(const CFaceList& list)
{
    SetDefaultCapacity(10);
    if (GetEntryCount() == 0)
        AddEntry(GetDefaultCapacity());
    else
        SetCollectionSize(1, 0, ENTRIES_EMPTY | ESTIMATE_ADDED);
    m_chunks.InitDataChunks(list.GetDataChunks(), 1);
}
