#include "tools/StringTable.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unordered_map>

// resources/strings/*.txt as they stand, put here by the build.
extern const std::string_view g_englishStrings;
extern const std::string_view g_frenchStrings;

namespace {

using Table = std::unordered_map<unsigned int, CXTString<wchar_t>>;

std::string Unescape(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); i++) {
        if (text[i] != '\\' || i + 1 == text.size())
            out += text[i];
        else {
            const char escaped = text[++i];
            out += escaped == 'n' ? '\n' : escaped == 't' ? '\t' : escaped;
        }
    }
    return out;
}

// Lines "id text"; empty ones and those that begin with '#' say nothing.
Table Parse(std::string_view lines)
{
    Table table;
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        std::string_view line = lines.substr(0, end);
        lines.remove_prefix(std::min(end + 1, lines.size()));
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        unsigned int id = 0;
        const char* const last = line.data() + line.size();
        const auto [rest, error] = std::from_chars(line.data(), last, id);
        if (error == std::errc() && rest != last && *rest == ' ')
            table[id] = Utf8ToWide(Unescape(std::string_view(rest + 1, last - rest - 1)));
    }
    return table;
}

const Table& GetTable(_LANGUAGE language)
{
    static const Table* const english = new Table(Parse(g_englishStrings));    // texts outlive whatever ends the process
    static const Table* const french = new Table(Parse(g_frenchStrings));
    return language == LANGUAGE_FRENCH ? *french : *english;
}

bool IsLanguage(std::string_view locale, std::string_view code)
{
    return locale.starts_with(code) && (locale.size() == 2 || !std::isalpha(static_cast<unsigned char>(locale[2])));
}

// LANGUAGE lists preferences, "de:fr:en"; the other three name one locale, the first that is set counts.
_LANGUAGE LanguageOfEnvironment()
{
    const auto get = [](const char* name) {
        const char* const value = getenv(name);
        return std::string_view(value ? value : "");
    };
    for (std::string_view list = get("LANGUAGE"); !list.empty();) {
        const std::size_t end = std::min(list.find(':'), list.size());
        if (IsLanguage(list.substr(0, end), "fr"))
            return LANGUAGE_FRENCH;
        if (IsLanguage(list.substr(0, end), "en"))
            return LANGUAGE_ENGLISH;
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const std::string_view locale = get(name); !locale.empty())
            return IsLanguage(locale, "fr") ? LANGUAGE_FRENCH : LANGUAGE_ENGLISH;
    return LANGUAGE_ENGLISH;
}

std::atomic<int>& GetLanguageInForce()
{
    static std::atomic<int> language = LanguageOfEnvironment();
    return language;
}

}

_LANGUAGE GetLanguage() { return static_cast<_LANGUAGE>(GetLanguageInForce().load(std::memory_order_relaxed)); }

void SetLanguage(_LANGUAGE language) { GetLanguageInForce().store(language, std::memory_order_relaxed); }

const CXTString<wchar_t>* FindString(unsigned int id, _LANGUAGE language)
{
    for (const _LANGUAGE tried : {language, LANGUAGE_ENGLISH}) {
        const Table& table = GetTable(tried);
        if (const auto found = table.find(id); found != table.end())
            return &found->second;
    }
    return nullptr;
}
