#pragma once

#include <string>

#include <3dzel.h>

/// Where zel speaks: data goes to standard output, talk to standard error.
class Console {
public:
    /// No talk but failures.
    void SetQuiet(bool quiet) { m_quiet = quiet; }

    /// One line on standard error, whatever the text holds; not for --quiet.
    void Say(const std::string& text) const;
    /// One line on standard error, always.
    void Fail(const std::string& text) const;
    /// A heading for standard output: bold on a terminal, unless NO_COLOR is set.
    std::string Heading(const std::string& text) const;

    /// Progress is shown: standard error is a terminal, and nobody asked for quiet.
    bool HasProgress() const;
    /// A bar on the last line of the terminal, which everything said then takes away.
    void ShowProgress(const std::string& text, double fraction) const;
    void ClearProgress() const;
    /// Text that another process had for standard error.
    void PassOn(const std::string& talk) const;

private:
    bool m_quiet = false;
    mutable bool m_showsProgress = false;
};
