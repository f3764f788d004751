#pragma once

#include <functional>

class QObject;

// Handlers of windows run inside scopes. What is posted, and the frames' OnIdle, wait until the outermost one has ended.

class CEventScope {
public:
    enum Kind { USUAL, QUIET };    ///< QUIET: changes nothing that a tool bar could show, as painting

    explicit CEventScope(Kind kind = USUAL);
    ~CEventScope();
    CEventScope(const CEventScope&) = delete;
    CEventScope& operator=(const CEventScope&) = delete;

    static bool IsOpen();

private:
    Kind m_kind;
};

/// Runs an action once the event under way is done; never when `owner` is gone by then.
void PostEvent(QObject* owner, std::function<void()> action);

/// Runs what is posted, unless a handler is under way.
void RunPostedEvents();

/// What frames do when nothing is left to do, soon.
void AskForIdle();

/// Destroys an object of Qt's once no handler can be inside of it.
void DeleteLater(QObject* object);

/// Called when a handler has ended and nothing is left to do.
void SetIdleHandler(std::function<void()> handler);
