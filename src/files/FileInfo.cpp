#include "files/FileInfo.h"

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "tools/FilePath.h"

namespace {

using Text = CXTString<wchar_t>;

bool IsSchemeCharacter(wchar_t c, bool first)
{
    const bool letter = (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
    return letter || (!first && ((c >= L'0' && c <= L'9') || c == L'+' || c == L'-' || c == L'.'));
}

// Scheme of "scheme://…"; empty for a plain name. One letter is a drive, no scheme.
Text GetScheme(const Text& name)
{
    const int end = name.Find(Text(L"://"));
    if (end < 2)
        return {};
    for (int i = 0; i < end; i++)
        if (!IsSchemeCharacter(name[i], i == 0))
            return {};
    return name.Left(end);
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

Text DecodePercents(const Text& text)
{
    const std::string bytes = WideToUtf8(text);
    std::string decoded;
    for (size_t i = 0; i < bytes.size(); i++) {
        const int high = bytes[i] == '%' && i + 2 < bytes.size() ? HexDigit(bytes[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(bytes[i + 2]) : -1;
        if (low >= 0 && (high | low) != 0) {    // a NUL would cut the name short
            decoded += static_cast<char>(high << 4 | low);
            i += 2;
        } else
            decoded += bytes[i];
    }
    return Utf8ToWide(decoded);
}

}

CFileInfo::CFileInfo(const CFileNameSpec& name, unsigned int ability) : CFileNameSpec(name), m_ability(ability) {}

unsigned int CFileInfo::GetClass() const
{
    const std::vector<Candidate>& candidates = GetCandidates();
    return m_current < candidates.size() ? candidates[m_current].fileClass : CFileNameSpec::GetClass();
}

bool CFileInfo::CanTryAnotherParser() const { return m_current + 1 < GetCandidates().size(); }

bool CFileInfo::TryNextParser()
{
    if (!CanTryAnotherParser())
        return false;
    m_current++;
    return true;
}

void CFileInfo::ResetParsers()
{
    m_listed = false;
    m_candidates.clear();
    m_current = 0;
}

int CFileInfo::GetPlugin() const
{
    const std::vector<Candidate>& candidates = GetCandidates();
    return m_current < candidates.size() ? candidates[m_current].plugin : -1;
}

const std::vector<CFileInfo::Candidate>& CFileInfo::GetCandidates() const
{
    if (m_listed)
        return m_candidates;
    m_listed = true;
    std::vector<unsigned int> classes;
    if (GetGivenClass())
        classes.push_back(GetGivenClass());
    else if (const Text extension = GetExtension(); !extension.IsEmpty())
        classes = fileGetClasses(extension);
    for (const unsigned int fileClass : classes) {
        const int plugins = GetIOParserCount(fileClass, m_ability);
        if (plugins == 0)
            m_candidates.push_back({fileClass, -1});
        for (int i = 0; i < plugins; i++)
            m_candidates.push_back({fileClass, i});
    }
    return m_candidates;
}

bool CFileInfo::IsURL(bool check) const
{
    const Text scheme = GetScheme(GetFullName());
    if (scheme.IsEmpty() || !check)
        return !scheme.IsEmpty();
    return scheme.CompareNoCase(L"file") == 0 && fileExists(GetDiskName());
}

Text CFileInfo::GetDiskName() const
{
    const Text& name = GetFullName();
    const Text scheme = GetScheme(name);
    if (scheme.CompareNoCase(L"file") != 0)
        return scheme.IsEmpty() ? Utf8ToWide(fileToDisk(name)) : name;
    // "file:///path" and "file://host/path": the host is this one or cannot be reached
    const int path = name.Find(L'/', scheme.GetLength() + 3);
    return path < 0 ? Text() : DecodePercents(name.Mid(path));
}
