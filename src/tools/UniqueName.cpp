#include "tools/UniqueName.h"

#include <cstdint>
#include <string>

namespace {

using Text = CXTString<wchar_t>;

/// Names made of one base: number 0 is the base itself.
class CNumberedName {
public:
    CNumberedName(const CHashTable<Text>& pool, const Text& base, int limit) : m_pool(pool), m_base(base), m_limit(limit) {}

    /// Empty when the number has more digits than a name may have characters.
    Text Get(std::uint64_t number) const
    {
        const Text digits = number ? Text(std::to_wstring(number)) : Text();
        if (m_limit <= 0)
            return m_base + digits;
        return digits.GetLength() > m_limit ? Text() : m_base.Left(m_limit - digits.GetLength()) + digits;
    }
    bool IsTaken(std::uint64_t number) const { return m_pool.Find(Get(number)); }
    bool Exists(std::uint64_t number) const { return number == 0 || !Get(number).IsEmpty(); }

private:
    const CHashTable<Text>& m_pool;
    const Text& m_base;
    const int m_limit;
};

// Numbers are taken one after the other, so that a free one behind a taken one is the lowest, or nearly so.
std::uint64_t FindFreeNumber(const CNumberedName& names)
{
    std::uint64_t taken = 0, free = 1;
    while (names.Exists(free) && names.IsTaken(free)) {
        taken = free;
        free *= 2;
    }
    while (free - taken > 1) {
        const std::uint64_t middle = taken + (free - taken) / 2;
        (names.Exists(middle) && names.IsTaken(middle) ? taken : free) = middle;
    }
    return free;
}

}

CXTString<wchar_t> GetUniqueName(CHashTable<CXTString<wchar_t>>& pool, const CXTString<wchar_t>& name, int limit, bool add)
{
    const CNumberedName names(pool, name, limit);
    Text unique = names.Get(0);
    if (names.IsTaken(0))
        if (const std::uint64_t number = FindFreeNumber(names); names.Exists(number))
            unique = names.Get(number);
    if (add)
        pool.Insert(unique);
    return unique;
}
