#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

#include "tools/Api.h"

/// Value string of the system; `CXTString<wchar_t>` in every interface, UTF-8 on disk.
///
/// Positions and lengths are in characters; -1 means not found. Instantiated for `wchar_t` and `char`.
template <class T> class CXTString {
public:
    CXTString() = default;
    CXTString(const T* text) : m_text(text ? text : EMPTY) {}
    CXTString(const T* text, int length) : m_text(text, length) {}
    CXTString(T character, int count) : m_text(count, character) {}
    CXTString(std::basic_string<T> text) : m_text(std::move(text)) {}
    explicit CXTString(std::basic_string_view<T> text) : m_text(text) {}

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    const T* c_str() const { return m_text.c_str(); }
    operator const T*() const { return m_text.c_str(); }
    const std::basic_string<T>& Str() const { return m_text; }
    std::basic_string<T>& Str() { return m_text; }
    /// The character at `index`; 0 outside the string.
    T GetAt(int index) const { return index >= 0 && index < GetLength() ? m_text[index] : T(0); }
    T operator[](int index) const { return GetAt(index); }

    /// Below, at or above 0, by code point; `ignoreCase` folds letters first: wide ones by Unicode's simple rules whatever the
    /// locale, bytes by ASCII. MakeLower and MakeUpper do the same.
    ZEL_API int Compare(const CXTString& other, bool ignoreCase = false) const;
    int CompareNoCase(const CXTString& other) const { return Compare(other, true); }
    ZEL_API int Find(const CXTString& part, int from = 0) const;
    ZEL_API int Find(T character, int from = 0) const;
    ZEL_API int ReverseFind(T character) const;
    /// Parts of the string; arguments are clipped to it.
    ZEL_API CXTString Left(int count) const;
    ZEL_API CXTString Right(int count) const;
    ZEL_API CXTString Mid(int from, int count = 0x7FFFFFFF) const;
    ZEL_API void MakeLower();
    ZEL_API void MakeUpper();
    /// Takes white space off both ends.
    ZEL_API void Trim();
    /// Replaces every occurrence; returns how many.
    ZEL_API int Replace(const CXTString& from, const CXTString& to);

    /// Becomes the printf-formatted text; the old text may be among the arguments. %s takes strings of the own character
    /// type, %S of the other, %ls wide ones, %hs UTF-8. Widths count characters; no %n, no numbered arguments.
    ZEL_API void FormatString(const T* format, ...);
    ZEL_API void FormatStringV(const T* format, va_list arguments);
    /// Becomes the string-table text of that id in the language in force (tools/StringTable.h). False and empty for an
    /// unknown id.
    ZEL_API bool LoadStringW(unsigned int id);

    CXTString& operator+=(const CXTString& other)
    {
        m_text += other.m_text;
        return *this;
    }
    CXTString& operator+=(T character)
    {
        m_text += character;
        return *this;
    }
    friend CXTString operator+(CXTString a, const CXTString& b) { return a += b; }
    friend CXTString operator+(CXTString a, const T* b) { return a += CXTString(b); }
    friend CXTString operator+(const T* a, const CXTString& b) { return CXTString(a) += b; }
    friend CXTString operator+(CXTString a, T b) { return a += b; }
    friend bool operator==(const CXTString& a, const CXTString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CXTString& a, const T* b) { return a.m_text == (b ? b : EMPTY); }
    friend bool operator<(const CXTString& a, const CXTString& b) { return a.m_text < b.m_text; }

    /// FNV-1a over the characters; used as a hash key.
    unsigned int GetHash() const
    {
        unsigned int hash = 2166136261u;
        for (const T character : m_text)
            hash = (hash ^ static_cast<unsigned int>(character)) * 16777619u;
        return hash;
    }

private:
    static constexpr T EMPTY[1] = {};

    std::basic_string<T> m_text;
};

/// UTF-8 to wide and back. Bytes that are no UTF-8 become U+DC80..U+DCFF and come back as the same bytes, so that
/// every file name survives.
ZEL_API CXTString<wchar_t> Utf8ToWide(std::string_view text);
ZEL_API std::string WideToUtf8(std::wstring_view text);
inline std::string WideToUtf8(const CXTString<wchar_t>& text) { return WideToUtf8(std::wstring_view(text.Str())); }
