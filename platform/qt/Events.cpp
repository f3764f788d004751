#include "Events.h"

#include <deque>
#include <utility>
#include <vector>

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

namespace {

struct Posted {
    QPointer<QObject> owner;
    std::function<void()> action;
};

int g_depth = 0;
std::deque<Posted> g_posted;
std::vector<QPointer<QObject>> g_leaving;
std::function<void()> g_idle;

// Asks the loop for what is posted, before its timers; once, however much is posted.
void AskForPosted()
{
    static bool asked = false;
    if (std::exchange(asked, true))
        return;
    const auto run = [] {
        asked = false;
        RunPostedEvents();
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), run, Qt::QueuedConnection);
}

}

CEventScope::CEventScope(Kind kind) : m_kind(kind) { g_depth++; }

CEventScope::~CEventScope()
{
    if (--g_depth > 0)
        return;
    if (!g_posted.empty() || !g_leaving.empty())
        AskForPosted();
    if (m_kind == USUAL)
        AskForIdle();
}

bool CEventScope::IsOpen() { return g_depth > 0; }

void PostEvent(QObject* owner, std::function<void()> action)
{
    g_posted.push_back({owner, std::move(action)});
    if (g_depth == 0)
        AskForPosted();
}

void RunPostedEvents()
{
    if (g_depth > 0)
        return;    // the end of the outermost scope asks again
    while (!g_posted.empty()) {
        const Posted next = std::move(g_posted.front());
        g_posted.pop_front();
        const CEventScope scope;
        if (next.owner)
            next.action();
    }
    for (const QPointer<QObject>& object : std::exchange(g_leaving, {}))
        delete object.data();
}

void AskForIdle()
{
    static QTimer* const timer = new QTimer;
    if (!timer->isSingleShot()) {
        timer->setSingleShot(true);
        QObject::connect(timer, &QTimer::timeout, timer, [] {
            if (g_depth > 0 || !g_idle)
                return;
            const CEventScope scope(CEventScope::QUIET);
            g_idle();
        });
    }
    if (g_idle && !timer->isActive())
        timer->start(0);
}

void DeleteLater(QObject* object)
{
    g_leaving.push_back(object);
    if (g_depth == 0)
        AskForPosted();
}

void SetIdleHandler(std::function<void()> handler) { g_idle = std::move(handler); }
