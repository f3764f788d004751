#include "ImageCache.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

TEST(ImageCache, LosesWhatWasNotUsedForLongest)
{
    const TempFolder folder;
    const auto add = [&](const std::string& name, int days) {
        const std::string file = folder.Write(name + "/image.png", std::string(100, 'x'));
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * days));
        return file;
    };
    const std::string digits(31, '0');
    add(digits + "1", 0);
    add(digits + "2", 3);
    const std::string old = add(digits + "3", 200);
    add(digits + "4", 4);
    add("no entry", 400);
    const auto has = [&](const char* last) { return std::filesystem::exists(folder.Name(digits + last)); };
    LimitImageCache(folder.Name());
    EXPECT_TRUE(has("1") && has("2") && !has("3") && has("4"));
    LimitImageCache(folder.Name(), {.bytes = 250});
    EXPECT_TRUE(has("1") && has("2") && !has("4"));
    LimitImageCache(folder.Name(), {.bytes = 0});
    EXPECT_TRUE(has("1") && !has("2"));    // of today
    EXPECT_TRUE(std::filesystem::exists(folder.Name("no entry")));

    MarkImageUsed(add(digits + "3", 200));
    LimitImageCache(folder.Name());
    EXPECT_TRUE(has("3"));
}
