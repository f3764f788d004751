#pragma once

#include <charconv>
#include <cmath>
#include <concepts>
#include <string>
#include <string_view>

/// JSON, piece by piece: commas come by themselves. Numbers have the shortest digits that read back as the same number.
class JsonText {
public:
    JsonText& Open(char bracket)
    {
        Separate();
        m_text += bracket;
        m_isFirst = true;
        return *this;
    }
    JsonText& Close(char bracket)
    {
        m_text += bracket;
        m_isFirst = false;
        return *this;
    }
    JsonText& Key(std::string_view key)
    {
        Value(key);
        m_text += ':';
        m_isFirst = true;
        return *this;
    }
    JsonText& Value(std::string_view text);
    JsonText& Value(const char* text) { return Value(std::string_view(text)); }
    JsonText& Value(bool value) { return Raw(value ? "true" : "false"); }
    template <class NUMBER>
    requires std::integral<NUMBER> || std::floating_point<NUMBER> JsonText& Value(NUMBER value)
    {
        if constexpr (std::floating_point<NUMBER>)
            value = std::isfinite(value) ? value : 0;    // others are no JSON
        char digits[64];
        return Raw({digits, static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits)});
    }
    template <class VALUE> JsonText& Member(std::string_view key, const VALUE& value) { return Key(key).Value(value); }
    /// `count` numbers as an array.
    template <class NUMBER> JsonText& Numbers(const NUMBER* values, std::size_t count)
    {
        Open('[');
        for (std::size_t i = 0; i < count; i++)
            Value(values[i]);
        return Close(']');
    }
    JsonText& Raw(std::string_view json)
    {
        Separate();
        m_text += json;
        return *this;
    }

    const std::string& GetText() const { return m_text; }

private:
    void Separate()
    {
        if (!m_isFirst)
            m_text += ',';
        m_isFirst = false;
    }

    std::string m_text;
    bool m_isFirst = true;
};
