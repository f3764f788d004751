#include "geometry/DataChunk.h"

#include <gtest/gtest.h>

#include <vector>

#include "geometry/3DPointList.h"
#include "geometry/ElementMethods.h"
#include "geometry/PointMethods.h"
#include "support/Streams.h"
#include "tools/Hash.h"

namespace {

constexpr unsigned int NONE = 0xFFFFFFFF;
constexpr unsigned int A = 1, B = 2, C = 3;

using Numbers = COriginalIndexMethods;    // 4 bytes, default all ones
using Zeros = CMaxFaceMethods;            // 4 bytes, default 0
using Wide = CMaxFaceMethods2;            // 8 bytes, default 0

template <class METHODS> unsigned int Add(CDataChunk& chunks, unsigned int id, unsigned int flags = CHUNK_INHERITED | CHUNK_REPLACE)
{
    auto* methods = new METHODS;
    const unsigned int count = chunks.AddDataChunk(id, methods, flags);
    EXPECT_EQ(methods->GetRefCount(), 2);    // the chunk's and ours
    DeleteMe(methods);
    return count;
}

unsigned int& Value(const CDataChunk& chunks, unsigned int id, unsigned int index)
{
    return *static_cast<unsigned int*>(chunks.GetData(id, index));
}

std::vector<unsigned int> Values(const CDataChunk& chunks, unsigned int id)
{
    std::vector<unsigned int> values;
    if (const CElementArray* array = chunks.GetData(id)) {
        EXPECT_EQ(array->GetSize(), static_cast<int>(chunks.GetDataSize()));
        for (unsigned int i = 0; i < chunks.GetDataSize(); i++)
            values.push_back(Value(chunks, id, i));
    }
    return values;
}

void SetValues(CDataChunk& chunks, unsigned int id, const std::vector<unsigned int>& values)
{
    for (unsigned int i = 0; i < values.size(); i++)
        Value(chunks, id, i) = values[i];
}

std::vector<unsigned int> Ids(const CDataChunk& chunks)
{
    std::vector<unsigned int> ids;
    unsigned int id = 0;
    for (unsigned int pos = chunks.GetFirstChunk(); pos != NONE;) {
        const CElementArray* array = chunks.GetNextChunk(pos, id);
        EXPECT_EQ(array, chunks.GetData(id));
        ids.push_back(id);
    }
    return ids;
}

}

