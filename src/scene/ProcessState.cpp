#include "scene/ProcessState.h"

static unsigned int s_nextID[ID_COUNTERS] = {1, 1, 1};

unsigned int CreateSceneID(_ID_COUNTER counter) { return s_nextID[counter]++; }

void AdvanceSceneID(_ID_COUNTER counter, unsigned int id)
{
    if (id >= s_nextID[counter])
        s_nextID[counter] = id + 1;
}
