#pragma once

#include <gtest/gtest.h>

#include "geometry/FaceList.h"

// What holds for every list after every operation. Tests call CheckConsistent after each step; add here what a new kind
// of derived data must agree with.

/// Counts of faces, entries and chunk elements agree; every entry lies in the pool. With `pointCount`, corners of live
/// faces lie below it.
inline void CheckConsistent(const CFaceList& faces, int pointCount = -1)
{
    const unsigned int size = static_cast<unsigned int>(faces.GetSize());
    const auto& indexes = faces.GetIndexCollection();
    ASSERT_GE(indexes.GetEntryCount(), size);
    EXPECT_EQ(indexes.GetOffsets().GetSize(), indexes.GetEntryCount());
    for (unsigned int i = 0; i < indexes.GetEntryCount(); i++) {
        ASSERT_LE(indexes.GetItemCount(i), indexes.GetEntryCapacity(i));
        ASSERT_LE(indexes.GetOffsets().GetAt(i) + 4 + 4 * indexes.GetEntryCapacity(i), indexes.GetPoolUsed());
    }
    EXPECT_LE(indexes.GetPoolUsed(), indexes.GetPoolCapacity());

    const CDataChunk& chunks = faces.GetDataChunks();
    EXPECT_EQ(chunks.GetDataSize(), size);
    unsigned int pos = chunks.GetFirstChunk(), id = 0;
    for (unsigned int i = 0; i < chunks.GetChunksNbr(); i++) {
        const CElementArray* array = chunks.GetNextChunk(pos, id);
        ASSERT_NE(array, nullptr);
        EXPECT_EQ(array->GetSize(), faces.GetSize()) << std::hex << id;
    }
    if (size) {
        EXPECT_NE(faces.GetMainData(size - 1), nullptr);
    }
    EXPECT_EQ(faces.GetMainData(size), nullptr);
    EXPECT_TRUE(pointCount < 0 || faces.AreIndexesBelow(pointCount));
}
