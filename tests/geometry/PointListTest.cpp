#include "geometry/PointList.h"

#include <gtest/gtest.h>

#include <vector>

#include "geometry/3DPointList.h"
#include "geometry/3DVectorList.h"
#include "geometry/ElementMethods.h"
#include "support/Owned.h"
#include "support/Streams.h"

namespace {

constexpr unsigned int NONE = 0xFFFFFFFF;
constexpr unsigned int EXTRA = 7;

// x tells the points apart.
Owned<C3DPointList> Points(const std::vector<float>& xs)
{
    Owned<C3DPointList> list(C3DPointList::Create());
    list->SetSize(static_cast<int>(xs.size()));
    for (std::size_t i = 0; i < xs.size(); i++)
        *list->ElementAt(static_cast<int>(i)) = C3DTPoint<float>(xs[i], 2, 3);
    list->SetFlag(POINTLIST_CHANGED, false);
    return list;
}

void AddExtra(CPointList& list)
{
    auto* methods = new CBackFaceMaterialMethods;
    list.AddDataChunk(EXTRA, methods);
    DeleteMe(methods);
}

std::vector<float> Xs(const C3DPointList& list)
{
    std::vector<float> xs;
    const C3DTPoint<float>* point = list.GetFirst();
    for (int i = 0; i < list.GetSize(); i++, point = list.GetNext(point))
        xs.push_back(point->x);
    return xs;
}

std::vector<unsigned int> OriginalIndices(const CPointList& list)
{
    std::vector<unsigned int> indices;
    for (int i = 0; i < list.GetSize(); i++)
        indices.push_back(list.GetOriginalIndex(static_cast<unsigned int>(i)));
    return indices;
}

void CheckConsistent(const CPointList& list)
{
    EXPECT_EQ(list.GetDataChunks().GetDataSize(), static_cast<unsigned int>(list.GetSize()));
    unsigned int id = 0;
    for (unsigned int pos = list.GetDataChunks().GetFirstChunk(); pos != NONE;)
        EXPECT_EQ(list.GetDataChunks().GetNextChunk(pos, id)->GetSize(), list.GetSize());
}

}

