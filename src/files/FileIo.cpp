#include "files/FileIo.h"

#include <mutex>

#include "files/FileDialog.h"
#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "tools/CustomData.h"
#include "tools/FilePath.h"
#include "windows/WindowSystem.h"

namespace {

using Text = CXTString<wchar_t>;

constexpr unsigned int READ_SETTINGS = FourCC("READ");
constexpr unsigned int SAVE_SETTINGS = FourCC("SAVE");
constexpr unsigned int SETTINGS_FILE = FourCC("ZLIO");
constexpr unsigned int SETTINGS_KIND = FourCC("PREF");

unsigned int AbilityFor(unsigned int flags) { return flags & FILEIO_READ ? FILE_KIND_READ : FILE_KIND_WRITE; }

std::mutex& SettingsLock()
{
    static std::mutex& lock = *new std::mutex;
    return lock;
}

bool GetSettingsFile(Text& path, bool create)
{
    if (!GetUserPreferencesPath(path, create))
        return false;
    path += Text(L"formats.prefs");
    return true;
}

// Texts of the string table; %s is the file.
enum : unsigned int {
    STRING_NONE = 0,
    STRING_CANNOT_OPEN = 7380,
    STRING_CANNOT_CREATE = 7381,
    STRING_CANNOT_READ_FORMAT = 7382,
    STRING_CANNOT_WRITE_FORMAT = 7383,
    STRING_READING_FAILED = 7384,
    STRING_SAVING_FAILED = 7385,
    STRING_NOTHING_TO_SAVE = 7386,
    STRING_NO_BRIDGE = 7387,
    STRING_NO_OBJECT = 7388,
};

unsigned int MeaningOf(int result, bool reading)
{
    switch (result) {
    case IORESULT_OK:
    case IORESULT_CANCELLED: return STRING_NONE;
    case IORESULT_NO_FILE: return reading ? STRING_CANNOT_OPEN : STRING_CANNOT_CREATE;
    case IORESULT_NO_PARSER: return reading ? STRING_CANNOT_READ_FORMAT : STRING_CANNOT_WRITE_FORMAT;
    case IORESULT_NOTHING_TO_SAVE: return STRING_NOTHING_TO_SAVE;
    case IORESULT_NO_BRIDGE: return STRING_NO_BRIDGE;
    case IORESULT_EMPTY: return STRING_NO_OBJECT;
    default: return reading ? STRING_READING_FAILED : STRING_SAVING_FAILED;
    }
}

}

CFileIo::CFileIo(const CFileNameSpec& name, unsigned int flags, CWnd* parent)
    : CFileInfo(name, AbilityFor(flags)), m_parent(parent), m_flags(flags)
{
}

CFileIo::CFileIo(unsigned int fileClass, unsigned int flags, CWnd* parent) : CFileIo(CFileNameSpec(Text(), fileClass), flags, parent) {}

CFileIo::CFileIo(const CFileIo& other) : CFileInfo(other), m_parent(other.m_parent), m_flags(other.m_flags) {}

CFileIo::~CFileIo() { CFileIo::CloseParser(); }

CFileParser* CFileIo::InitParser()
{
    while (!m_parser && GetPlugin() >= 0) {
        m_parser = CreateIOParser(GetClass(), AbilityFor(m_flags), GetPlugin(), this, m_module);
        if (!m_parser && !TryNextParser())
            break;
    }
    return m_parser;
}

void CFileIo::CloseParser()
{
    delete m_parser;
    m_parser = nullptr;
    ReleaseIOModule(m_module);    // only now: the parser's code lies in it
    m_module = nullptr;
}

void CFileIo::SetIoError(int result, CIoOptions* options, IoLogInfo::loglevel level)
{
    m_result = result;
    m_level = level;
    m_detail = Text();
    const Text text = GetResultText();
    if (options && !text.IsEmpty())
        options->AddLogInfo(level, text);
}

CXTString<wchar_t> CFileIo::GetResultText() const
{
    Text text;
    if (const unsigned int meaning = MeaningOf(m_result, IsReading())) {
        text.LoadStringW(meaning);
        text.Replace(L"%s", IsEmpty() ? L"\"" + fileGetClassText(GetClass()) + L"\"" : GetFileName());
        if (!m_detail.IsEmpty())
            text += L" " + m_detail;
    }
    return text;
}

void CFileIo::ReportIoError(CIoOptions* options, unsigned int mask)
{
    if (IsSilent())
        return;
    const bool wanted = options && options->IsOptionSet(IOOPT_SHOW_REPORT);
    const Text log = options ? options->GetLogText(mask) : Text();
    if (wanted && !log.IsEmpty())
        GetWindowSystem().ShowReport(m_parent, GetFileName(), log);
    else if (const Text text = GetResultText(); !text.IsEmpty())
        GetWindowSystem().ShowMessage(m_parent, GetFileName(), text, MESSAGE_OK);
}

bool CFileIo::FileDialogBox(unsigned int kind, unsigned int filterClass)
{
    const unsigned int filter = filterClass ? filterClass : FILTER_ALL;
    CFileNameSpec chosen(GetFullName(), GetGivenClass());
    if (IsReading()) {
        Text name = GetFullName();
        if (!fileOpenFile(m_parent, name, kind, filter))
            return false;
        chosen = CFileNameSpec(name);
    } else if (!fileSaveFile(m_parent, chosen, kind, filter))
        return false;
    CloseParser();
    SetFullName(chosen.GetFullName());
    SetClass(chosen.GetGivenClass());
    ResetParsers();
    return true;
}

bool CFileIo::LoadIoParameters(bool reading, CCustomData& out, unsigned int fileClass)
{
    const std::lock_guard guard(SettingsLock());
    out.RemoveAll();
    Text path;
    CCustomData all;
    if (!GetSettingsFile(path, false) || !all.LoadFromPrefs(path, SETTINGS_FILE, SETTINGS_KIND))
        return false;
    const CCustomData* const classes = all.GetCustomData(reading ? READ_SETTINGS : SAVE_SETTINGS);
    const CCustomData* const saved = classes ? classes->GetCustomData(fileClass) : nullptr;
    if (!saved)
        return false;
    out = *saved;
    return true;
}

bool CFileIo::SaveIoParameters(bool reading, const CCustomData& data, unsigned int fileClass)
{
    // Read again and written as a whole: another process may have remembered something meanwhile.
    const std::lock_guard guard(SettingsLock());
    Text path;
    if (!GetSettingsFile(path, true))
        return false;
    CCustomData all;
    all.LoadFromPrefs(path, SETTINGS_FILE, SETTINGS_KIND);
    CCustomData& classes = all.MakeCustomData(reading ? READ_SETTINGS : SAVE_SETTINGS);
    if (data.IsEmpty())
        classes.Remove(fileClass);
    else
        classes.SetCustomData(fileClass, data);
    return all.SaveToPrefs(path, SETTINGS_FILE, SETTINGS_KIND);
}
