#include "tools/CodePage.h"

#include <algorithm>
#include <string>

#include <iconv.h>

namespace {

constexpr unsigned int PAGE_SYSTEM = 0, PAGE_SYSTEM_OEM = 1, PAGE_THREAD = 3;    // here all of them are UTF-8
constexpr unsigned int PAGE_UTF8 = 65001, PAGE_ASCII = 20127;
constexpr unsigned int PAGE_LATIN_FIRST = 28591, PAGE_LATIN_LAST = 28606;    // ISO 8859-1 and so on

std::string NameOfPage(unsigned int codePage)
{
    switch (codePage) {
    case PAGE_SYSTEM:
    case PAGE_SYSTEM_OEM:
    case PAGE_THREAD:
    case PAGE_UTF8: return "UTF-8";
    case PAGE_ASCII: return "ASCII";
    default: break;
    }
    if (codePage >= PAGE_LATIN_FIRST && codePage <= PAGE_LATIN_LAST)
        return "ISO-8859-" + std::to_string(codePage - PAGE_LATIN_FIRST + 1);
    return "CP" + std::to_string(codePage);
}

class CConversion {
public:
    CConversion(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
    CConversion(const CConversion&) = delete;
    ~CConversion()
    {
        if (IsKnown())
            iconv_close(m_handle);
    }
    bool IsKnown() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
    /// False for a text that the other side cannot hold.
    bool Convert(const std::string& text, std::string& out) const
    {
        constexpr std::size_t MOST_BYTES = 6;    // of a character, shifts between its sets included
        out.resize(text.size() * MOST_BYTES + MOST_BYTES);
        char* from = const_cast<char*>(text.data());
        char* to = out.data();
        std::size_t left = text.size(), room = out.size();
        const bool done = iconv(m_handle, &from, &left, &to, &room) == 0 && iconv(m_handle, nullptr, nullptr, &to, &room) == 0;
        out.resize(out.size() - room);
        return done;
    }

private:
    iconv_t m_handle;
};

}

bool SurvivesCodePage(const CXTString<wchar_t>& text, unsigned int codePage)
{
    const std::wstring& wide = text.Str();
    if (std::all_of(wide.begin(), wide.end(), [](wchar_t character) { return character > 0 && character < 0x80; }))
        return true;
    const std::string page = NameOfPage(codePage), utf8 = WideToUtf8(text);
    if (page == "UTF-8")
        return Utf8ToWide(utf8) == text;
    const CConversion there(page.c_str(), "UTF-8"), back("UTF-8", page.c_str());
    std::string bytes, again;
    return there.IsKnown() && back.IsKnown() && there.Convert(utf8, bytes) && back.Convert(bytes, again) && again == utf8;
}
