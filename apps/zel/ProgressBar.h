#pragma once

#include <3dzel.h>

#include "Console.h"

/// Shows on a terminal how far the work of this thread is, as long as it lives.
class ProgressBar : private IProgressSink {
public:
    explicit ProgressBar(const Console& console) : m_console(console), m_scope(console.HasProgress() ? this : nullptr) {}
    ~ProgressBar() override { m_console.ClearProgress(); }

private:
    bool OnProgress(const CXTString<wchar_t>& text, double fraction) override
    {
        m_console.ShowProgress(WideToUtf8(text), fraction);
        return true;
    }

    const Console& m_console;
    const CProgressScope m_scope;
};
