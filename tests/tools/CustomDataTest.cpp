#include "tools/CustomData.h"

#include <gtest/gtest.h>

#include <random>

#include "support/Streams.h"
#include "support/TempFolder.h"
#include "tools/FourCC.h"

namespace {

using Text = CXTString<wchar_t>;
constexpr unsigned int ID = FourCC("ABCD");

CCustomData Everything()
{
    CCustomData bag;
    CXArray<Text> texts;
    texts.Add(L"one");
    texts.Add(L"\u00E9");
    bag.SetBool(ID, true);
    bag.SetInt(ID, -2);
    bag.SetUnsigned(ID, 3);
    bag.SetInt64(ID, -4ll << 40);
    bag.SetUnsigned64(ID, 5ull << 40);
    bag.SetFloat(ID, 0.1f);
    bag.SetDouble(ID, 0.1);
    bag.SetString(ID, L"a<b>\n\"c\"");
    bag.SetStringArray(ID, texts);
    bag.SetColor(ID, CRGBColor(1, 2, 3, 4));
    bag.SetPointer(ID, &texts);
    bag.MakeCustomData(ID).SetInt(7, 8);
    bag.SetInt(1, 9);
    return bag;
}

StreamBytes Bytes(const CCustomData& bag)
{
    return StoredBy([&](CXArchive& ar) { const_cast<CCustomData&>(bag).Serialize(ar); });
}

CCustomData Nest(unsigned int levels)
{
    CCustomData bag;
    CCustomData* inner = &bag;
    while (--levels)
        inner = &inner->MakeCustomData(1);
    inner->SetBool(2, true);
    return bag;
}

}

TEST(CustomData, OneIdHoldsAValueOfEachType)
{
    CCustomData bag = Everything();
    EXPECT_EQ(bag.GetCount(), 13u);
    int i = 0;
    unsigned int u = 0;
    float f = 0;
    CRGBColor color;

    EXPECT_FALSE(bag.GetFloat(1, f, 2.5f));    // another type is no value
    EXPECT_EQ(f, 2.5f);
    EXPECT_FALSE(bag.GetData(ID, &color, 3));    // nor is another size
    EXPECT_TRUE(bag.Remove(ID, CUSTOM_INT));
    EXPECT_FALSE(bag.GetInt(ID, i, 77));
    EXPECT_EQ(i, 77);
    EXPECT_TRUE(bag.GetUnsigned(ID, u));
    EXPECT_TRUE(bag.Remove(ID));
    EXPECT_FALSE(bag.HasData(ID));
    EXPECT_TRUE(bag.HasData(1, CUSTOM_INT));
    EXPECT_TRUE(bag.Remove(1));
    EXPECT_TRUE(bag == CCustomData());

    const CCustomData* const none = bag.GetCustomData(ID);    // null
    EXPECT_FALSE(none->GetInt(1, i, 5));
    EXPECT_EQ(i, 5);
    EXPECT_TRUE(none->IsEmpty());
    EXPECT_EQ(none->GetChecksum(), 0u);
}

TEST(CustomData, CopiesAreDeepAndMayComeFromInside)
{
    CCustomData bag = Everything();
    CCustomData copy = bag;
    copy.GetCustomData(ID)->SetInt(7, 0);
    int value = 0;
    EXPECT_TRUE(bag.GetCustomData(ID)->GetInt(7, value) && value == 8);
    EXPECT_FALSE(copy == bag);
    CCustomData* const inner = bag.GetCustomData(ID);
    for (unsigned int id = 0; id < 100; id++)
        bag.SetInt(1000 + id, 0);
    EXPECT_EQ(bag.GetCustomData(ID), inner);    // bags stay in place while values move
    EXPECT_TRUE(bag.SetCustomData(ID, bag));
    EXPECT_EQ(bag.GetCustomData(ID)->GetCount(), 113u);
    bag = *bag.GetCustomData(ID)->GetCustomData(ID);
    EXPECT_EQ(bag.GetCount(), 1u);
    copy = std::move(*copy.GetCustomData(ID));
    EXPECT_EQ(copy.GetCount(), 1u);
}

TEST(CustomData, StreamsAndSumsLeaveOutPointersOnly)
{
    const CCustomData bag = Everything();
    const StreamBytes bytes = Bytes(bag);
    CCustomData read;
    read.SetInt(55, 1);
    EXPECT_TRUE(Load(read, bytes));
    EXPECT_TRUE(read == bag);
    EXPECT_EQ(read.GetCount(), 12u);
    EXPECT_EQ(read.GetChecksum(), bag.GetChecksum());
    EXPECT_EQ(read.GetChecksum(ID), bag.GetChecksum(ID));
    EXPECT_NE(bag.GetChecksum(1), 0u);
    EXPECT_EQ(bag.GetChecksum(2), 0u);
    CCustomData one, two;
    one.SetInt(1, 5);
    two.SetInt(2, 5);
    EXPECT_EQ(one.GetChecksum(1), two.GetChecksum(2));    // a value's sum does not know its id
    EXPECT_NE(one.GetChecksum(), two.GetChecksum());
    two.RemoveAll();
    two.SetUnsigned(1, 5);
    EXPECT_NE(one.GetChecksum(1), two.GetChecksum(1));
    EXPECT_EQ(Bytes(one), (StreamBytes{1, 0, 0, 0, 1, 0, 0, 0, CUSTOM_INT, 5, 0, 0, 0}));
}

