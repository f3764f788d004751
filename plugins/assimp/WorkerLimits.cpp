#include "WorkerLimits.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fstream>
#include <new>
#include <thread>

#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

// The address sanitizer takes all the memory there is.
#if defined(__SANITIZE_ADDRESS__)
#define ZEL_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZEL_ADDRESS_SANITIZER
#endif
#endif

namespace {

#if defined(ZEL_ADDRESS_SANITIZER)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif
constexpr rlim_t MEGABYTE = rlim_t{1} << 20;
constexpr rlim_t STACK = MEGABYTE;           // of each further thread
constexpr unsigned int THREADS = 16;         // beside one for each processor
constexpr rlim_t BLOCKS = 16 * MEGABYTE;     // what large blocks lose: each begins and ends on 2 MiB
constexpr rlim_t RESERVE = 32 * MEGABYTE;    // to tell of it when memory has run out
constexpr rlim_t MOST = rlim_t{1} << 50;     // so that sums do not wrap

rlim_t s_limit = RLIM_INFINITY, s_base = 0, s_growth = 0;
std::atomic<bool> s_ranOut{false};

// What RLIMIT_DATA counts: private memory that can be written.
rlim_t DataSize()
{
    std::ifstream file("/proc/self/statm");
    rlim_t pages = 0;
    for (int field = 0; field < 6; field++)
        file >> pages;
    return file ? pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) : 0;
}

void Set(__rlimit_resource_t resource, rlim_t limit)
{
    rlimit now;
    if (getrlimit(resource, &now) == 0) {
        now.rlim_cur = std::min(limit, now.rlim_max);
        setrlimit(resource, &now);
    }
}

void OnLackOfMemory()
{
    NoteLackOfMemory();
    throw std::bad_alloc();
}

void LimitStacks()
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return;
    pthread_attr_setstacksize(&attributes, STACK);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
}

}

void SetWorkerLimits(std::uint64_t megabytes, std::uint64_t growth)
{
    std::signal(SIGXFSZ, SIG_IGN);    // a write that goes too far fails
    if (megabytes == 0 || IS_SANITIZED)
        return;
    LimitStacks();
    s_base = DataSize() + BLOCKS + (std::thread::hardware_concurrency() + THREADS) * STACK;
    s_limit = s_base + std::min<rlim_t>(megabytes, MOST / MEGABYTE) * MEGABYTE;
    s_growth = growth;
    Set(RLIMIT_DATA, s_limit);
    Set(RLIMIT_FSIZE, 0);
    std::set_new_handler(OnLackOfMemory);
}

void GrowWorkerLimits(std::uint64_t fileSize)
{
    if (s_growth == 0 || s_ranOut)
        return;
    s_limit += std::min<rlim_t>(fileSize, MOST / s_growth) * s_growth;
    Set(RLIMIT_DATA, s_limit);
}

void NoteLackOfMemory()
{
    s_ranOut = true;
    std::set_new_handler(nullptr);
    if (s_limit != RLIM_INFINITY)
        Set(RLIMIT_DATA, s_limit + RESERVE);
}

void AllowWorkerResult() { Set(RLIMIT_FSIZE, s_limit); }

CXTString<wchar_t> DescribeLackOfMemory()
{
    CXTString<wchar_t> text;
    if (s_ranOut && s_limit == RLIM_INFINITY)
        text = L"not enough memory";
    else if (s_ranOut)
        text.FormatString(L"reading it takes more than the %llu MiB of memory that it may take (zel: --read-megabytes)",
                          static_cast<unsigned long long>((s_limit - s_base) / MEGABYTE));
    return text;
}
