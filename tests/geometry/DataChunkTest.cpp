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

TEST(DataChunk, WalkGoesBySlotOfTheIds)
{
    // Start slots of a table of 101, id * 16 modulo 101: 1 -> 16, 102 -> 16, 20 -> 17, 7 -> 11, 13 -> 6. What collides goes 1, then 3
    // on, so the order in which 1 and 102 come decides.
    struct {
        const char* name;
        std::vector<unsigned int> added, walk;
    } const rows[] = {
        {"empty", {}, {}},
        {"no collision", {1, 7, 20, 13}, {13, 7, 1, 20}},
        {"102 behind 20", {1, 20, 102, 13}, {13, 1, 20, 102}},
        {"102 first", {102, 1, 7}, {7, 102, 1}},
        {"20 is pushed on", {102, 1, 20}, {102, 1, 20}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CDataChunk chunks;
        for (const unsigned int id : row.added)
            Add<Numbers>(chunks, id);
        EXPECT_EQ(Ids(chunks), row.walk);
        CDataChunk heir;
        heir.InitDataChunks(chunks, 0);
        EXPECT_EQ(Ids(heir), row.walk);
    }
    CDataChunk chunks;
    for (const unsigned int id : {1, 20, 102})
        Add<Numbers>(chunks, id);
    EXPECT_TRUE(chunks.RemoveDataChunk(20));
    EXPECT_FALSE(chunks.RemoveDataChunk(20));
    EXPECT_EQ(Ids(chunks), (std::vector<unsigned int>{1, 102}));
}

TEST(DataChunk, SizesOfAllChunksGoTogether)
{
    CDataChunk chunks;
    chunks.PreAllocate(100, true);
    Add<Numbers>(chunks, A);
    EXPECT_GE(chunks.GetData(A)->GetCapacity(), 100);
    chunks.SetDataSize(3, true, -1);
    SetValues(chunks, A, {10, 11, 12});
    Add<Zeros>(chunks, B);
    chunks.ExpandDataSize(2);
    EXPECT_EQ(Values(chunks, A), (std::vector<unsigned int>{10, 11, 12, NONE, NONE}));
    EXPECT_EQ(Values(chunks, B), std::vector<unsigned int>(5));
    EXPECT_EQ(chunks.GetData(A, 5), nullptr);
    EXPECT_EQ(chunks.GetData(A, NONE), nullptr);
    EXPECT_EQ(chunks.GetData(C, 0), nullptr);
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

    struct {
        const char* name;
        bool empty;
        unsigned int size;
        std::vector<unsigned int> values;
    } const rows[] = {
        {"with data, shorter", false, 2, {10, 11}},
        {"with data, longer", false, 4, {10, 11, 12, NONE}},
        {"empty", true, 3, {NONE, NONE, NONE}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CDataChunk chunks;
        chunks.SetDataSize(static_cast<int>(row.size), true, -1);
        Add<Zeros>(chunks, C);
        chunks.AppendDataChunks(model, row.empty);
        EXPECT_EQ(chunks.GetChunksNbr(), 2u);
        EXPECT_EQ(Values(chunks, A), row.values);
        EXPECT_EQ(chunks.GetSizeOfDataChunk(C), 4u);    // not touched
        EXPECT_EQ(chunks.GetMainData(0), chunks.GetData(A, 0));
    }
}

TEST(DataChunk, CopiesFollowTheSource)
{
    CDataChunk source;
    source.SetDataSize(3, true, -1);
    Add<Numbers>(source, A, CHUNK_INHERITED | CHUNK_MAIN);
    Add<Zeros>(source, B, 0);
    SetValues(source, A, {10, 11, 12});
    SetValues(source, B, {20, 21, 22});

    struct {
        const char* name;
        bool hasB, hasC;
        unsigned int size, handled;
    } const rows[] = {
        {"into nothing", false, false, 0, 1},
        {"both, and one to lose", true, true, 7, 2},
        {"one to lose", false, true, 2, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CDataChunk copy;
        copy.SetDataSize(static_cast<int>(row.size), true, -1);
        if (row.hasB)
            Add<Zeros>(copy, B);
        if (row.hasC)
            Add<Wide>(copy, C, CHUNK_MAIN);
        EXPECT_EQ(copy.CopyData(source), row.handled);
        EXPECT_EQ(copy.GetChunksNbr(), row.handled);
        EXPECT_EQ(copy.GetDataSize(), 3u);
        EXPECT_EQ(Values(copy, A), (std::vector<unsigned int>{10, 11, 12}));
        EXPECT_EQ(copy.GetMainData(1), copy.GetData(A, 1));
        if (row.hasB) {
            EXPECT_EQ(Values(copy, B), (std::vector<unsigned int>{20, 21, 22}));
        }
    }

    CDataChunk other;
    other.SetDataSize(2, true, -1);
    Add<Numbers>(other, A);
    Add<Wide>(other, C);
    EXPECT_EQ(other.CopyData(1, 2, source), 1u);    // B is not there
    EXPECT_EQ(Values(other, A), (std::vector<unsigned int>{NONE, 12}));
    EXPECT_EQ(other.CopyData(2, 0, source), 0u);
    EXPECT_EQ(other.CopyData(0, 3, source), 0u);
    EXPECT_EQ(source.CopyData(0, 2, source), 2u);
    EXPECT_EQ(Values(source, B), (std::vector<unsigned int>{22, 21, 22}));
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
