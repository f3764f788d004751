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

private:
    bool m_quiet = false;
};