TEST(CustomData, DamagedStreamsLeaveTheBagAsItWas)
{
    const StreamBytes bytes = Bytes(Everything());
    CCustomData kept;
    kept.SetString(1, L"kept");
    const CCustomData before = kept;
    for (std::size_t cut = 0; cut < bytes.size(); cut++) {
        const StreamBytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut));
        ASSERT_FALSE(Load(kept, part));
        ASSERT_TRUE(kept == before);
    }
    std::mt19937 random(9);
    for (int i = 0; i < 5000; i++) {
        StreamBytes damaged = bytes;
        damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        CCustomData read;
        LoadedBy(damaged, [&](CXArchive& ar) { read.Serialize(ar); });
    }
    const StreamBytes twice = {2, 0, 0, 0, 1, 0, 0, 0, CUSTOM_BOOL, 1, 1, 0, 0, 0, CUSTOM_BOOL, 1},
                      pointer = {1, 0, 0, 0, 1, 0, 0, 0, CUSTOM_POINTER, 1};
    EXPECT_EQ(LoadedBy(twice, [&](CXArchive& ar) { kept.Serialize(ar); }), CXArchiveException::ARCHIVE_BAD_VALUE);
    EXPECT_EQ(LoadedBy(pointer, [&](CXArchive& ar) { kept.Serialize(ar); }), CXArchiveException::ARCHIVE_UNKNOWN_TYPE);
}

TEST(CustomData, NestingEndsAtItsLimit)
{
    CCustomData bag = Nest(CUSTOM_MOST_DEPTH), outer, deep = Nest(CUSTOM_MOST_DEPTH + 1), read;
    EXPECT_FALSE(outer.SetCustomData(1, bag));
    EXPECT_TRUE(outer.IsEmpty());
    EXPECT_TRUE(outer.SetCustomData(1, Nest(CUSTOM_MOST_DEPTH - 1)));
    EXPECT_TRUE(Load(read, Bytes(bag)));
    EXPECT_TRUE(read == bag);
    EXPECT_THROW(Bytes(deep), CXArchiveException*);
    XDeleteThreadException();
    StreamBytes bytes;
    for (int level = 0; level < 100000; level++)
        bytes.insert(bytes.end(), {1, 0, 0, 0, 1, 0, 0, 0, CUSTOM_BAG});
    EXPECT_EQ(LoadedBy(bytes, [&](CXArchive& ar) { read.Serialize(ar); }), CXArchiveException::ARCHIVE_BAD_VALUE);
}

TEST(CustomData, PreferencesFilesAreWholeOrRefused)
{
    const TempFolder folder;
    const Text path = folder.Wide("test.prefs");
    const CCustomData bag = Everything();
    CCustomData read;
    EXPECT_FALSE(read.LoadFromPrefs(path, 1, 2));
    EXPECT_TRUE(bag.SaveToPrefs(path, FourCC("3DVW"), FourCC("PREF")));
    EXPECT_TRUE(read.LoadFromPrefs(path, FourCC("3DVW"), FourCC("PREF")));
    EXPECT_TRUE(read == bag);
    EXPECT_FALSE(read.LoadFromPrefs(path, FourCC("3DVW"), FourCC("PREX")));
    EXPECT_FALSE(read.LoadFromPrefs(path, FourCC("3DVX"), FourCC("PREF")));
    EXPECT_FALSE(bag.SaveToPrefs(folder.Wide("no/such/folder.prefs"), 1, 2));

    const std::string content = folder.Read("test.prefs");
    for (std::size_t i = 0; i < content.size(); i++) {
        std::string damaged = content;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
        folder.Write("damaged", damaged);
        folder.Write("cut", content.substr(0, i));
        ASSERT_FALSE(read.LoadFromPrefs(folder.Wide("damaged"), FourCC("3DVW"), FourCC("PREF"))) << i;
        ASSERT_FALSE(read.LoadFromPrefs(folder.Wide("cut"), FourCC("3DVW"), FourCC("PREF"))) << i;
    }
    EXPECT_TRUE(read == bag);
    EXPECT_TRUE(CCustomData().SaveToPrefs(path, 1, 2));
    EXPECT_TRUE(read.LoadFromPrefs(path, 1, 2) && read.IsEmpty());
}
