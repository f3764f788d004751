#pragma once

#include <string>
#include <vector>

#include "files/IoOptions.h"

/// What reading and writing did to a scene and what did not come through: the logs of the options that went along, one after the other.
///
///     C3DConversionReport report;
///     report.Add(importOptions);
///     report.Add(exportOptions);
///     if (report.HasLosses()) ...
class ZEL_API C3DConversionReport {
public:
    /// Appends the log of a reading or a writing.
    void Add(const CIoOptions& options);
    /// A warning, a failure, or something that a format cannot hold; also lines that a log did not keep, for nobody knows what they said.
    bool HasLosses() const;

    /// One line each, "import: warning: ...": what a text of several lines says further follows indented. Empty when nothing happened.
    std::string GetText() const;
    /// {"schema": 1, "losses": bool, "dropped": number, "lines": [{"stage": "import" or "export", "level": "information", "warning" or
    /// "failure", "loss": bool, "text": ...}]}, UTF-8 whatever the texts hold. Keys are only ever added.
    std::string GetJson() const;

private:
    struct Line {
        bool reading;
        IoLogInfo info;
    };
    std::vector<Line> m_lines;
    unsigned int m_dropped = 0;
};
