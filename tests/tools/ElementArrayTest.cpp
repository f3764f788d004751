#include "tools/ElementArray.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/Streams.h"
#include "tools/Memory.h"

// An element of every kind: raw words, an object with a table whose stored part lies inside, one that owns memory, and a
// wide sibling of the raw one.

class CTestMethods : public CElementMethods {
    ZEL_DECLARE_DYNAMIC(CTestMethods)
public:
    unsigned int GetBaseType() const override { return 'B'; }
};
ZEL_IMPLEMENT_DYNAMIC(CTestMethods, CElementMethods)

class CTestWordMethods : public CTestMethods {
    ZEL_DECLARE_CREATABLE(CTestWordMethods)
public:
    CTestWordMethods() { m_stored = {0, 4}; }
    unsigned int GetSizeof() const override { return 4; }
    unsigned int GetType() const override { return 1; }
    void ConstructElement(void* element) const override
    {
        if (element)
            std::memset(element, 0xFF, 4);
    }
};
ZEL_IMPLEMENT_CREATABLE(CTestWordMethods, CTestMethods)

class CTestLongMethods : public CTestMethods {
    ZEL_DECLARE_CREATABLE(CTestLongMethods)
public:
    unsigned int GetSizeof() const override { return 8; }
    unsigned int GetType() const override { return 2; }
    void ConstructElement(void* element) const override { std::memset(element, 0, 8); }
};
ZEL_IMPLEMENT_CREATABLE(CTestLongMethods, CTestMethods)

struct TestPoint {
    virtual ~TestPoint() = default;
    virtual int Sum() const { return flags + static_cast<int>(x); }
    int flags = 3;
    float x = 4;
};

class CTestPointMethods : public CTestMethods {
    ZEL_DECLARE_CREATABLE(CTestPointMethods)
public:
    CTestPointMethods() { m_stored = {8, 8}; }
    unsigned int GetSizeof() const override { return sizeof(TestPoint); }
    unsigned int GetType() const override { return 3; }
    bool IsObject() const override { return true; }
    void ConstructElement(void* element) const override { new (element) TestPoint; }
    void SerializeElement(CXArchive& ar, void* element) const override
    {
        Move(ar, static_cast<TestPoint*>(element)->flags);
        Move(ar, static_cast<TestPoint*>(element)->x);
    }
};
ZEL_IMPLEMENT_CREATABLE(CTestPointMethods, CTestMethods)

class CTestTextMethods : public CTestMethods {
    ZEL_DECLARE_CREATABLE(CTestTextMethods)
public:
    CTestTextMethods() { m_bitwise = false; }
    unsigned int GetSizeof() const override { return sizeof(std::string); }
    unsigned int GetType() const override { return 4; }
    void ConstructElement(void* element) const override { new (element) std::string("a default text that needs memory of its own"); }
    void DestructElement(void* element) const override { static_cast<std::string*>(element)->~basic_string(); }
    void CopyElement(void* to, const void* from) const override { *static_cast<std::string*>(to) = *static_cast<const std::string*>(from); }
    void SerializeElement(CXArchive& ar, void* element) const override
    {
        CXTString<wchar_t> text = Utf8ToWide(*static_cast<std::string*>(element));
        Move(ar, text);
        *static_cast<std::string*>(element) = WideToUtf8(text);
    }
};
ZEL_IMPLEMENT_CREATABLE(CTestTextMethods, CTestMethods)

namespace {

template <class METHODS> std::unique_ptr<CElementArray> MakeArray()
{
    auto* const methods = new METHODS;
    auto array = std::make_unique<CElementArray>(methods);
    EXPECT_EQ(methods->GetRefCount(), 2);
    DeleteMe(methods);
    return array;
}

template <class T> T& At(CElementArray& array, int index) { return *static_cast<T*>(array.GetAt(index)); }

std::unique_ptr<CElementArray> Words(const std::vector<unsigned int>& values)
{
    auto array = MakeArray<CTestWordMethods>();
    for (std::size_t i = 0; i < values.size(); i++)
        array->SetAtGrow(static_cast<int>(i), &values[i]);
    return array;
}

std::vector<unsigned int> Values(const CElementArray& array)
{
    const auto* first = static_cast<const unsigned int*>(array.GetBase());
    return std::vector<unsigned int>(first, first + array.GetSize());
}

constexpr unsigned int NEW = 0xFFFFFFFF;

}

