#include "tools/String.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Wide = CXTString<wchar_t>;
using Narrow = CXTString<char>;

template <class... ARGS> Wide Formatted(const wchar_t* format, ARGS... arguments)
{
    Wide text;
    text.FormatString(format, arguments...);
    return text;
}

}

TEST(String, PartsAreClipped)
{
    const Wide text(L"abcdef");
    struct {
        Wide part;
        const wchar_t* expected;
    } const rows[] = {
        {text.Left(2), L"ab"},  {text.Left(-1), L""},        {text.Left(99), L"abcdef"}, {text.Right(2), L"ef"}, {text.Right(0), L""},
        {text.Right(-3), L""},  {text.Right(99), L"abcdef"}, {text.Mid(2, 2), L"cd"},    {text.Mid(4), L"ef"},   {text.Mid(6), L""},
        {text.Mid(99, 5), L""}, {text.Mid(-5, 2), L"ab"},    {text.Mid(1, -1), L""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.part, row.expected);
    EXPECT_EQ(text.GetAt(6), 0);
    EXPECT_EQ(text.GetAt(-1), 0);
    EXPECT_EQ(text.Find(L"cd", -4), 2);
    EXPECT_EQ(text.Find(L"cd", 3), -1);
    EXPECT_EQ(text.Find(L'a', 99), -1);
    EXPECT_EQ(Wide(static_cast<const wchar_t*>(nullptr)), L"");
}

TEST(String, EditsAndOrder)
{
    Wide text(L" \t\u00C9t\u00E9 \u00C0 \r\n");
    text.Trim();
    EXPECT_EQ(text, L"\u00C9t\u00E9 \u00C0");
    EXPECT_EQ(text.Compare(L"\u00E9T\u00C9 \u00E0", true), 0);
    text.MakeLower();
    EXPECT_EQ(text, L"\u00E9t\u00E9 \u00E0");
    Wide loop(L"aaaa");
    EXPECT_EQ(loop.Replace(L"aa", L"aaa"), 2);
    EXPECT_EQ(loop, L"aaaaaa");
    EXPECT_EQ(loop.Replace(L"", L"x"), 0);
    Narrow bytes("\xC3\x89Z");    // bytes of UTF-8 are not letters
    bytes.MakeLower();
    EXPECT_EQ(bytes, "\xC3\x89z");
    EXPECT_LT(Wide(L"Z").Compare(L"a"), 0);
    EXPECT_GT(Wide(L"Z").Compare(L"a", true), 0);
    EXPECT_LT(Narrow("a").Compare("\xC3\xA9"), 0);    // bytes compare unsigned
    EXPECT_LT(Wide(L"ab").Compare(L"abc", true), 0);
}

TEST(String, FormatsAsPrintfDoes)
{
    EXPECT_EQ(Formatted(L"%s %d", L"Light", 3), L"Light 3");
    EXPECT_EQ(Formatted(L"[%5s|%-5s|%.2s]", L"\u00E9t", L"\u00E9t", L"\u00E9t\u00E9"), L"[   \u00E9t|\u00E9t   |\u00E9t]");
    EXPECT_EQ(Formatted(L"%S %hs %ls", "\xC3\xA9", "n", L"w"), L"\u00E9 n w");
    EXPECT_EQ(Formatted(L"%c%c|%%|%*d|%-*d|", L'\u00E9', L'b', 4, 7, 3, 8), L"\u00E9b|%|   7|8  |");
    EXPECT_EQ(Formatted(L"%hhd %hu %lld %zu %08X %+i", 300, 65537, -1ll << 40, std::size_t{5}, 0xBEEFu, 4),
              L"44 1 -1099511627776 5 0000BEEF +4");
    EXPECT_EQ(Formatted(L"%.2f %6.1e %g", 2.005, 12345.0, 1e10), L"2.00 1.2e+04 1e+10");
    EXPECT_EQ(Formatted(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)");
    EXPECT_EQ(Formatted(L"%200.150f", 1.0).GetLength(), 200);
    EXPECT_EQ(Formatted(L"100%"), L"100");    // a lone sign at the end
    Wide own(L"x");
    own.FormatString(L"%s%s", own.c_str(), own.c_str());
    EXPECT_EQ(own, L"xx");
    Narrow narrow;
    narrow.FormatString("%s %ls %S %c", "a", L"\u00E9", L"w", 'c');
    EXPECT_EQ(narrow, "a \xC3\xA9 w c");
}

TEST(String, Utf8SurvivesTheRoundTrip)
{
    struct {
        const char* name;
        std::string bytes;
        std::wstring wide;
    } const rows[] = {
        {"plain", "az", L"az"},
        {"two, three and four bytes", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"\u00E9\u20AC\U0001F600"},
        {"zero inside", std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
        {"stray byte", "a\xE9z", {L'a', wchar_t(0xDCE9), L'z'}},
        {"cut at the end", "\xE2\x82", {wchar_t(0xDCE2), wchar_t(0xDC82)}},
        {"overlong", "\xC0\x80\xE0\x80\x80", {wchar_t(0xDCC0), wchar_t(0xDC80), wchar_t(0xDCE0), wchar_t(0xDC80), wchar_t(0xDC80)}},
        {"surrogate", "\xED\xB2\x80", {wchar_t(0xDCED), wchar_t(0xDCB2), wchar_t(0xDC80)}},
        {"beyond", "\xF4\x90\x80\x80", {wchar_t(0xDCF4), wchar_t(0xDC90), wchar_t(0xDC80), wchar_t(0xDC80)}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Utf8ToWide(row.bytes).Str(), row.wide);
        EXPECT_EQ(WideToUtf8(Utf8ToWide(row.bytes)), row.bytes);
    }
    EXPECT_EQ(WideToUtf8(Wide(wchar_t(0xD800), 1)), "\xEF\xBF\xBD");
    std::mt19937 random(5);
    for (int i = 0; i < 20000; i++) {
        std::string bytes(random() % 8, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        ASSERT_EQ(WideToUtf8(Utf8ToWide(bytes)), bytes);
    }
}
