#include "tools/Archive.h"

#include <gtest/gtest.h>

#include <memory>
#include <numeric>

#include "support/Streams.h"
#include "tools/Array.h"

class CArchivedPair : public CXObject {
    ZEL_DECLARE_CREATABLE(CArchivedPair)
public:
    ~CArchivedPair() override { delete inner; }
    void Serialize(CXArchive& ar) override
    {
        Move(ar, number);
        if (ar.IsStoring())
            ar.WriteObject(inner);
        else
            inner = ar.ReadObject(CArchivedPair::GetThisRuntimeClassDescriptor());
    }
    int number = 0;
    CXObject* inner = nullptr;
};
ZEL_IMPLEMENT_CREATABLE(CArchivedPair, CXObject)

class CArchivedOther : public CXObject {
    ZEL_DECLARE_CREATABLE(CArchivedOther)
};
ZEL_IMPLEMENT_CREATABLE(CArchivedOther, CXObject)

namespace {

struct Everything {
    bool flag = false;
    signed char tiny = 0;
    unsigned short small = 0;
    int number = 0;
    std::uint64_t large = 0;
    float real = 0;
    double fine = 0;
    CXTString<wchar_t> text;
    CXArray<int> numbers;
    CXArray<CXTString<wchar_t>> texts;
    std::vector<unsigned char> block;

    void Serialize(CXArchive& ar)
    {
        Move(ar, flag);
        Move(ar, tiny);
        Move(ar, small);
        Move(ar, number);
        Move(ar, large);
        Move(ar, real);
        Move(ar, fine);
        Move(ar, text);
        numbers.Serialize(ar);
        texts.Serialize(ar);
        ar.MoveNumbers(block.data(), block.size());
    }
};

Everything Sample()
{
    Everything all;
    all.flag = true;
    all.tiny = -5;
    all.small = 65000;
    all.number = -123456789;
    all.large = 0xFEDCBA9876543210u;
    all.real = 1.5f;
    all.fine = -1e300;
    all.text = CXTString<wchar_t>(L"na\u00EFve \U0001F600 ") + CXTString<wchar_t>(wchar_t(0xDC80), 1);
    for (const int number : {3, -1, 4})
        all.numbers.Add(number);
    all.texts.Add(L"");
    all.texts.Add(L"two");
    all.block.resize(300);
    std::iota(all.block.begin(), all.block.end(), static_cast<unsigned char>(1));
    return all;
}

}

TEST(Archive, BytesAreLittleEndianAndOfFixedWidth)
{
    const StreamBytes bytes = StoredBy([](CXArchive& ar) {
        ar << true << static_cast<short>(-2) << 0x01020304 << CXTString<wchar_t>(L"h\u00E9");
        ar.WriteCount(5);
    });
    EXPECT_EQ(bytes, (StreamBytes{1, 0xFE, 0xFF, 4, 3, 2, 1, 3, 0, 0, 0, 'h', 0xC3, 0xA9, 5, 0, 0, 0}));
}

TEST(Archive, WhatOneSideWritesTheOtherReads)
{
    // Faults in mind: a block that bypasses the buffer overtakes it; a value that straddles two fillings.
    for (const unsigned int buffer : {64u, 100u, 4096u}) {
        SCOPED_TRACE(buffer);
        Everything all = Sample();
        const StreamBytes bytes = StoredBy([&](CXArchive& ar) { all.Serialize(ar); }, buffer);
        Everything back;
        back.block.resize(300);
        EXPECT_EQ(LoadedBy(
                      bytes,
                      [&](CXArchive& ar) {
                          EXPECT_EQ(ar.GetRemaining(), bytes.size());
                          back.Serialize(ar);
                          EXPECT_EQ(ar.GetRemaining(), 0u);
                      },
                      buffer),
                  NO_ERROR_TYPE);
        EXPECT_EQ(StoredBy([&](CXArchive& ar) { back.Serialize(ar); }), bytes);
        EXPECT_EQ(back.text, all.text);
        EXPECT_EQ(back.fine, all.fine);

        for (std::size_t cut = 0; cut < bytes.size(); cut++) {
            Everything part;
            part.block.resize(300);
            const int error = LoadedBy(
                StreamBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut)), [&](CXArchive& ar) { part.Serialize(ar); },
                buffer);
            ASSERT_TRUE(error == CXArchiveException::ARCHIVE_END_OF_FILE || error == CXArchiveException::ARCHIVE_BAD_COUNT) << cut;
        }
    }
}

TEST(Archive, CountsAreHeldAgainstWhatIsLeft)
{
    const auto count = [](std::uint64_t stored, std::size_t behind, std::size_t each) {
        StreamBytes bytes = StoredBy([&](CXArchive& ar) { ar.WriteCount(stored); });
        bytes.resize(bytes.size() + behind);
        std::uint64_t read = 0;
        const int error = LoadedBy(bytes, [&](CXArchive& ar) { read = ar.ReadCount(each); });
        return error == NO_ERROR_TYPE ? static_cast<long long>(read) : -error;
    };
    EXPECT_EQ(count(3, 12, 4), 3);
    EXPECT_EQ(count(3, 11, 4), -CXArchiveException::ARCHIVE_BAD_COUNT);
    EXPECT_EQ(count(0xFFFFFFFF, 0, 0), 0xFFFFFFFFll);    // needs the long form
    EXPECT_EQ(count(0x123456789A, 0, 0), 0x123456789All);
    EXPECT_EQ(count(~std::uint64_t{0}, 100, 8), -CXArchiveException::ARCHIVE_BAD_COUNT);    // no overflow in the product
}

