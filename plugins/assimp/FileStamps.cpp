#include "FileStamps.h"

#include <cstdint>
#include <cstring>
#include <regex>

namespace {

constexpr struct {
    const char* name;
    std::int32_t first;
} s_fbxParts[] = {{"Year", 1970}, {"Month", 1}, {"Day", 1}, {"Hour", 0}, {"Minute", 0}, {"Second", 0}, {"Millisecond", 0}};

}

std::string ClearStamps(std::string_view head)
{
    static const std::regex DATE(R"(([>'])\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(?=[<']))");
    static const std::regex LONG_DATE(R"([A-Z][a-z]{2} [A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d \d{4})");
    std::string text = std::regex_replace(std::string(head), DATE, "$011970-01-01T00:00:00");
    text = std::regex_replace(text, LONG_DATE, "Thu Jan  1 00:00:00 1970");
    if (text.find("CreationTimeStamp:") != std::string::npos)
        for (const auto& part : s_fbxParts)
            text = std::regex_replace(text, std::regex(std::string("(\\s)") + part.name + ": \\d+"),
                                      std::string("$01") + part.name + ": " + std::to_string(part.first));
    return text;
}

// Behind each name stand the letter of its kind of number and the number.
void ClearFbxStamps(std::string& file)
{
    std::size_t at = file.substr(0, STAMPS_END).find("CreationTimeStamp");
    for (const auto& part : s_fbxParts) {
        const std::string name = part.name + std::string("I");
        at = at == std::string::npos ? at : file.find(name, at);
        if (at < STAMPS_END && at + name.size() + sizeof part.first <= file.size())
            std::memcpy(file.data() + at + name.size(), &part.first, sizeof part.first);
    }
}

// Each file has its time in a record before its content and in one of the directory at the end.
void ClearArchiveStamps(std::string& archive)
{
    constexpr std::size_t END_SIZE = 22, DIRECTORY_AT = 16, TIME_AT = 10, ENTRY_SIZE = 46, ENTRY_TIME_AT = 12, ENTRY_LENGTHS_AT = 28,
                          ENTRY_PLACE_AT = 42;
    static constexpr std::uint32_t FIRST_TIME = 1u << 21 | 1u << 16;    // January, 1
    const auto number = [&archive](std::size_t at, std::size_t size) {
        std::uint32_t value = 0;
        if (at + size <= archive.size())
            std::memcpy(&value, archive.data() + at, size);
        return value;
    };
    const auto clear = [&archive](std::size_t at) {
        if (at + sizeof FIRST_TIME <= archive.size())
            std::memcpy(archive.data() + at, &FIRST_TIME, sizeof FIRST_TIME);
    };
    if (archive.size() < END_SIZE)
        return;
    std::size_t at = number(archive.size() - END_SIZE + DIRECTORY_AT, 4);
    while (at + ENTRY_SIZE <= archive.size() && archive.compare(at, 4, "PK\1\2") == 0) {
        clear(at + ENTRY_TIME_AT);
        clear(number(at + ENTRY_PLACE_AT, 4) + TIME_AT);
        const std::size_t lengths = at + ENTRY_LENGTHS_AT;    // of name, further data and remark
        at += ENTRY_SIZE + number(lengths, 2) + number(lengths + 2, 2) + number(lengths + 4, 2);
    }
}
