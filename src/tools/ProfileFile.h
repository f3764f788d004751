#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "tools/Application.h"

/// A profile in a small text file of its own: "[Section]" lines, each with "key=value" lines below it, UTF-8.
///
/// What others put there stays as it is: other sections and keys, comments (';' or '#'), lines that make no sense. Each change is written at
/// once, beside the file and then in its place, on top of what other programs have written meanwhile. Where it cannot be written, values hold
/// as long as the object. Any thread.
class ZEL_API CProfileFile : public IApplication {
public:
    /// The file in the user's settings folder (profile.ini).
    CProfileFile();
    explicit CProfileFile(const CXTString<wchar_t>& path);
    ~CProfileFile() override;

    /// `standard` also for a value that is no number.
    unsigned int GetProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int standard) override;
    /// False also for names that a line cannot hold: empty, with blanks at an end, line ends, '=' or a bracket.
    bool WriteProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int value) override;

    /// What went wrong so far, each kind of trouble once: damaged lines, nowhere to write. Empty for nothing.
    std::vector<CXTString<wchar_t>> GetWarnings() const;

private:
    /// A line of the file. A section's line has no key, any other line outside of the form neither section nor key.
    struct Line {
        std::string text;
        CXTString<wchar_t> section, key;
    };
    struct Change {
        CXTString<wchar_t> section, key;
        unsigned int value;
    };

    /// False, with the lines as they were, for a file that is there and cannot be read.
    bool Load();
    void Parse(const std::string& text);
    void ParseLine(const std::string& text, CXTString<wchar_t>& section);
    bool Save();
    const Line* Find(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key) const;
    void Set(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int value);
    void Warn(const wchar_t* text);

    mutable std::mutex m_lock;
    CXTString<wchar_t> m_path;
    std::vector<Line> m_lines;
    std::vector<Change> m_unsaved;
    std::vector<CXTString<wchar_t>> m_warnings;
};