TEST(ElementArray, SizeKeepsOrRenews)
{
    const auto array = Words({1, 2, 3});
    EXPECT_TRUE(array->SetSize(5));
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{1, 2, 3, NEW, NEW}));
    EXPECT_TRUE(array->SetSize(2));
    EXPECT_TRUE(array->SetSize(4));    // an element that was dropped comes back as a default
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{1, 2, NEW, NEW}));
    EXPECT_TRUE(array->SetSize(3, false));
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{NEW, NEW, NEW}));
    EXPECT_FALSE(array->SetSize(-1));
    EXPECT_FALSE(CElementArray().SetSize(1));
    array->PreAllocate(100);
    array->SetConstruct(true);
    const void* const base = array->GetBase();
    for (unsigned int i = 0; i < 100; i++)
        array->SetAtGrow(static_cast<int>(i), &i);
    EXPECT_EQ(array->GetBase(), base);
    EXPECT_EQ(Values(*array)[99], 99u);
    array->FreeExtra();
    EXPECT_EQ(array->GetCapacity(), 100);
    array->RemoveAll();
    EXPECT_EQ(array->GetBase(), nullptr);
}

TEST(ElementArray, AnElementOfItsOwnSurvivesTheMove)
{
    const auto array = Words({7});
    for (int i = 1; i < 5000; i++)
        array->SetAtGrow(i, array->GetAt(i - 1));
    EXPECT_EQ(Values(*array), std::vector<unsigned int>(5000, 7));
    EXPECT_THROW(array->SetAtGrow(-1, nullptr), CXInvalidArgException*);
    XDeleteThreadException();
    EXPECT_TRUE(array->Copy(*array, true));
    EXPECT_EQ(Values(*array), std::vector<unsigned int>(10000, 7));
}

TEST(ElementArray, CopyConvertsBetweenKinds)
{
    const auto words = Words({5, 6, NEW});
    const auto longs = MakeArray<CTestLongMethods>();
    EXPECT_TRUE(longs->Copy(*words, false));
    EXPECT_EQ(At<std::uint64_t>(*longs, 1), 6u);    // the bytes that both have; the rest is the default
    EXPECT_TRUE(words->Copy(*longs, true));
    EXPECT_EQ(Values(*words), (std::vector<unsigned int>{5, 6, NEW, 5, 6, NEW}));
    CElementArray open;
    EXPECT_TRUE(open.Copy(*words, false));    // takes the methods too
    EXPECT_EQ(Values(open), Values(*words));
    const std::unique_ptr<CElementArray> empty(words->Duplicate(false)), full(words->Duplicate(true));
    EXPECT_EQ(empty->GetSize(), 0);
    EXPECT_EQ(full->GetChecksum(), words->GetChecksum());
    EXPECT_TRUE(words->CopyElement(2, 0, *longs));
    EXPECT_EQ(Values(*words)[2], 5u);
    EXPECT_FALSE(words->CopyElement(6, 0));
    EXPECT_FALSE(words->CopyElement(0, -1));
}

TEST(ElementArray, ReorderTakesPermutationsOnly)
{
    const auto array = Words({10, 11, 12, 13});
    const unsigned int order[] = {2, 0, 3, 1}, twice[] = {0, 0, 1, 2}, beyond[] = {0, 1, 2, 4};
    EXPECT_FALSE(array->Reorder(order, 3, false));
    EXPECT_FALSE(array->Reorder(twice, 4, false));
    EXPECT_FALSE(array->Reorder(beyond, 4, false));
    EXPECT_FALSE(array->Reorder(nullptr, 4, false));
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{10, 11, 12, 13}));
    EXPECT_TRUE(array->Reorder(order, 4, false));
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{12, 10, 13, 11}));
    EXPECT_TRUE(array->Reorder(order, 4, true));    // and back
    EXPECT_EQ(Values(*array), (std::vector<unsigned int>{10, 11, 12, 13}));
    EXPECT_TRUE(CElementArray().Reorder(nullptr, 0, false));
}

