#include "viewer/RecentFiles.h"

#include <algorithm>
#include <sstream>

#include "tools/FilePath.h"
#include "tools/FourCC.h"
#include "tools/IoFile.h"
#include "viewer/FrameViewer.h"
#include "viewer/Texts.h"
#include "windows/Menu.h"

namespace {

using Text = CXTString<wchar_t>;

Text GetListPath(bool create)
{
    Text folder;
    return GetUserPreferencesPath(folder, create) ? folder + L"recent.txt" : Text();
}

std::vector<Text> LoadPaths()
{
    constexpr std::uint64_t MOST_BYTES = 0x100000;
    std::vector<Text> paths;
    IoFile file;
    if (!file.OpenFile(GetListPath(false), 1, nullptr) || file.GetLength() > MOST_BYTES)
        return paths;
    std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
    bytes.resize(file.ReadBytes(bytes.data(), bytes.size()));
    std::istringstream lines(bytes);
    for (std::string line; std::getline(lines, line) && paths.size() < CRecentFiles::MOST_FILES;)
        if (!line.empty())
            paths.push_back(Utf8ToWide(line));
    return paths;
}

bool SavePaths(const std::vector<Text>& paths)
{
    std::string bytes;
    for (const Text& path : paths)
        bytes += WideToUtf8(path) + '\n';
    IoFile file;
    return file.OpenFile(GetListPath(true), 0, nullptr) && file.WriteBytes(bytes.data(), bytes.size()) && file.CloseFile(true);
}

// An entry's text: its number is its access key, and no character of the name is one.
Text GetMenuText(int number, const Text& path)
{
    constexpr int SHOWN = 60;
    Text name = fileCompactPath(path, SHOWN), text;
    name.Replace(L"&", L"&&");
    text.FormatString(number < 10 ? L"&%d  %s" : L"%d  %s", number, name.c_str());
    return text;
}

}

std::vector<Text> CRecentFiles::Get()
{
    std::vector<Text> paths = LoadPaths();
    std::erase_if(paths, [](const Text& path) { return !fileExists(path); });
    return paths;
}

bool CRecentFiles::Add(const Text& path)
{
    if (path.IsEmpty() || path.Find(L'\n') >= 0)
        return false;
    std::vector<Text> paths = LoadPaths();
    if (!paths.empty() && paths.front() == path)
        return true;
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(std::min(paths.size(), MOST_FILES));
    return SavePaths(paths);
}

C3DRecentCommand::C3DRecentCommand() : C3DCommand(FourCC("RCNT")) {}

CommandResult C3DRecentCommand::OnApplyCommand()
{
    const C3DFrameViewer* const frame = Get3DFrameWnd();
    for (const Text& path : CRecentFiles::Get())
        if (frame && path != frame->GetCurrentFilePath())
            return Open(path);
    return COMMAND_DECLINED;
}

CCustomMenu* C3DRecentCommand::OnPopupMenu(CCustomMenu* menu, unsigned int)
{
    m_popup.Clear();
    m_files = CRecentFiles::Get();
    int place = 0;
    for (const Text& path : m_files) {
        m_popup.Add(*menu, GetMenuText(place + 1, path), place);
        ++place;
    }
    if (m_files.empty())
        m_popup.Add(*menu, LoadText(TEXT_NO_RECENT_FILE), place);
    return menu;
}

unsigned int C3DRecentCommand::GetPopupCmdState(unsigned int) { return m_files.empty() ? 0 : +COMMAND_ENABLED; }

int C3DRecentCommand::DoPopupCmd(unsigned int id)
{
    const std::optional<int> place = m_popup.GetValue(id);
    if (!place || static_cast<std::size_t>(*place) >= m_files.size())
        return 0;
    Open(Text(m_files[static_cast<std::size_t>(*place)]));
    return 1;
}

CommandResult C3DRecentCommand::Open(const Text& path)
{
    return Get3DFrameWnd() && Get3DFrameWnd()->OpenFile(path, OPEN_DROPPED) ? COMMAND_DONE : COMMAND_DECLINED;
}
