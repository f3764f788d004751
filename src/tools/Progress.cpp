#include "tools/Progress.h"

#include <algorithm>
#include <cmath>
#include <limits>

/// One scope on a thread.
struct ProgressState {
    IProgressSink* sink;
    CProgress* innermost = nullptr;
    bool cancelled = false;
    int commits = 0;        // CProgressCommits that stand
    bool wished = false;    // to stop, meanwhile
};

namespace {

constexpr double GRAIN = 0.001;    // of the whole operation: what a sink hears of
constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

thread_local ProgressState* t_state = nullptr;
thread_local CByteProgress* t_bytes = nullptr;

}

IProgressSink::~IProgressSink() = default;

CProgressScope::CProgressScope(IProgressSink* sink) : m_former(t_state), m_state(sink ? new ProgressState{sink} : nullptr)
{
    t_state = m_state;
}

CProgressScope::~CProgressScope()
{
    t_state = m_former;
    delete m_state;
}

IProgressSink* CProgressScope::GetCurrentSink() { return t_state ? t_state->sink : nullptr; }

bool CProgressScope::IsCancelled() { return t_state && t_state->cancelled; }

CProgress::CProgress(const CXTString<wchar_t>& text, std::uint64_t range)
    : m_text(text), m_range(std::max<std::uint64_t>(range, 1)), m_next(NEVER), m_state(t_state)
{
    if (!m_state)
        return;
    m_outer = m_state->innermost;
    m_state->innermost = this;
    m_cancelled = m_state->cancelled;
    if (m_outer) {
        m_base = m_outer->GetFraction();
        m_share = m_outer->m_share / static_cast<double>(m_outer->m_range);
        PlanNext();
    } else
        Notify();
}

CProgress::~CProgress()
{
    if (m_state)
        m_state->innermost = m_outer;
}

void CProgress::SetRange(std::uint64_t range)
{
    m_range = std::max<std::uint64_t>(range, 1);
    if (m_state)
        PlanNext();
}

bool CProgress::SetText(const CXTString<wchar_t>& text)
{
    m_text = text;
    return Update();
}

bool CProgress::Update() { return m_state ? Tell() : true; }

bool CProgress::IsCancelled() const { return m_cancelled || (m_state && m_state->cancelled); }

bool CProgress::Notify()
{
    PlanNext();
    return Tell();
}

bool CProgress::Tell()
{
    if (!m_state->cancelled && !m_state->sink->OnProgress(m_text, GetFraction())) {
        if (m_state->commits > 0)
            m_state->wished = true;
        else
            Cancel(*m_state);
    }
    return !m_state->cancelled;
}

void CProgress::Cancel(ProgressState& state)
{
    state.cancelled = true;
    for (CProgress* progress = state.innermost; progress; progress = progress->m_outer)
        progress->m_cancelled = true;
}

// The next position that is worth telling: at least GRAIN of the whole further on.
void CProgress::PlanNext()
{
    const double step = std::ceil(GRAIN / m_share * static_cast<double>(m_range));
    m_next = step < 1e18 ? m_position + static_cast<std::uint64_t>(std::max(step, 1.0)) : NEVER;
}

double CProgress::GetFraction() const
{
    // Work inside another one that is at its end already adds nothing.
    return std::min(1.0, m_base + m_share * static_cast<double>(std::min(m_position, m_range)) / static_cast<double>(m_range));
}

CProgressCommit::CProgressCommit() : m_state(t_state), m_wished(t_state && t_state->cancelled)
{
    if (!m_state)
        return;
    m_state->commits++;
    m_state->cancelled = false;
}

CProgressCommit::~CProgressCommit()
{
    if (!m_state || (--m_state->commits > 0 && !m_wished))
        return;
    if (m_wished || m_state->wished)
        CProgress::Cancel(*m_state);
}

CByteProgress::CByteProgress(const CXTString<wchar_t>& text, std::uint64_t total) : m_progress(text, total), m_outer(t_bytes)
{
    t_bytes = this;
}

CByteProgress::~CByteProgress() { t_bytes = m_outer; }

bool CByteProgress::Count(std::uint64_t bytes) { return !t_bytes || t_bytes->m_progress.Step(bytes); }