TEST(ElementArray, ElementsThatOwnMemoryAreCopiedOneByOne)
{
    const auto array = MakeArray<CTestTextMethods>();
    array->SetSize(3);
    At<std::string>(*array, 1) = "another long text that cannot be moved as plain bytes";
    array->SetConstruct(true);
    array->SetSize(50);
    array->SetSize(20);
    const unsigned int order[] = {1, 2, 0};
    array->SetSize(3);
    EXPECT_TRUE(array->Reorder(order, 3, false));
    EXPECT_EQ(At<std::string>(*array, 0).substr(0, 7), "another");
    const std::unique_ptr<CElementArray> copy(array->Duplicate(true));
    copy->Copy(*array, true);
    copy->FreeExtra();
    EXPECT_EQ(At<std::string>(*copy, 3), At<std::string>(*array, 0));

    CElementArray read;
    const StreamBytes bytes = Stored(*copy);
    EXPECT_TRUE(Load(read, bytes));
    ASSERT_EQ(read.GetSize(), 6);
    EXPECT_EQ(At<std::string>(read, 3), At<std::string>(*array, 0));
}

TEST(ElementArray, BlocksMoveTheBytesOfSingleElements)
{
    const auto points = MakeArray<CTestPointMethods>();
    points->SetSize(10000);    // more than one packing buffer
    for (int i = 0; i < points->GetSize(); i++)
        At<TestPoint>(*points, i).flags = i;
    const StreamBytes bytes = Stored(*points);
    const StreamBytes single = StoredBy([&](CXArchive& ar) {
        ar.WriteClass(CTestPointMethods::GetThisRuntimeClassDescriptor());
        ar.WriteCount(10000);
        ar << 8u;
        for (int i = 0; i < points->GetSize(); i++)
            points->GetMethods()->SerializeElement(ar, points->GetAt(i));
    });
    EXPECT_TRUE(bytes == single);

    CElementArray read;
    EXPECT_TRUE(Load(read, bytes));
    ASSERT_EQ(read.GetSize(), 10000);
    EXPECT_EQ(read.GetChecksum(), points->GetChecksum());
    for (int i = 0; i < 10000; i++)
        ASSERT_EQ(At<TestPoint>(read, i).Sum(), i + 4);

    // An array that has methods takes no other kind of element.
    const auto words = Words({1});
    EXPECT_EQ(LoadedBy(bytes, [&](CXArchive& ar) { words->Serialize(ar); }), CXArchiveException::ARCHIVE_BAD_CLASS);
    EXPECT_EQ(LoadedBy(StoredBy([](CXArchive& ar) { CElementArray().Serialize(ar); }), [&](CXArchive& ar) { words->Serialize(ar); }),
              CXArchiveException::ARCHIVE_BAD_CLASS);
}

TEST(ElementArray, DamagedStreamsThrowAndLeaveAnArray)
{
    const auto words = Words({1, 2, 3});
    const StreamBytes bytes = Stored(*words);
    const auto load = [](const StreamBytes& damaged) {
        CElementArray read;
        const int error = LoadedBy(damaged, [&](CXArchive& ar) { read.Serialize(ar); });
        EXPECT_TRUE(read.SetSize(0) || !read.GetMethods());
        return error;
    };
    for (std::size_t cut = 0; cut < bytes.size(); cut++)
        ASSERT_NE(load(StreamBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut))), NO_ERROR_TYPE) << cut;
    std::mt19937 random(3);
    for (int i = 0; i < 3000; i++) {
        StreamBytes damaged = bytes;
        damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        load(damaged);    // no crash, no large allocation; errors are not sure
    }
    EXPECT_EQ(load(StoredBy([](CXArchive& ar) { ar.WriteClass(CTestTextMethods::GetThisRuntimeClassDescriptor()); })),
              CXArchiveException::ARCHIVE_END_OF_FILE);
}
