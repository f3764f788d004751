#include "tools/ProfileFile.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "tools/FilePath.h"
#include "tools/IoFile.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr std::uint64_t MOST_BYTES = std::uint64_t{1} << 20;

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view BLANKS = " \t\r";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == text.npos ? std::string_view() : text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

bool IsComment(std::string_view line) { return line.empty() || line[0] == ';' || line[0] == '#'; }

bool IsSection(std::string_view line) { return line.size() > 2 && line.front() == '[' && line.back() == ']'; }

std::string_view ValueOf(std::string_view line) { return Trimmed(line.substr(line.find('=') + 1)); }

bool IsName(const Text& name)
{
    const std::string text = WideToUtf8(name);
    return !text.empty() && !IsComment(text) && Trimmed(text) == text && text.find_first_of("=[]\n\r", 0) == text.npos &&
           text.find('\0') == text.npos;
}

bool ReadNumber(std::string_view text, unsigned int& number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

Text StandardPath()
{
    Text path;
    return GetUserPreferencesPath(path, false) ? path + L"profile.ini" : Text();
}

}

CProfileFile::CProfileFile() : CProfileFile(StandardPath()) {}

CProfileFile::CProfileFile(const Text& path) : m_path(path) { Load(); }

CProfileFile::~CProfileFile() = default;

unsigned int CProfileFile::GetProfileInt(const Text& section, const Text& key, unsigned int standard)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    const Line* const line = Find(section, key);
    unsigned int value;
    return line && ReadNumber(ValueOf(line->text), value) ? value : standard;
}

bool CProfileFile::WriteProfileInt(const Text& section, const Text& key, unsigned int value)
{
    if (!IsName(section) || !IsName(key))
        return false;
    const std::lock_guard<std::mutex> guard(m_lock);
    const Line* const line = Find(section, key);
    unsigned int former;
    if (m_unsaved.empty() && line && ReadNumber(ValueOf(line->text), former) && former == value)
        return true;
    std::erase_if(m_unsaved, [&](const Change& change) { return change.key == key && change.section == section; });
    m_unsaved.push_back({section, key, value});
    const bool readable = Load();    // others may have written
    for (const Change& change : m_unsaved)
        Set(change.section, change.key, change.value);
    if (!readable || !Save()) {
        Warn(L"can't be written: changes hold until the program ends");
        return false;
    }
    m_unsaved.clear();
    return true;
}

std::vector<Text> CProfileFile::GetWarnings() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_warnings;
}

void CProfileFile::Warn(const wchar_t* text)
{
    const Text warning = m_path + L": " + text;
    if (std::find(m_warnings.begin(), m_warnings.end(), warning) == m_warnings.end())
        m_warnings.push_back(warning);
}

// Lines.

const CProfileFile::Line* CProfileFile::Find(const Text& section, const Text& key) const
{
    const auto found =
        std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& line) { return line.key == key && line.section == section; });
    return found != m_lines.end() && !key.IsEmpty() ? &*found : nullptr;
}

void CProfileFile::Set(const Text& section, const Text& key, unsigned int value)
{
    const Line changed = {WideToUtf8(key) + '=' + std::to_string(value), section, key};
    if (const Line* const line = Find(section, key)) {
        m_lines[line - m_lines.data()] = changed;
        return;
    }
    const auto last = std::find_if(m_lines.rbegin(), m_lines.rend(), [&](const Line& line) { return line.section == section; });
    if (last != m_lines.rend()) {
        m_lines.insert(last.base(), changed);
        return;
    }
    m_lines.push_back({'[' + WideToUtf8(section) + ']', section, {}});
    m_lines.push_back(changed);
}

void CProfileFile::Parse(const std::string& text)
{
    m_lines.clear();
    Text section;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        ParseLine(text.substr(start, end - start), section);
        start = end + 1;
    }
}

void CProfileFile::ParseLine(const std::string& text, Text& section)
{
    const std::string_view line = Trimmed(text);
    const std::string_view name = Trimmed(line.substr(0, line.find('=')));
    const bool isSection = IsSection(line);
    const bool isValue = !isSection && !IsComment(line) && name.size() < line.size() && IsName(Utf8ToWide(name));
    if (isSection)
        section = Utf8ToWide(Trimmed(line.substr(1, line.size() - 2)));
    else if (!isValue && !IsComment(line)) {
        Warn(L"has damaged lines, which are not looked at");
        if (line[0] == '[')
            section.Empty();    // whatever it was, what follows is not of the section before
    }
    m_lines.push_back({text, isSection || isValue ? section : Text(), isValue ? Text(Utf8ToWide(name)) : Text()});
}

// The file.

bool CProfileFile::Load()
{
    if (!fileExists(m_path))
        return true;
    IoFile file;
    std::string text;
    if (file.OpenFile(m_path, 1, nullptr) && file.GetLength() <= MOST_BYTES) {
        text.resize(file.GetLength());
        if (file.ReadBytes(text.data(), text.size()) == text.size()) {
            Parse(text);
            return true;
        }
    }
    Warn(L"can't be read: all values are the standard ones");
    return false;
}

bool CProfileFile::Save()
{
    std::string text;
    for (const Line& line : m_lines)
        text += line.text + '\n';
    IoFile file;
    return !m_path.IsEmpty() && fileCreateDirectory(fileGetPath(m_path), true) && file.OpenFile(m_path, 0, nullptr) &&
           file.WriteBytes(text.data(), text.size()) && file.CloseFile(true);
}
