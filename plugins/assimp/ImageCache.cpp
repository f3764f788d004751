#include "ImageCache.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Time = fs::file_time_type;

struct Entry {
    fs::path folder;
    std::uint64_t bytes = 0;
    Time used = Time::min();
};

bool IsEntry(const fs::directory_entry& entry)
{
    std::error_code error;
    const std::string name = entry.path().filename().string();
    return name.size() == 32 && name.find_first_not_of("0123456789abcdef") == name.npos && entry.is_directory(error) &&
           !entry.is_symlink(error);
}

Entry Measure(const fs::path& folder)
{
    Entry entry{folder};
    std::error_code error;
    for (fs::directory_iterator file(folder, error); !error && file != fs::directory_iterator(); file.increment(error)) {
        std::error_code gone;    // by another process
        const std::uint64_t bytes = file->file_size(gone);
        const Time used = file->last_write_time(gone);
        if (gone)
            continue;
        entry.bytes += bytes;
        entry.used = std::max(entry.used, used);
    }
    if (entry.used == Time::min())    // just being filled, or left empty
        entry.used = fs::last_write_time(folder, error);
    return entry;
}

}

void MarkImageUsed(const fs::path& file)
{
    std::error_code error;
    fs::last_write_time(file, Time::clock::now(), error);
}

void LimitImageCache(const fs::path& cache, const ImageCacheLimits& limits)
{
    std::error_code error;
    std::vector<Entry> entries;
    for (fs::directory_iterator entry(cache, error); !error && entry != fs::directory_iterator(); entry.increment(error))
        if (IsEntry(*entry))
            entries.push_back(Measure(entry->path()));
    std::ranges::sort(entries, std::ranges::greater(), &Entry::used);
    const Time now = Time::clock::now();
    std::uint64_t kept = 0;
    for (const Entry& entry : entries) {    // the newest first
        kept += entry.bytes;
        const auto age = now - entry.used;
        if (age > limits.safe && (age > limits.age || kept > limits.bytes))
            fs::remove_all(entry.folder, error);
    }
}
