#include <gtest/gtest.h>

#include <vector>

#include "support/Streams.h"
#include "tools/OffsetArray.h"

namespace {

std::vector<std::uint64_t> Values(const COffsetArray& offsets)
{
    std::vector<std::uint64_t> values;
    for (unsigned int i = 0; i < offsets.GetSize(); i++)
        values.push_back(offsets.GetAt(i));
    return values;
}

constexpr std::uint64_t GIB4 = std::uint64_t{1} << 32;

}

TEST(OffsetArray, TakesTheMemoryThatItsValuesNeed)
{
    // Faults in mind: a form that is left too late and cuts an offset short, or too early and costs memory for nothing.
    struct {
        const char* name;
        std::vector<std::uint64_t> values;
        std::uint64_t bytes;
    } const rows[] = {
        {"none", {}, 0},
        {"one", {GIB4 + 7}, 0},
        {"progression", {4, 20, 36, 52, 68}, 0},
        {"falling progression", {64, 48, 32, 16, 0}, 0},
        {"progression past 4 GiB", {GIB4 - 32, GIB4 - 16, GIB4, GIB4 + 16}, 0},
        {"broken", {0, 16, 36}, 12},
        {"at 4 GiB", {0, 16, GIB4}, 24},
        {"wide first, narrow break", {GIB4, GIB4 + 16, 8}, 24},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        COffsetArray offsets;
        for (const std::uint64_t value : row.values)
            offsets.Append(value);
        EXPECT_EQ(Values(offsets), row.values);
        offsets.FreeExtra();
        EXPECT_EQ(offsets.GetMemory(), row.bytes);

        COffsetArray loaded, copied(offsets);
        ASSERT_TRUE(Load(loaded, Stored(offsets)));
        EXPECT_EQ(Values(loaded), row.values);
        EXPECT_EQ(Values(copied), row.values);
    }
}

TEST(OffsetArray, RefusesDamagedStreams)
{
    COffsetArray narrow, progression;
    for (const std::uint64_t value : {0, 16, 36, 40})
        narrow.Append(value);
    progression.AppendProgression(1000, 8, 16);
    for (COffsetArray* source : {&narrow, &progression}) {
        const std::vector<unsigned char> bytes = Stored(*source);
        for (std::size_t length = 0; length < bytes.size(); length++) {
            COffsetArray loaded;
            EXPECT_FALSE(Load(loaded, {bytes.begin(), bytes.begin() + length})) << length;
            EXPECT_EQ(loaded.GetSize(), 0u);
        }
    }
    // A stride that leads past the range, below 0 or above.
    for (const std::uint64_t stride : {std::uint64_t{1} << 60, std::uint64_t(-16)}) {
        COffsetArray wrapping, loaded;
        wrapping.AppendProgression(100, 8, stride);
        EXPECT_FALSE(Load(loaded, Stored(wrapping)));
    }
}
