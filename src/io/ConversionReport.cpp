#include "io/ConversionReport.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::ordered_json;

const char* GetStageName(bool reading) { return reading ? "import" : "export"; }

const char* GetLevelName(IoLogInfo::loglevel level)
{
    switch (level) {
    case IoLogInfo::FAILURE: return "failure";
    case IoLogInfo::WARNING: return "warning";
    default: return "information";
    }
}

std::string Indent(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    for (std::size_t at = 0; (at = text.find('\n', at)) != text.npos; at += 3)
        text.insert(at + 1, "  ");
    return text;
}

}

void C3DConversionReport::Add(const CIoOptions& options)
{
    for (const IoLogInfo& info : options.GetLog())
        m_lines.push_back({options.IsReading(), info});
    m_dropped += options.GetDroppedLogCount();
}

bool C3DConversionReport::HasLosses() const
{
    return m_dropped > 0 || std::any_of(m_lines.begin(), m_lines.end(), [](const Line& line) { return line.info.IsLoss(); });
}

std::string C3DConversionReport::GetText() const
{
    std::string text;
    for (const Line& line : m_lines) {
        const bool told = line.info.level != IoLogInfo::INFORMATION;
        text += GetStageName(line.reading);
        text += told ? std::string(": ") + GetLevelName(line.info.level) : line.info.loss ? ": loss" : "";
        text += ": " + Indent(WideToUtf8(line.info.text)) + "\n";
    }
    return m_dropped ? text + "... and " + std::to_string(m_dropped) + " more\n" : text;
}

std::string C3DConversionReport::GetJson() const
{
    Json lines = Json::array();
    for (const Line& line : m_lines)
        lines.push_back({{"stage", GetStageName(line.reading)},
                         {"level", GetLevelName(line.info.level)},
                         {"loss", line.info.IsLoss()},
                         {"text", WideToUtf8(line.info.text)}});
    const Json report = {{"schema", 1}, {"losses", HasLosses()}, {"dropped", m_dropped}, {"lines", lines}};
    return report.dump(2, ' ', false, Json::error_handler_t::replace);
}
