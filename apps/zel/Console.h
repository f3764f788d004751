#pragma once

#include <string>

#include <3dzel.h>

/// Where zel speaks: data goes to standard output, talk to standard error. What it says is made printable.
class Console {
public:
    /// No talk but failures.
    void SetQuiet(bool quiet) { m_quiet = quiet; }

    /// One line on standard error, whatever the text holds; not for --quiet.
    void Say(const std::string& text) const;
    /// One line on standard error, always.
    void Fail(const std::string& text) const;
    /// A line on standard output: bold on a terminal, unless NO_COLOR is set.
    void PrintHeading(const std::string& text) const;
    /// False, with one line on standard error, when something that was printed did not come out: a full disk, a closed pipe.
    bool Finish() const;

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
