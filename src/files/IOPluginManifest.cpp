// The text that tells the formats of an IO plug-in without loading it.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "files/IOPlugin.h"
#include "files/IOPluginModule.h"

namespace {

constexpr std::string_view MANIFEST_HEAD = "zel-io-formats";

std::vector<std::string> SplitFields(const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, '\t');)
        fields.push_back(field);
    return fields;
}

// Four characters as they are, or hexadecimals for a class that has others.
std::string WriteClassField(unsigned int fileClass)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const unsigned int c = fileClass >> shift & 0xFF;
        if (c < 32 || c > 126 || (shift == 24 && c == '#')) {
            std::ostringstream number;
            number << "0x" << std::hex << fileClass;
            return number.str();
        }
        text += static_cast<char>(c);
    }
    return text;
}

bool ReadHex(const std::string& field, unsigned int& value)
{
    if (field.size() < 3 || field.size() > 10 || field[0] != '0' || field[1] != 'x')
        return false;
    char* end = nullptr;
    value = static_cast<unsigned int>(std::strtoul(field.c_str() + 2, &end, 16));
    return *end == 0;
}

bool ReadClassField(const std::string& field, unsigned int& value)
{
    if (field.size() != 4)
        return ReadHex(field, value);
    value = 0;
    for (const char c : field)
        value = value << 8 | static_cast<unsigned char>(c);
    return true;
}

bool ReadFormatLine(const std::string& line, CIoFormat& format)
{
    const std::vector<std::string> fields = SplitFields(line);
    unsigned int fileClass = 0, kind = 0;
    if (fields.size() != 5 || !ReadClassField(fields[0], fileClass) || !ReadHex(fields[1], kind))
        return false;
    kind &= ~static_cast<unsigned int>(FILE_KIND_READ | FILE_KIND_WRITE);
    for (const char ability : fields[2]) {
        if (ability != 'r' && ability != 'w')
            return false;
        kind |= ability == 'r' ? FILE_KIND_READ : FILE_KIND_WRITE;
    }
    format = {CFileExt(Utf8ToWide(fields[4]), Utf8ToWide(fields[3]), fileClass, kind), nullptr};
    return fileClass != 0 && !format.extension.extensions.empty();
}

}

ManifestState ReadIOManifest(const std::string& path, std::vector<CIoFormat>& formats)
{
    std::ifstream file(path);
    if (!file)
        return ManifestState::MISSING;
    std::ostringstream text;
    text << file.rdbuf();
    return ParseIOManifest(text.str(), formats);
}

ManifestState ParseIOManifest(const std::string& text, std::vector<CIoFormat>& formats)
{
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    const std::vector<std::string> head = SplitFields(line);
    if (head.size() != 2 || head[0] != MANIFEST_HEAD)
        return ManifestState::DAMAGED;
    if (head[1] != std::to_string(ZEL_IO_PLUGIN_API))
        return ManifestState::WRONG_VERSION;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        CIoFormat format;
        if (!ReadFormatLine(line, format)) {
            formats.clear();
            return ManifestState::DAMAGED;
        }
        formats.push_back(std::move(format));
    }
    return ManifestState::GOOD;
}

std::string FormatIOManifest(const std::vector<CIoFormat>& formats)
{
    std::ostringstream text;
    text << MANIFEST_HEAD << '\t' << ZEL_IO_PLUGIN_API << "\n# class, kind, abilities, extensions, description\n";
    for (const CIoFormat& format : formats) {
        const CFileExt& extension = format.extension;
        text << WriteClassField(extension.fileClass) << "\t0x" << std::hex
             << (extension.kind & ~static_cast<unsigned int>(FILE_KIND_READ | FILE_KIND_WRITE)) << std::dec << '\t';
        if (extension.CanRead())
            text << 'r';
        if (extension.CanWrite())
            text << 'w';
        text << '\t';
        for (size_t i = 0; i < extension.extensions.size(); i++)
            text << (i ? ";" : "") << WideToUtf8(extension.extensions[i]);
        std::string description = WideToUtf8(extension.description);
        std::replace_if(
            description.begin(), description.end(), [](char c) { return c == '\t' || c == '\n'; }, ' ');
        text << '\t' << description << '\n';
    }
    return text.str();
}
