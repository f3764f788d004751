#include "tools/String.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwctype>
#include <locale.h>
#include <type_traits>

#include "tools/StringTable.h"

namespace {

// Wide letters fold by Unicode's simple rules whatever the host's locale is; bytes of UTF-8 by ASCII.
locale_t GetUnicodeLocale()
{
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

wchar_t ToLower(wchar_t c)
{
    if (c < 128)
        return c >= L'A' && c <= L'Z' ? c + 32 : c;
    const locale_t locale = GetUnicodeLocale();
    return static_cast<wchar_t>(locale ? towlower_l(c, locale) : towlower(c));
}

wchar_t ToUpper(wchar_t c)
{
    if (c < 128)
        return c >= L'a' && c <= L'z' ? c - 32 : c;
    const locale_t locale = GetUnicodeLocale();
    return static_cast<wchar_t>(locale ? towupper_l(c, locale) : towupper(c));
}

char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

bool IsSpace(wchar_t c)
{
    const locale_t locale = GetUnicodeLocale();
    return c == 0xA0 || (c >= 9 && c <= 13) || c == 32 || (c > 127 && locale && iswspace_l(c, locale));
}
bool IsSpace(char c) { return (c >= 9 && c <= 13) || c == 32; }

template <class T> void AppendText(std::basic_string<T>& out, const char* text)
{
    if constexpr (std::is_same_v<T, char>)
        out += text ? text : "(null)";
    else
        out += Utf8ToWide(text ? text : "(null)").Str();
}

template <class T> void AppendText(std::basic_string<T>& out, const wchar_t* text)
{
    if constexpr (std::is_same_v<T, wchar_t>)
        out += text ? text : L"(null)";
    else
        out += WideToUtf8(std::wstring_view(text ? text : L"(null)"));
}

// printf for both character types. The library's wide one takes %s for narrow text and depends on the locale, so texts
// are placed here; numbers are left to snprintf, one conversion at a time.
template <class T> class CFormatter {
public:
    CFormatter(const T* format, va_list arguments) : m_next(format) { va_copy(m_arguments, arguments); }
    ~CFormatter() { va_end(m_arguments); }

    std::basic_string<T> Run()
    {
        while (*m_next) {
            if (*m_next != '%')
                m_out += *m_next++;
            else if (m_next[1] == '%') {
                m_out += '%';
                m_next += 2;
            } else {
                m_next++;
                Convert();
            }
        }
        return std::move(m_out);
    }

private:
    struct Spec {
        std::string flags;
        int width = 0;
        int precision = -1;    // -1: not given
        std::string size;      // hh, h, l, ll, j, z, t, L
        bool left = false;
    };

    void Convert()
    {
        Spec spec;
        for (; *m_next == '-' || *m_next == '+' || *m_next == ' ' || *m_next == '#' || *m_next == '0'; m_next++) {
            spec.left |= *m_next == '-';
            spec.flags += static_cast<char>(*m_next);
        }
        spec.width = ReadNumber();
        if (spec.width < 0) {
            spec.left = true;
            spec.flags += '-';
            spec.width = -spec.width;
        }
        if (*m_next == '.') {
            m_next++;
            spec.precision = std::max(ReadNumber(), -1);
        }
        while (*m_next == 'h' || *m_next == 'l' || *m_next == 'j' || *m_next == 'z' || *m_next == 't' || *m_next == 'L')
            spec.size += static_cast<char>(*m_next++);
        if (*m_next)
            Convert(spec, static_cast<char>(*m_next++));
    }

    int ReadNumber()
    {
        if (*m_next == '*') {
            m_next++;
            return std::clamp(va_arg(m_arguments, int), -MOST_WIDTH, MOST_WIDTH);
        }
        int number = 0;
        for (; *m_next >= '0' && *m_next <= '9'; m_next++)
            number = std::min(number * 10 + static_cast<int>(*m_next - '0'), MOST_WIDTH);
        return number;
    }

    void Convert(const Spec& spec, char kind)
    {
        switch (kind) {
        case 'd':
        case 'i': Number(spec, "j", kind, ReadSigned(spec.size)); break;
        case 'u':
        case 'o':
        case 'x':
        case 'X': Number(spec, "j", kind, ReadUnsigned(spec.size)); break;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            if (spec.size == "L")
                Number(spec, "L", kind, va_arg(m_arguments, long double));
            else
                Number(spec, "", kind, va_arg(m_arguments, double));
            break;
        case 'p': Number(spec, "", kind, va_arg(m_arguments, void*)); break;
        case 's':
        case 'S': Text(spec, IsWide(spec, kind == 'S')); break;
        case 'c':
        case 'C': Character(spec, IsWide(spec, kind == 'C')); break;
        default:
            m_out += '%';    // no conversion: shown, so that the fault is seen
            m_out += static_cast<T>(kind);
        }
    }

    // %s is text of the own type, %S of the other; %ls is always wide, %hs always UTF-8.
    static bool IsWide(const Spec& spec, bool other)
    {
        if (spec.size == "l")
            return true;
        return spec.size != "h" && std::is_same_v<T, wchar_t> != other;
    }

    std::intmax_t ReadSigned(const std::string& size)
    {
        if (size == "hh")
            return static_cast<signed char>(va_arg(m_arguments, int));
        if (size == "h")
            return static_cast<short>(va_arg(m_arguments, int));
        return size.empty() ? va_arg(m_arguments, int) : va_arg(m_arguments, std::intmax_t);
    }
    std::uintmax_t ReadUnsigned(const std::string& size)
    {
        if (size == "hh")
            return static_cast<unsigned char>(va_arg(m_arguments, int));
        if (size == "h")
            return static_cast<unsigned short>(va_arg(m_arguments, int));
        return size.empty() ? va_arg(m_arguments, unsigned int) : va_arg(m_arguments, std::uintmax_t);
    }

    template <class N> void Number(const Spec& spec, const char* size, char kind, N value)
    {
        std::string format = "%" + spec.flags + "*.*" + size + kind;
        char small[96];
        const int length = snprintf(small, sizeof small, format.c_str(), spec.width, spec.precision, value);
        if (length < static_cast<int>(sizeof small)) {
            m_out.append(small, small + std::max(length, 0));
            return;
        }
        std::string large(static_cast<std::size_t>(length) + 1, '\0');
        snprintf(large.data(), large.size(), format.c_str(), spec.width, spec.precision, value);
        m_out.append(large.begin(), large.end() - 1);
    }

    void Text(const Spec& spec, bool wide)
    {
        std::basic_string<T> text;
        if (wide)
            AppendText(text, va_arg(m_arguments, const wchar_t*));
        else
            AppendText(text, va_arg(m_arguments, const char*));
        if (spec.precision >= 0 && text.size() > static_cast<std::size_t>(spec.precision))
            text.resize(spec.precision);
        Place(spec, text);
    }

    void Character(const Spec& spec, bool wide)
    {
        std::basic_string<T> text;
        const int value = va_arg(m_arguments, int);
        if (std::is_same_v<T, wchar_t> == wide)
            text += static_cast<T>(value);
        else if (wide) {
            const wchar_t character[2] = {static_cast<wchar_t>(value), 0};
            AppendText(text, character);
        } else {
            const char character[2] = {static_cast<char>(value), 0};
            AppendText(text, character);
        }
        Place(spec, text);
    }

    void Place(const Spec& spec, const std::basic_string<T>& text)
    {
        const std::size_t width = spec.width, padding = width > text.size() ? width - text.size() : 0;
        if (!spec.left)
            m_out.append(padding, T(' '));
        m_out += text;
        if (spec.left)
            m_out.append(padding, T(' '));
    }

    static constexpr int MOST_WIDTH = 1 << 20;

    const T* m_next;
    va_list m_arguments;
    std::basic_string<T> m_out;
};

// Length of the UTF-8 sequence at the front of `text` and its character; 0 when the first byte is stray.
int Decode(std::string_view text, char32_t& character)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const int length = first < 0x80                    ? 1
                       : first >= 0xC2 && first < 0xE0 ? 2
                       : first >= 0xE0 && first < 0xF0 ? 3
                       : first >= 0xF0 && first < 0xF5 ? 4
                                                       : 0;
    if (length == 0 || text.size() < static_cast<std::size_t>(length))
        return 0;
    character = length == 1 ? first : first & (0x7F >> length);
    for (int i = 1; i < length; i++) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        character = character << 6 | (byte(i) & 0x3F);
    }
    static constexpr char32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    return character < LEAST[length] || surrogate || character > 0x10FFFF ? 0 : length;
}

