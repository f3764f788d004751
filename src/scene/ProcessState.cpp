#include "scene/ProcessState.h"

#include <atomic>
#include <mutex>

static std::mutex s_lock;
static unsigned int s_nextID[ID_COUNTERS] = {1, 1, 1};
static std::atomic<std::uint64_t> s_lastRevision{0}, s_sceneChanges{1};

unsigned int CreateSceneID(_ID_COUNTER counter)
{
    constexpr unsigned int NONE = 0xFFFFFFFF;
    const std::lock_guard<std::mutex> guard(s_lock);
    unsigned int& next = s_nextID[counter];
    if (next == NONE)    // a file may hold the last id that there is
        next = 1;
    return next++;
}

void AdvanceSceneID(_ID_COUNTER counter, unsigned int id)
{
    const std::lock_guard<std::mutex> guard(s_lock);
    if (id >= s_nextID[counter])
        s_nextID[counter] = id + 1;
}

std::uint64_t CreateRevision() { return s_lastRevision.fetch_add(1, std::memory_order_relaxed) + 1; }

void NoteSceneChange() { s_sceneChanges.fetch_add(1, std::memory_order_relaxed); }

std::uint64_t GetSceneChanges() { return s_sceneChanges.load(std::memory_order_relaxed); }
