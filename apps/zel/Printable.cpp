#include "Printable.h"

#include <cstdint>
#include <cstdio>
#include <string_view>

namespace {

/// A character of a UTF-8 text, or a byte that begins none.
struct Character {
    std::uint32_t code;
    std::size_t size;
    bool isValid;
};

Character ReadCharacter(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t size = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    if (size == 0 || size > text.size())
        return {first, 1, false};
    std::uint32_t code = size == 1 ? first : first & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; i++) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80)
            return {first, 1, false};
        code = code << 6 | (next & 0x3Fu);
    }
    constexpr std::uint32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    return code < LEAST[size] || code > 0x10FFFF || isSurrogate ? Character{first, 1, false} : Character{code, size, true};
}

bool IsControl(std::uint32_t code)
{
    const bool separates = code == 0x2028 || code == 0x2029;    // lines and paragraphs
    const bool turns = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x200E || code == 0x200F;
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || separates || turns;
}

std::string EscapeCode(std::uint32_t code)
{
    char text[16];
    std::snprintf(text, sizeof(text), "\\u%04x", code);
    return text;
}

std::string EscapeByte(std::uint32_t byte)
{
    char text[8];
    std::snprintf(text, sizeof(text), "\\x%02x", byte);
    return text;
}

template <class ESCAPE> std::string EscapeWhere(std::string_view text, ESCAPE&& escape)
{
    std::string result;
    while (!text.empty()) {
        const Character character = ReadCharacter(text);
        const std::string escaped = escape(character);
        result += escaped.empty() ? std::string(text.substr(0, character.size)) : escaped;
        text.remove_prefix(character.size);
    }
    return result;
}

}

std::string Printable(const std::string& text)
{
    return EscapeWhere(text, [](const Character& character) -> std::string {
        if (!character.isValid || character.code < 0x80)
            return character.isValid && !IsControl(character.code) ? "" : EscapeByte(character.code);
        return IsControl(character.code) ? EscapeCode(character.code) : "";
    });
}

void PrintJson(const Json& document)
{
    // The lines of the document itself are the only control characters below 0x20 that come out of this.
    const std::string text = document.dump(2, ' ', false, Json::error_handler_t::replace);
    const std::string escaped = EscapeWhere(text, [](const Character& character) {
        return character.code >= 0x20 && IsControl(character.code) ? EscapeCode(character.code) : "";
    });
    std::printf("%s\n", escaped.c_str());
}
