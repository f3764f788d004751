#pragma once

#include <memory>
#include <optional>

#include "tools/Progress.h"
#include "windows/WindowSystem.h"

/// Progress window of the work of this thread while the object lives: it comes up with the first telling, so that a dialog of options that comes
/// before is not under it, and work that is done at once shows none. A sink that the thread has already stays.
class CLateProgress : public IProgressSink {
public:
    CLateProgress(CWnd* parent, const CXTString<wchar_t>& title) : m_parent(parent), m_title(title)
    {
        if (!CProgressScope::GetCurrentSink())
            m_scope.emplace(static_cast<IProgressSink*>(this));
    }

private:
    bool OnProgress(const CXTString<wchar_t>& text, double fraction) override
    {
        if (!m_begun)
            m_window.reset(GetWindowSystem().CreateProgress(m_parent, m_title));
        m_begun = true;
        return !m_window || m_window->OnProgress(text, fraction);
    }

    CWnd* m_parent;
    CXTString<wchar_t> m_title;
    bool m_begun = false;
    std::unique_ptr<IProgressSink> m_window;
    std::optional<CProgressScope> m_scope;
};
