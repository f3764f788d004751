#include "Events.h"

#include <deque>
#include <vector>

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

// One of the two waits at most, however much happens.
QTimer& Timer(bool idle)
{
    static QTimer* const timers[2] = {new QTimer, new QTimer};
    QTimer& timer = *timers[idle];
    if (!timer.isSingleShot()) {
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &timer, [idle] {
            if (!idle)
                RunPostedEvents();
            else if (g_depth == 0 && g_idle) {
                const CEventScope scope(CEventScope::QUIET);
                g_idle();
            }
        });
    }
    return timer;
}

}

CEventScope::CEventScope(Kind kind) : m_kind(kind) { g_depth++; }

CEventScope::~CEventScope()
{
    if (--g_depth > 0)
        return;
    if (!g_posted.empty() || !g_leaving.empty())
        Timer(false).start(0);
    if (m_kind == USUAL)
        AskForIdle();
}

bool CEventScope::IsOpen() { return g_depth > 0; }

void PostEvent(QObject* owner, std::function<void()> action)
{
    g_posted.push_back({owner, std::move(action)});
    if (g_depth == 0)
        Timer(false).start(0);
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
    if (g_idle && !Timer(true).isActive())
        Timer(true).start(0);
}

void DeleteLater(QObject* object)
{
    g_leaving.push_back(object);
    if (g_depth == 0)
        Timer(false).start(0);
}

void SetIdleHandler(std::function<void()> handler) { g_idle = std::move(handler); }
