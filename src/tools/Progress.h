#pragma once

#include <cstdint>

#include "tools/Api.h"
#include "tools/String.h"

struct ProgressState;

/// Shows how far an operation is. A host or tool installs one for its thread with CProgressScope.
class ZEL_API IProgressSink {
public:
    virtual ~IProgressSink();
    /// `fraction` is 0 to 1 over the whole operation. False asks the operation to stop.
    virtual bool OnProgress(const CXTString<wchar_t>& text, double fraction) = 0;
};

/// Makes a sink the thread's current one as long as the scope lives; the former one comes back. Null: nothing is shown.
class ZEL_API CProgressScope {
public:
    explicit CProgressScope(IProgressSink* sink);
    ~CProgressScope();
    CProgressScope(const CProgressScope&) = delete;
    CProgressScope& operator=(const CProgressScope&) = delete;

    static IProgressSink* GetCurrentSink();
    /// True when the user wants what this thread does to stop. Nobody is asked.
    static bool IsCancelled();

private:
    ProgressState* m_former;
    struct ProgressState* m_state;
};

/// Progress of one operation on this thread. Inside another one it covers the step that the outer one is at.
///
/// Without a sink a step costs a comparison. With one, the sink hears of about a thousandth of the range at a time.
/// Once cancelled, everything below the same scope stays cancelled.
class ZEL_API CProgress {
public:
    explicit CProgress(const CXTString<wchar_t>& text, std::uint64_t range = 1);
    ~CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

    /// False when the user wants to stop.
    bool SetPos(std::uint64_t position)
    {
        m_position = position;
        return position < m_next ? !m_cancelled : Notify();
    }
    bool Step(std::uint64_t count = 1) { return SetPos(m_position + count); }
    std::uint64_t GetPos() const { return m_position; }
    void SetRange(std::uint64_t range);
    /// Tells the sink at once.
    bool SetText(const CXTString<wchar_t>& text);
    /// The same for what stands.
    bool Update();
    bool IsCancelled() const;

private:
    friend class CProgressCommit;

    bool Notify();
    bool Tell();
    static void Cancel(ProgressState& state);
    void PlanNext();
    double GetFraction() const;

    CXTString<wchar_t> m_text;
    std::uint64_t m_range, m_position = 0, m_next;
    bool m_cancelled = false;
    double m_base = 0, m_share = 1;    ///< its part of the whole operation
    CProgress* m_outer = nullptr;
    struct ProgressState* m_state = nullptr;
};

/// From here to its end nothing on this thread hears that the user wants to stop: what has begun is finished. The wish is kept until then.
class ZEL_API CProgressCommit {
public:
    CProgressCommit();
    ~CProgressCommit();
    CProgressCommit(const CProgressCommit&) = delete;
    CProgressCommit& operator=(const CProgressCommit&) = delete;

private:
    ProgressState* m_state;
    bool m_wished;    // before
};

/// Progress of one reading or writing by the bytes that files of this thread move. When the user wants to stop, files fail.
class ZEL_API CByteProgress {
public:
    /// @param total  bytes in all, as far as they are known; more of them are shown as all
    CByteProgress(const CXTString<wchar_t>& text, std::uint64_t total);
    ~CByteProgress();
    CByteProgress(const CByteProgress&) = delete;
    CByteProgress& operator=(const CByteProgress&) = delete;

    /// Bytes that a file is about to move. False when the user wants to stop; always true when no such progress stands.
    static bool Count(std::uint64_t bytes);

private:
    CProgress m_progress;
    CByteProgress* const m_outer;
};
