#include "windows/WindowSystem.h"

#include <dlfcn.h>

#include <atomic>
#include <mutex>

#include "tools/FilePath.h"
#include "tools/ModuleFolders.h"
#include "tools/Progress.h"

namespace {

using Text = CXTString<wchar_t>;

class CNoWindowSystem : public IWindowSystem {
public:
    bool CreateWindowPeer(CWnd*, CWnd*, const Text&, const CRect&) override { return false; }
    bool CreateFramePeer(CFrameWndEx*, CWnd*, const Text&) override { return false; }
    bool CreateTreePeer(CCustomTree*, CWnd*) override { return false; }
    bool CreateListPeer(CCustomList*, CWnd*) override { return false; }
    int Run() override { return 0; }
    void Quit(int) override {}
    void PumpEvents() override {}
    bool IsKeyDown(unsigned int) override { return false; }
    unsigned int TrackPopup(CWnd*, CCustomMenu&, const CPoint&) override { return 0; }
    MessageAnswer ShowMessage(CWnd*, const Text&, const Text&, MessageButtons) override { return ANSWER_CANCEL; }
    bool ShowNotice(CWnd*, unsigned int, unsigned int, const Text&, const Text&) override { return false; }
    void ShowReport(CWnd*, const Text&, const Text&) override {}
    bool ChooseFiles(CWnd*, const CFileDialogRequest&, std::vector<CFileNameSpec>&) override { return false; }
    bool ChooseFolders(CWnd*, const Text&, bool, std::vector<Text>&) override { return false; }
    bool ChooseColor(CWnd*, CRGBColor&) override { return false; }
    bool RunDialog(CWnd*, const Text&, const std::vector<CDialogTable*>&) override { return false; }
    void SetWaitCursor(bool) override {}
    IProgressSink* CreateProgress(CWnd*, const Text&) override { return nullptr; }
    bool GetClipboardText(Text&) override { return false; }
    bool SetClipboardText(const Text&) override { return false; }
    void SendKey(unsigned int, unsigned int) override {}
    Bitmap* GrabWindow(CWnd*) override { return nullptr; }
};

std::atomic<IWindowSystem*> g_system{nullptr};

}

IWindowSystem::~IWindowSystem() = default;
std::vector<CShownQuestion> IWindowSystem::GetShownQuestions() { return {}; }
bool IWindowSystem::AnswerQuestion(const CXTString<wchar_t>&) { return false; }

IWindowSystem& GetWindowSystem()
{
    static CNoWindowSystem& none = *new CNoWindowSystem;
    IWindowSystem* const system = g_system;
    return system ? *system : none;
}

IWindowSystem* SetWindowSystem(IWindowSystem* system) { return g_system.exchange(system); }

// The system of one module; null with the reason. A module stays loaded: toolkits don't survive being unloaded.
static IWindowSystem* LoadModule(const Text& path, Text& error)
{
    const Text name = L"\"" + path + L"\": ";
    void* const module = dlopen(fileToDisk(path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        error = name + Utf8ToWide(dlerror());
        return nullptr;
    }
    const auto entry = reinterpret_cast<WindowSystemEntry>(dlsym(module, WINDOWS_ENTRY));
    if (!entry) {
        error = name + L"no module of windows";
        return nullptr;
    }
    Text reason;
    IWindowSystem* const system = entry(WINDOWS_VERSION, &reason);
    if (!system)
        error = reason.IsEmpty() ? name + L"made for another version" : reason;
    return system;
}

static bool IsModule(const Text& file)
{
    const Text start(L"zel-windows-");
    return file.GetLength() > start.GetLength() && file.Left(start.GetLength()) == start && fileGetExtension(file) == Text(L".so");
}

bool LoadWindowSystem(CXTString<wchar_t>& error)
{
    static std::mutex lock;
    const std::lock_guard<std::mutex> turn(lock);
    if (g_system)
        return true;
    error = L"The module that shows windows isn't installed.";
#ifdef ZEL_WINDOWS_DIR
    const char* const installed = ZEL_WINDOWS_DIR;
#else
    const char* const installed = nullptr;
#endif
    for (const std::string& folder : GetModuleFolders("ZEL_WINDOWS_PATH", "windows", installed)) {
        const Text path = fileAddSlash(Utf8ToWide(folder));
        for (const Text& file : fileList(path))
            if (IsModule(file))
                if (IWindowSystem* const system = LoadModule(path + file, error)) {
                    g_system = system;
                    return true;
                }
    }
    return false;
}

CWaitCursor::CWaitCursor(bool show)
{
    if (show)
        Show();
}

CWaitCursor::~CWaitCursor() { Hide(); }

void CWaitCursor::Show()
{
    if (!m_shown)
        GetWindowSystem().SetWaitCursor(true);
    m_shown = true;
}

void CWaitCursor::Hide()
{
    if (m_shown)
        GetWindowSystem().SetWaitCursor(false);
    m_shown = false;
}

bool CNotifyDlg2::ShowDialog(unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title, const CXTString<wchar_t>& text,
                             CWnd* parent)
{
    return GetWindowSystem().ShowNotice(parent, id, milliseconds, title, text);
}

CSelectFolderDlg::CSelectFolderDlg(CWnd* parent, unsigned int) : m_parent(parent) {}

void CSelectFolderDlg::SetFolder(const CXTString<wchar_t>& folder) { m_folder = folder; }

bool CSelectFolderDlg::DoModal()
{
    m_folders.assign(1, m_folder);
    if (!GetWindowSystem().ChooseFolders(m_parent, Text(), true, m_folders) || m_folders.empty()) {
        m_folders.clear();
        return false;
    }
    m_folder = m_folders.size() == 1 ? m_folders.front() : fileGetPath(m_folders.front());
    return true;
}
