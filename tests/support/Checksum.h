#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <ranges>

/// Sum over what many random cases give. Tests hold it against a number that was written down while a slow, independent way gave the same
/// results, case by case; whoever changes results on purpose writes a new number down.
class Checksum {
public:
    template <class... VALUES> void Add(const VALUES&... values) { (AddOne(values), ...); }
    std::uint64_t Get() const { return m_sum; }

private:
    template <class VALUE> void AddOne(const VALUE& value)
    {
        if constexpr (std::ranges::range<VALUE>) {
            AddWord(static_cast<std::uint64_t>(std::ranges::size(value)));
            for (const auto& part : value)
                AddOne(part);
        } else if constexpr (std::same_as<VALUE, float>)
            AddWord(value == value ? std::bit_cast<std::uint32_t>(value) : 0x7FC00000u);    // one number for what is none
        else if constexpr (requires { value.x, value.y, value.z; })
            Add(value.x, value.y, value.z);
        else
            AddWord(static_cast<std::uint64_t>(value));
    }
    void AddWord(std::uint64_t word)
    {
        m_sum = (m_sum ^ word) * 0x100000001B3u;
        m_sum ^= m_sum >> 29;
    }

    std::uint64_t m_sum = 0xCBF29CE484222325u;
};