TEST(DataChunk, AddingAnIdAgainKeepsOrResets)
{
    // Faults in mind: replacing reads methods that went with the old chunk; the main chunk is looked up in the array that went;
    // a chunk of another element size keeps its bytes.
    struct {
        const char* name;
        unsigned int firstFlags, flags;
        bool wide;
        unsigned int value, stored;
        bool main;
    } const rows[] = {
        {"kept", 0x1, 0x0, false, 7, 0x0, false},
        {"kept, now main", 0x1, 0x3, false, 7, 0x3, true},
        {"kept main, flag gone", 0x3, 0x1, false, 7, 0x1, true},
        {"replaced", 0x1, 0x101, false, 0, 0x1, false},
        {"replaced main", 0x3, 0x103, false, 0, 0x3, true},
        {"another size", 0x1, 0x0, true, 0, 0x0, false},
        {"high bits", 0x1, 0xF01, true, 0, 0x1, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CDataChunk chunks;
        chunks.SetDataSize(2, true, -1);
        Add<Zeros>(chunks, A, row.firstFlags);
        Value(chunks, A, 1) = 7;
        const unsigned int count = row.wide ? Add<Wide>(chunks, A, row.flags) : Add<Zeros>(chunks, A, row.flags);
        EXPECT_EQ(count, 1u);
        EXPECT_EQ(Values(chunks, A), (std::vector<unsigned int>{0, row.value}));
        EXPECT_EQ(chunks.GetSizeOfDataChunk(A), row.wide ? 8u : 4u);
        EXPECT_EQ(chunks.GetChunkFlags(A), row.stored);
        EXPECT_EQ(chunks.GetMainData(1), row.main ? chunks.GetData(A, 1) : nullptr);
    }

    CDataChunk chunks;
    chunks.SetDataSize(1, true, -1);
    Add<Numbers>(chunks, A);
    Value(chunks, A, 0) = 3;
    chunks.AddDataChunk(A, chunks.GetData(A)->GetMethods(), CHUNK_REPLACE);    // its own methods
    EXPECT_EQ(Values(chunks, A), std::vector<unsigned int>{NONE});
}

TEST(DataChunk, HeirsTakeInheritedChunksOnly)
{
    CDataChunk model;
    model.SetDataSize(3, true, -1);
    Add<Numbers>(model, A, CHUNK_INHERITED | CHUNK_MAIN);
    Add<Zeros>(model, B, 0);
    Add<Wide>(model, C, CHUNK_INHERITED);
    SetValues(model, A, {10, 11, 12});

    CDataChunk heir;
    Add<Zeros>(heir, B);    // what it had goes
    heir.InitDataChunks(model, NONE);
    EXPECT_EQ(heir.GetChunksNbr(), 2u);
    EXPECT_EQ(Values(heir, A), (std::vector<unsigned int>{NONE, NONE, NONE}));    // the shape, not the data
    EXPECT_EQ(heir.GetMainData(2), heir.GetData(A, 2));
    heir.InitDataChunks(model, 1);
    EXPECT_EQ(Values(heir, C), std::vector<unsigned int>{0});
    EXPECT_TRUE(heir.RemoveDataChunk(A));
    EXPECT_EQ(heir.GetMainData(0), nullptr);
}

TEST(DataChunk, PointChunkTakesNoBytesThatAreNoPoint)
{
    // Fault in mind: a stream gave one list a chunk of points under an id that is plain data elsewhere; a virtual call on plain
    // bytes follows.
    CDataChunk points, plain;
    for (CDataChunk* chunks : {&points, &plain})
        chunks->SetDataSize(2, true, -1);
    Add<C3DPointMethods>(points, A);
    Add<Numbers>(plain, A);
    auto& point = *static_cast<C3DTPoint<float>*>(points.GetData(A, 1));
    point = C3DTPoint<float>(1, 2, 3);
    points.CopyData(1, 0, plain);
    EXPECT_EQ(point, (C3DTPoint<float>(1, 2, 3)));
    points.CopyData(plain);
    EXPECT_EQ(static_cast<CPt*>(points.GetData(A, 1))->GetFlags(), 0u);
    points.SetDataSize(5, true, -1);

    CDataChunk vectors;    // another kind of point is converted
    vectors.SetDataSize(1, true, -1);
    Add<C3DVectorMethods>(vectors, A);
    *static_cast<C3DTVector<float>*>(vectors.GetData(A, 0)) = C3DTVector<float>(4, 5, 6);
    points.CopyData(4, 0, vectors);
    EXPECT_EQ(*static_cast<C3DTPoint<float>*>(points.GetData(A, 4)), (C3DTPoint<float>(4, 5, 6)));
}

// --- Streams -----------------------------------------------------------------------------------------------------------------

TEST(DataChunk, StreamBringsBackChunksAndTheirOrder)
{
    CDataChunk chunks;
    chunks.SetDataSize(3, true, 16);
    for (const unsigned int id : {1, 20, 102})    // 20 and 102 collide, see above
        Add<Numbers>(chunks, id, CHUNK_INHERITED);
    Add<Wide>(chunks, 13, CHUNK_INHERITED | CHUNK_MAIN);
    SetValues(chunks, 102, {10, 11, 12});
    const auto bytes = Stored(chunks);

    CDataChunk loaded;
    Add<Zeros>(loaded, C);
    ASSERT_TRUE(Load(loaded, bytes));
    EXPECT_EQ(Ids(loaded), Ids(chunks));
    EXPECT_EQ(loaded.GetDataSize(), 3u);
    EXPECT_EQ(Values(loaded, 102), (std::vector<unsigned int>{10, 11, 12}));
    EXPECT_EQ(Values(loaded, 1), (std::vector<unsigned int>{NONE, NONE, NONE}));
    EXPECT_EQ(loaded.GetMainData(2), loaded.GetData(13, 2));
    EXPECT_EQ(loaded.GetChunkFlags(13), CHUNK_INHERITED | CHUNK_MAIN);
    EXPECT_EQ(Stored(loaded), bytes);
    for (std::size_t size = 0; size < bytes.size(); size++) {
        CDataChunk cut;
        EXPECT_FALSE(Load(cut, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)})) << size;
    }
    CDataChunk empty;
    ASSERT_TRUE(Load(loaded, Stored(empty)));
    EXPECT_EQ(loaded.GetChunksNbr(), 0u);
}

namespace {

// A record of one chunk, written by hand.
struct Record {
    unsigned int count = 1, size = 2, hasClass = 1, secondId = B;
    const CXRuntimeClass* arrayClass = CElementArray::GetThisRuntimeClassDescriptor();
    int elements = 2;
    bool methods = true;

    void Serialize(CXArchive& ar) const
    {
        ar << count << size << NONE;
        for (unsigned int i = 0; i < count; i++) {
            ar << (i ? secondId : A) << static_cast<unsigned int>(CHUNK_INHERITED) << hasClass;
            if (hasClass)
                ar.WriteClass(arrayClass);
            CElementMethods* numbers = methods ? new Numbers : nullptr;
            CElementArray array(numbers);
            DeleteMe(numbers);
            array.SetSize(elements);
            array.Serialize(ar);
        }
    }
};

}

TEST(DataChunk, DamagedStreamIsRefused)
{
    struct {
        const char* name;
        Record record;
        bool sound;
    } const rows[] = {
        {"sound", {}, true},
        {"two", {.count = 2}, true},
        {"array without class", {.hasClass = 0}, true},
        {"element count of an array", {.elements = 1}, false},
        {"element count of all", {.size = 0x80000000, .elements = 0}, false},
        {"an id twice", {.count = 2, .secondId = A}, false},
        {"array class of another family", {.arrayClass = Numbers::GetThisRuntimeClassDescriptor()}, false},
        {"a list inside a list", {.arrayClass = C3DPointList::GetThisRuntimeClassDescriptor()}, false},
        {"null class", {.arrayClass = nullptr}, false},
        {"no methods", {.size = 0, .elements = 0, .methods = false}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Record record = row.record;
        CDataChunk chunks;
        EXPECT_EQ(Load(chunks, Stored(record)), row.sound);
        chunks.SetDataSize(3, true, -1);    // whatever came: it can still be used
    }
}
