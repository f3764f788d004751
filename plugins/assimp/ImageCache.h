#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>

/// What a cache of images may keep.
struct ImageCacheLimits {
    std::uint64_t bytes = std::uint64_t{2} << 30;
    std::chrono::hours age = std::chrono::hours(24 * 180);    ///< since an entry was used last
    std::chrono::hours safe = std::chrono::hours(24);         ///< entries used since then stay in any case: somebody may work with them
};

/// Says that a file of the cache is used, so that it stays longer.
void MarkImageUsed(const std::filesystem::path& file);
/// Removes entries that are too old, then the oldest until the others keep to the size. An entry is a folder named by 32 hexadecimal digits;
/// nothing else in `cache` is touched. What cannot be removed stays.
void LimitImageCache(const std::filesystem::path& cache, const ImageCacheLimits& limits = {});
