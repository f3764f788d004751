#include "windows/ScriptWindowSystem.h"

#include <algorithm>

#include "tools/Progress.h"

namespace {

using Text = CXTString<wchar_t>;

template <class T> bool Take(std::deque<T>& answers, T& answer)
{
    if (answers.empty())
        return false;
    answer = std::move(answers.front());
    answers.pop_front();
    return true;
}

// What a user can reach.
CControl* FindUsable(const std::vector<CDialogTable*>& pages, unsigned int id, CDialogTable*& page)
{
    for (CDialogTable* const candidate : pages)
        if (CControl* const control = candidate->Find(id); control && control->visible && control->enabled) {
            page = candidate;
            return control;
        }
    return nullptr;
}

}

CScriptWindowSystem::CScriptWindowSystem() = default;
CScriptWindowSystem::~CScriptWindowSystem() = default;

bool CScriptWindowSystem::Check(const std::vector<CDialogTable*>& pages, unsigned int id, bool on)
{
    CDialogTable* page = nullptr;
    CControl* const control = FindUsable(pages, id, page);
    if (!control)
        return false;
    if (control->kind == CONTROL_RADIO && on)
        for (CControl& other : page->controls)
            if (other.kind == CONTROL_RADIO && other.group == control->group)
                other.checked = false;
    control->checked = on;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Press(const std::vector<CDialogTable*>& pages, unsigned int id)
{
    CDialogTable* page = nullptr;
    if (!FindUsable(pages, id, page))
        return false;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::Enter(const std::vector<CDialogTable*>& pages, unsigned int id, const Text& value)
{
    CDialogTable* page = nullptr;
    CControl* const control = FindUsable(pages, id, page);
    if (!control)
        return false;
    control->value = value;
    page->OnControl(id);
    return true;
}

bool CScriptWindowSystem::CreateWindowPeer(CWnd*, CWnd*, const Text& title, const CRect&)
{
    shown.push_back(L"window: " + title);
    return false;
}

MessageAnswer CScriptWindowSystem::ShowMessage(CWnd*, const Text&, const Text& text, MessageButtons)
{
    shown.push_back(L"message: " + text);
    MessageAnswer answer = ANSWER_CANCEL;
    Take(messageAnswers, answer);
    return answer;
}

void CScriptWindowSystem::ShowNotice(CWnd*, unsigned int id, const Text& title, const Text&)
{
    Text line;
    line.FormatString(L"notice %u: ", id);
    shown.push_back(line + title);
}

void CScriptWindowSystem::ShowReport(CWnd*, const Text&, const Text& text) { shown.push_back(L"report: " + text); }

bool CScriptWindowSystem::ChooseFiles(CWnd*, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen)
{
    Text line;
    line.FormatString(request.reading ? L"files: read %X" : L"files: save %X", request.kind);
    shown.push_back(line);
    return Take(fileAnswers, chosen) && !chosen.empty();
}

bool CScriptWindowSystem::ChooseFolder(CWnd*, Text& folder)
{
    shown.push_back(L"folder: " + folder);
    return Take(folderAnswers, folder);
}

bool CScriptWindowSystem::ChooseColor(CWnd*, CRGBColor& color)
{
    shown.push_back(Text(L"color"));
    return Take(colorAnswers, color);
}

bool CScriptWindowSystem::RunDialog(CWnd*, const Text& title, const std::vector<CDialogTable*>& pages)
{
    shown.push_back(L"dialog: " + title);
    // A page that refuses OK keeps the dialog open: the next user goes on with it.
    for (DialogUser user; Take(dialogUsers, user);) {
        if (!user(pages))
            return false;
        if (std::all_of(pages.begin(), pages.end(), [](CDialogTable* page) { return page->OnOk(); }))
            return true;
    }
    return false;
}

void CScriptWindowSystem::SetWaitCursor(bool on)
{
    waitCursors += on ? 1 : -1;
    waitCursorCount += on;
}

IProgressSink* CScriptWindowSystem::CreateProgress(CWnd*, const Text& title)
{
    shown.push_back(L"progress: " + title);
    return nullptr;
}

bool CScriptWindowSystem::GetClipboardText(Text& text)
{
    text = clipboard;
    return !text.IsEmpty();
}

bool CScriptWindowSystem::SetClipboardText(const Text& text)
{
    clipboard = text;
    return true;
}
