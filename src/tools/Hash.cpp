#include "tools/Hash.h"

#include <bit>

namespace {

constexpr unsigned char SMALL_PRIMES[] = {2,  3,  5,  7,  11, 13, 17, 19, 23, 29,  31,  37,  41,  43,  47,  53,
                                          59, 61, 67, 71, 73, 79, 83, 89, 97, 101, 103, 107, 109, 113, 127, 131};
constexpr unsigned int LARGEST_PRIME = 4294967291u;    // of 32 bits

std::uint32_t PowerMod(std::uint32_t base, std::uint32_t exponent, std::uint32_t modulus)
{
    std::uint64_t result = 1;
    for (std::uint64_t power = base; exponent; exponent >>= 1) {
        if (exponent & 1)
            result = result * power % modulus;
        power = power * power % modulus;
    }
    return static_cast<std::uint32_t>(result);
}

// One round of the strong pseudoprime test, n - 1 = odd << shift.
bool PassesRound(std::uint32_t n, std::uint32_t base, std::uint32_t odd, unsigned int shift)
{
    std::uint64_t power = PowerMod(base, odd, n);
    if (power == 1 || power == n - 1)
        return true;
    while (--shift) {
        power = power * power % n;
        if (power == n - 1)
            return true;
    }
    return false;
}

bool IsPrime(std::uint32_t n)
{
    for (const unsigned char prime : SMALL_PRIMES)
        if (n % prime == 0)
            return n == prime;
    if (n < 137u * 137u)
        return n > 1;
    const unsigned int shift = static_cast<unsigned int>(std::countr_zero(n - 1));
    const std::uint32_t odd = (n - 1) >> shift;
    return PassesRound(n, 2, odd, shift) && PassesRound(n, 7, odd, shift) && PassesRound(n, 61, odd, shift);    // exact below 2^32
}

}

unsigned int NextPrime(unsigned int n)
{
    if (n <= 2)
        return 2;
    if (n > LARGEST_PRIME)
        return LARGEST_PRIME;
    n |= 1;
    while (!IsPrime(n))
        n += 2;
    return n;
}
