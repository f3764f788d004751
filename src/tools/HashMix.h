#pragma once

#include <cstdint>

/// Thomas Wang's 64-bit integer hash: a bijection in which each bit of the key reaches all bits of the result.
constexpr std::uint64_t HashMix64(std::uint64_t key)
{
    key = ~key + (key << 21);
    key ^= key >> 24;
    key *= 265;
    key ^= key >> 14;
    key *= 21;
    key ^= key >> 28;
    key *= 0x80000001;
    return key;
}