TEST(PointList, ChangesAreTold)
{
    // What each operation does to the changed bit and to the stamp.
    const unsigned int order[] = {1, 0, 2};
    const Owned<C3DPointList> other = Points({9});
    struct {
        const char* name;
        void (*operation)(C3DPointList&, const unsigned int* order, const C3DPointList& other);
        bool changed, stamped;
    } const rows[] = {
        {"another size", [](C3DPointList& l, const unsigned int*, const C3DPointList&) { l.SetSize(4); }, true, true},
        {"the same size", [](C3DPointList& l, const unsigned int*, const C3DPointList&) { l.SetSize(3); }, false, false},
        {"RemoveAll", [](C3DPointList& l, const unsigned int*, const C3DPointList&) { l.RemoveAll(); }, false, true},
        {"assignment", [](C3DPointList& l, const unsigned int*, const C3DPointList& o) { l = o; }, true, true},
        {"Reorder", [](C3DPointList& l, const unsigned int* o, const C3DPointList&) { l.Reorder(o, 3, false); }, false, false},
        {"a point", [](C3DPointList& l, const unsigned int*, const C3DPointList& o) { l.CopyPoint(0, 0, o); }, false, false},
        {"told", [](C3DPointList& l, const unsigned int*, const C3DPointList&) { l.SetFlag(POINTLIST_CHANGED, true); }, true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Owned<C3DPointList> list = Points({0, 1, 2});
        const unsigned int stamp = list->GetChangedStamp();
        row.operation(*list, order, *other);
        EXPECT_EQ(list->IsFlagSet(POINTLIST_CHANGED), row.changed);
        EXPECT_EQ(list->GetChangedStamp() > stamp, row.stamped);
        CheckConsistent(*list);
    }
}

TEST(PointList, ElementsAreReachedInsideTheListOnly)
{
    const Owned<C3DPointList> list = Points({5, 6});
    for (const int outside : {-1, 2, 1 << 30, static_cast<int>(0x80000000)}) {
        EXPECT_EQ(list->ElementAt(outside), nullptr);
        EXPECT_FALSE(list->CopyPoint(0, outside));
        EXPECT_FALSE(list->CopyPoint(outside, 0));
        EXPECT_TRUE(list->CopyPoint(outside, outside));    // told by the indices alone
        EXPECT_FALSE(list->CopyPoint(outside, 0, *list));
    }
    EXPECT_EQ((*list)[1]->x, 6);
    EXPECT_EQ(Xs(*list), (std::vector<float>{5, 6}));
}

TEST(PointList, OriginalIndicesFollowThePoints)
{
    const Owned<C3DPointList> list = Points({0, 1, 2, 3});
    EXPECT_EQ(OriginalIndices(*list), std::vector<unsigned int>(4, NONE));
    list->SavePointsIndex();
    EXPECT_EQ(list->GetOriginalIndex(4), NONE);

    const unsigned int order[] = {2, 0, 3, 1};
    EXPECT_TRUE(list->Reorder(order, 4, false));
    EXPECT_EQ(Xs(*list), (std::vector<float>{2, 0, 3, 1}));
    EXPECT_EQ(OriginalIndices(*list), (std::vector<unsigned int>{2, 0, 3, 1}));
    EXPECT_TRUE(list->Reorder(order, 4, true) && OriginalIndices(*list) == std::vector<unsigned int>({0, 1, 2, 3}));
    EXPECT_FALSE(list->Reorder(order, 3, true));
    EXPECT_TRUE(list->Reorder(order, 4, false));
    EXPECT_TRUE(list->CopyPoint(3, 0));
    list->SetSize(6);
    EXPECT_EQ(OriginalIndices(*list), (std::vector<unsigned int>{2, 0, 3, 2, NONE, NONE}));
    EXPECT_EQ(Xs(*list), (std::vector<float>{2, 0, 3, 2, 0, 0}));

    const Owned<C3DPointList> copy(C3DPointList::Create());
    *copy = *list;
    EXPECT_EQ(OriginalIndices(*copy), OriginalIndices(*list));
    list->SavePointsIndex();
    EXPECT_EQ(OriginalIndices(*list), (std::vector<unsigned int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(list->GetDataChunkNbr(), 1u);
}

TEST(PointList, FlagsAreCountedByAnyAndByAllBits)
{
    const Owned<C3DPointList> list = Points({0, 1, 2, 3});
    const unsigned int flags[] = {0, POINT_BORDER, POINT_INVALID, POINT_BORDER | POINT_INVALID};
    for (int i = 0; i < 4; i++)
        list->ElementAt(i)->SetFlags(flags[i]);
    constexpr unsigned int both = POINT_BORDER | POINT_INVALID;
    EXPECT_EQ(list->GetNumberOfPoints(both, true), 3);
    EXPECT_EQ(list->GetNumberOfPoints(both, false), 1);
    EXPECT_EQ(list->GetNumberOfPoints(static_cast<_POINT_PROPERTIES>(both), true), 1);
    EXPECT_EQ(list->GetNumberOfPoints(static_cast<_POINT_PROPERTIES>(both), false), 3);
}
// --- Streams -----------------------------------------------------------------------------------------------------------------

TEST(PointList, StreamsReplaceEverythingOrEmptyTheList)
{
    const Owned<C3DPointList> list = Points({5, 6, 7});
    list->SavePointsIndex();
    AddExtra(*list);
    const auto bytes = Stored(*list);
    const Owned<C3DPointList> loaded = Points({1});
    ASSERT_TRUE(Load(*loaded, bytes));
    EXPECT_EQ(Xs(*loaded), (std::vector<float>{5, 6, 7}));
    EXPECT_EQ(OriginalIndices(*loaded), (std::vector<unsigned int>{0, 1, 2}));
    CheckConsistent(*loaded);

    for (std::size_t size = 0; size < bytes.size(); size++) {
        ASSERT_FALSE(Load(*loaded, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)})) << size;
        EXPECT_EQ(loaded->GetSize(), 0);
        EXPECT_EQ(loaded->GetDataChunks().GetDataSize(), 0u);
    }
    // Every byte is turned round once: it loads as something, or the list is empty; never anything between.
    for (std::size_t i = 0; i < bytes.size(); i++) {
        auto damaged = bytes;
        damaged[i] ^= 0xFF;
        Load(*loaded, damaged);
        CheckConsistent(*loaded);
        loaded->SetSize(loaded->GetSize() + 1);
        CheckConsistent(*loaded);
    }

    const Owned<C3DVectorList> vectors(C3DVectorList::Create());
    vectors->SetSize(3);
    EXPECT_FALSE(Load(*vectors, bytes));    // another kind of element
    EXPECT_EQ(vectors->GetSize(), 0);
    vectors->SetSize(1);
    EXPECT_EQ(vectors->ElementAt(0)->Length(), 0);

    const Owned<C3DPointList> empty(C3DPointList::Create());
    ASSERT_TRUE(Load(*loaded, Stored(*empty)));
    EXPECT_EQ(loaded->GetSize(), 0);
}
