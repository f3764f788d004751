#pragma once

#include <vector>

#include "tools/Api.h"
#include "tools/CustomData.h"
#include "tools/String.h"

/// One line of the report of a reading or a saving.
struct IoLogInfo {
    enum loglevel {
        INFORMATION = 1,
        WARNING = 2,
        FAILURE = 4,
        ALL = 255,    ///< a mask, as the levels are
    };

    /// Something of the scene does not come through: told as information where it was foreseen, else a warning or a failure.
    bool IsLoss() const { return loss || level != INFORMATION; }

    loglevel level;
    CXTString<wchar_t> text;
    bool loss = false;
};

enum IoOptionsFlags : unsigned int {
    IOOPT_SETTINGS_ONLY = 2,        ///< a dialog edits settings; nothing is read or written
    IOOPT_INTERACTIVE = 4,          ///< an options dialog shows
    IOOPT_SHOW_REPORT = 0x10000,    ///< the user wants to see the report
};

/// What goes with every reading and saving: a bag of settings, a log, flags.
class ZEL_API CIoOptions {
public:
    explicit CIoOptions(bool reading);
    virtual ~CIoOptions();

    bool IsReading() const { return m_reading; }
    /// The settings that are remembered from one time to the next.
    CCustomData& GetCustomData() { return m_data; }
    const CCustomData& GetCustomData() const { return m_data; }

    bool IsOptionSet(IoOptionsFlags flag) const { return (m_ioFlags & flag) == static_cast<unsigned int>(flag); }
    void SetOption(IoOptionsFlags flag, bool on = true) { m_ioFlags = on ? m_ioFlags | flag : m_ioFlags & ~flag; }

    /// Adds a line to the log. After 10,000 lines only failures are kept, and the others counted.
    void AddLogInfo(IoLogInfo::loglevel level, const CXTString<wchar_t>& text);
    /// The same for one of the numbers 1, 2, 4.
    void AddLogInfo(int level, const CXTString<wchar_t>& text) { AddLogInfo(static_cast<IoLogInfo::loglevel>(level), text); }
    /// Information about something of the scene that does not come through.
    void AddLossInfo(const CXTString<wchar_t>& text);
    const std::vector<IoLogInfo>& GetLog() const { return m_log; }
    /// Lines that were counted and not kept.
    unsigned int GetDroppedLogCount() const { return m_dropped; }
    bool HasLog(unsigned int mask) const;
    /// The lines of the levels in `mask`, each ended with a line feed.
    CXTString<wchar_t> GetLogText(unsigned int mask) const;
    void RemoveLog();

private:
    void AddLine(const IoLogInfo& line);

    CCustomData m_data;
    std::vector<IoLogInfo> m_log;
    unsigned int m_dropped = 0;
    unsigned int m_ioFlags = 0;
    bool m_reading;
};
