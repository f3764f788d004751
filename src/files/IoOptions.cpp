#include "files/IoOptions.h"

#include <algorithm>

namespace {

constexpr size_t MAX_LOG_LINES = 10000;    // a broken file can be wrong in each of its million faces

}

CIoOptions::CIoOptions(bool reading) : m_reading(reading) {}

CIoOptions::~CIoOptions() = default;

void CIoOptions::AddLogInfo(IoLogInfo::loglevel level, const CXTString<wchar_t>& text) { AddLine({level, text}); }

void CIoOptions::AddLossInfo(const CXTString<wchar_t>& text) { AddLine({IoLogInfo::INFORMATION, text, true}); }

void CIoOptions::AddLine(const IoLogInfo& line)
{
    if (m_log.size() < MAX_LOG_LINES || line.level == IoLogInfo::FAILURE)
        m_log.push_back(line);
    else
        m_dropped++;
}

bool CIoOptions::HasLog(unsigned int mask) const
{
    return std::any_of(m_log.begin(), m_log.end(), [&](const IoLogInfo& line) { return line.level & mask; });
}

CXTString<wchar_t> CIoOptions::GetLogText(unsigned int mask) const
{
    CXTString<wchar_t> text;
    for (const IoLogInfo& line : m_log)
        if (line.level & mask)
            text += line.text + L"\n";
    if (m_dropped) {
        CXTString<wchar_t> more;
        more.FormatString(L"... and %u more\n", m_dropped);
        text += more;
    }
    return text;
}

void CIoOptions::RemoveLog()
{
    m_log.clear();
    m_dropped = 0;
}