void Encode(std::string& out, char32_t c)
{
    const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
    if (c < 0x80)
        put(c);
    else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

}

template <class T> int CXTString<T>::Compare(const CXTString& other, bool ignoreCase) const
{
    if (!ignoreCase)
        return m_text.compare(other.m_text);
    const std::size_t common = std::min(m_text.size(), other.m_text.size());
    for (std::size_t i = 0; i < common; i++) {
        const auto a = static_cast<std::make_unsigned_t<T>>(ToLower(m_text[i]));
        const auto b = static_cast<std::make_unsigned_t<T>>(ToLower(other.m_text[i]));
        if (a != b)
            return a < b ? -1 : 1;
    }
    return m_text.size() == other.m_text.size() ? 0 : m_text.size() < other.m_text.size() ? -1 : 1;
}

template <class T> int CXTString<T>::Find(const CXTString& part, int from) const
{
    const std::size_t at = m_text.find(part.m_text, std::max(from, 0));
    return at == m_text.npos ? -1 : static_cast<int>(at);
}

template <class T> int CXTString<T>::Find(T character, int from) const
{
    const std::size_t at = m_text.find(character, std::max(from, 0));
    return at == m_text.npos ? -1 : static_cast<int>(at);
}

template <class T> int CXTString<T>::ReverseFind(T character) const
{
    const std::size_t at = m_text.rfind(character);
    return at == m_text.npos ? -1 : static_cast<int>(at);
}

