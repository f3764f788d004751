#include "scene/ProcessState.h"

static unsigned int s_nextID[ID_COUNTERS] = {1, 1, 1};

unsigned int CreateSceneID(_ID_COUNTER counter)
{
    constexpr unsigned int NONE = 0xFFFFFFFF;
    unsigned int& next = s_nextID[counter];
    if (next == NONE)    // a file may hold the last id that there is
        next = 1;
    return next++;
}

void AdvanceSceneID(_ID_COUNTER counter, unsigned int id)
{
    if (id >= s_nextID[counter])
        s_nextID[counter] = id + 1;
}