TEST(Archive, ClassesAreNamedOnceAndChecked)
{
    CArchivedPair pair, inner;
    inner.number = 2;
    pair.number = 1;
    pair.inner = &inner;
    const StreamBytes bytes = StoredBy([&](CXArchive& ar) {
        ar.WriteObject(&pair);
        ar.WriteObject(nullptr);
    });
    pair.inner = nullptr;
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()).find("CArchivedPair"), 8u);
    EXPECT_EQ(bytes.size(), 8 + 13 + 4 + 4 + 4 + 4 + 4u);

    EXPECT_EQ(LoadedBy(bytes,
                       [](CXArchive& ar) {
                           const std::unique_ptr<CXObject> object(ar.ReadObject());
                           auto* const read = XDynamicCast<CArchivedPair>(object.get());
                           ASSERT_TRUE(read && read->inner);
                           EXPECT_EQ(read->number, 1);
                           EXPECT_EQ(static_cast<CArchivedPair*>(read->inner)->number, 2);
                           EXPECT_EQ(ar.ReadObject(), nullptr);
                       }),
              NO_ERROR_TYPE);

    const auto read = [](const StreamBytes& damaged) {
        return LoadedBy(damaged, [](CXArchive& ar) { delete ar.ReadObject(CArchivedPair::GetThisRuntimeClassDescriptor()); });
    };
    StreamBytes unknown = bytes, future = bytes;
    unknown[8] = 'X';
    future[0] = 2;    // the second class before the first
    EXPECT_EQ(read(unknown), CXArchiveException::ARCHIVE_BAD_CLASS);
    EXPECT_EQ(read(future), CXArchiveException::ARCHIVE_BAD_CLASS);
    CArchivedOther other;
    EXPECT_EQ(read(StoredBy([&](CXArchive& ar) { ar.WriteObject(&other); })), CXArchiveException::ARCHIVE_BAD_CLASS);
    for (std::size_t cut = 0; cut + 4 < bytes.size(); cut++)
        ASSERT_NE(read(StreamBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut))), NO_ERROR_TYPE) << cut;
}

TEST(Archive, ObjectsNestedWithoutEndAreRefused)
{
    // 100,000 pairs inside each other: named once, then 8 bytes a level.
    const StreamBytes bytes = StoredBy([](CXArchive& ar) {
        for (int i = 0; i < 100000; i++) {
            ar.WriteClass(CArchivedPair::GetThisRuntimeClassDescriptor());
            ar << i;
        }
    });
    EXPECT_EQ(LoadedBy(bytes, [](CXArchive& ar) { ar.ReadObject(); }), CXArchiveException::ARCHIVE_BAD_VALUE);
}

TEST(Archive, CloseReportsAFullFileAndGivesBackWhatWasReadAhead)
{
    const unsigned char fixed[4] = {1, 2, 3, 4};
    CCustomMemFile readOnly(fixed, sizeof fixed);
    CXArchive full(&readOnly, CXArchive::STORE);
    full << 5;
    EXPECT_THROW(full.Close(), CXArchiveException*);
    EXPECT_THROW(full.Write(StreamBytes(9000).data(), 9000), CXArchiveException*);
    XDeleteThreadException();

    CXArchive first(&readOnly, CXArchive::LOAD);
    unsigned char byte = 0;
    first >> byte;
    first.Close();
    CXArchive second(&readOnly, CXArchive::LOAD);
    EXPECT_EQ(second.GetRemaining(), 3u);
    second >> byte;
    EXPECT_EQ(byte, 2);
}

TEST(Array, BoundsThrowAndEditsTakeTheirOwnElements)
{
    CXArray<CXTString<wchar_t>> array;
    array.Add(L"a");
    array.SetAtGrow(3, array[0]);    // the element lies in the block that moves
    array.InsertAt(0, array[3]);
    EXPECT_EQ(array.GetSize(), 5);
    EXPECT_EQ(array[0], L"a");
    EXPECT_EQ(array[2], L"");
    array.Append(array);
    EXPECT_EQ(array.GetSize(), 10);
    array.RemoveAt(1, 9);
    for (const int index : {-1, 1}) {
        EXPECT_THROW(array[index], CXInvalidArgException*);
        EXPECT_THROW(array.SetAt(index, L""), CXInvalidArgException*);
        EXPECT_THROW(array.RemoveAt(index), CXInvalidArgException*);
    }
    EXPECT_THROW(array.SetSize(-1), CXInvalidArgException*);
    XDeleteThreadException();
}
