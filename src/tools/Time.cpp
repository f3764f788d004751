#include "tools/Time.h"

#include <chrono>

std::int64_t timeGetTick()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count() + 1;
}
