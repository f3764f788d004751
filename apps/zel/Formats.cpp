#include "Formats.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "Printable.h"

namespace {

/// A file class and who handles it.
struct FormatRow {
    CFileExt format;
    std::vector<std::string> handlers;
};

/// Whether the library handles the class itself.
bool IsBuiltIn(const CFileExt& format)
{
    return C3DIo(format.fileClass, FILEIO_READ | FILEIO_NO_FILE | FILEIO_SILENT, nullptr).InitParser() != nullptr;
}

std::vector<FormatRow> ListFormats()
{
    std::vector<FormatRow> rows;
    const std::vector<CIoPluginInfo> plugins = GetIOPlugins();
    for (const CFileExt& format : fileGetExtensions(FILE_FAMILY_3D)) {
        FormatRow row{format, {}};
        for (const CIoPluginInfo& plugin : plugins)
            if (std::ranges::any_of(plugin.formats, [&](const CFileExt& own) { return own.fileClass == format.fileClass; }))
                row.handlers.push_back(WideToUtf8(plugin.name));
        if (row.handlers.empty() && IsBuiltIn(format))
            row.handlers.push_back("3dzel");
        if (!row.handlers.empty())
            rows.push_back(std::move(row));
    }
    std::ranges::stable_sort(rows, {}, [](const FormatRow& row) { return WideToUtf8(row.format.GetMainExtension()); });
    return rows;
}

std::vector<std::string> Extensions(const CFileExt& format)
{
    std::vector<std::string> extensions;
    for (const CXTString<wchar_t>& extension : format.extensions)
        extensions.push_back(WideToUtf8(extension));
    return extensions;
}

std::string Join(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : " ") + part;
    return text;
}

}

ExitCode ShowFormats(const Console& console, bool json)
{
    const std::vector<FormatRow> rows = ListFormats();
    for (const CXTString<wchar_t>& line : GetIOPluginLog())
        console.Say(WideToUtf8(line));
    if (json) {
        Json formats = Json::array();
        for (const FormatRow& row : rows)
            formats.push_back({{"class", WideToUtf8(fileGetClassText(row.format.fileClass))},
                               {"extensions", Extensions(row.format)},
                               {"description", WideToUtf8(row.format.description)},
                               {"read", row.format.CanRead()},
                               {"write", row.format.CanWrite()},
                               {"by", row.handlers}});
        PrintJson({{"schema", 1}, {"formats", formats}});
        return EXIT_DONE;
    }
    console.PrintHeading("extension   class  read  write  by       format");
    for (const FormatRow& row : rows)
        std::printf("%-11s %-6s %-5s %-6s %-8s %s\n", Join(Extensions(row.format)).c_str(),
                    WideToUtf8(fileGetClassText(row.format.fileClass)).c_str(), row.format.CanRead() ? "yes" : "-",
                    row.format.CanWrite() ? "yes" : "-", Printable(Join(row.handlers)).c_str(),
                    Printable(WideToUtf8(row.format.description)).c_str());
    return EXIT_DONE;
}