template <class T> CXTString<T> CXTString<T>::Left(int count) const { return Mid(0, count); }

template <class T> CXTString<T> CXTString<T>::Right(int count) const { return Mid(GetLength() - std::clamp(count, 0, GetLength())); }

template <class T> CXTString<T> CXTString<T>::Mid(int from, int count) const
{
    const int first = std::clamp(from, 0, GetLength());
    return m_text.substr(first, std::max(count, 0));
}

template <class T> void CXTString<T>::MakeLower()
{
    for (T& character : m_text)
        character = ToLower(character);
}

template <class T> void CXTString<T>::MakeUpper()
{
    for (T& character : m_text)
        character = ToUpper(character);
}

template <class T> void CXTString<T>::Trim()
{
    const auto text = [](T c) { return !IsSpace(c); };
    m_text.erase(std::find_if(m_text.rbegin(), m_text.rend(), text).base(), m_text.end());
    m_text.erase(m_text.begin(), std::find_if(m_text.begin(), m_text.end(), text));
}

template <class T> int CXTString<T>::Replace(const CXTString& from, const CXTString& to)
{
    if (from.IsEmpty())
        return 0;
    int count = 0;
    std::basic_string<T> replaced;
    std::size_t done = 0;
    for (std::size_t at; (at = m_text.find(from.m_text, done)) != m_text.npos; done = at + from.m_text.size(), count++) {
        replaced.append(m_text, done, at - done);
        replaced += to.m_text;
    }
    if (count) {
        replaced.append(m_text, done);
        m_text = std::move(replaced);
    }
    return count;
}

template <class T> void CXTString<T>::FormatString(const T* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    FormatStringV(format, arguments);
    va_end(arguments);
}

template <class T> void CXTString<T>::FormatStringV(const T* format, va_list arguments)
{
    m_text = CFormatter<T>(format ? format : EMPTY, arguments).Run();    // the arguments may lie in the old text
}

template <class T> bool CXTString<T>::LoadStringW(unsigned int id)
{
    const CXTString<wchar_t>* text = FindString(id, GetLanguage());
    if (!text)
        m_text.clear();
    else if constexpr (std::is_same_v<T, wchar_t>)
        m_text = text->Str();
    else
        m_text = WideToUtf8(*text);
    return text != nullptr;
}

template class CXTString<wchar_t>;
template class CXTString<char>;

CXTString<wchar_t> Utf8ToWide(std::string_view text)
{
    std::wstring wide;
    wide.reserve(text.size());
    while (!text.empty()) {
        char32_t character = 0;
        int length = Decode(text, character);
        if (length == 0) {
            character = 0xDC00 + static_cast<unsigned char>(text[0]);
            length = 1;
        }
        wide += static_cast<wchar_t>(character);
        text.remove_prefix(length);
    }
    return wide;
}

std::string WideToUtf8(std::wstring_view text)
{
    std::string narrow;
    narrow.reserve(text.size());
    for (const wchar_t character : text) {
        const char32_t c = static_cast<char32_t>(character);
        if (c >= 0xDC80 && c < 0xDD00)
            narrow += static_cast<char>(c - 0xDC00);
        else
            Encode(narrow, (c >= 0xD800 && c < 0xE000) || c > 0x10FFFF ? U'\uFFFD' : c);
    }
    return narrow;
}
