#pragma once

#include <map>
#include <set>
#include <string>

#include "tools/String.h"

/// Finds the lowest number that makes a name free, base0, base1, base2..., without trying again those that were found taken.
class CNameNumbers {
public:
    /// The first of base0, base1... that is not `taken`. It is expected to be taken, or not, by the time of the next call.
    template <class TAKEN> CXTString<wchar_t> GetFreeName(const CXTString<wchar_t>& base, TAKEN taken)
    {
        Numbers& numbers = m_numbers[base];
        const auto nameOf = [&](unsigned int number) { return base + std::to_wstring(number); };
        while (!numbers.freed.empty()) {
            const CXTString<wchar_t> name = nameOf(*numbers.freed.begin());
            if (!taken(name))
                return name;
            numbers.freed.erase(numbers.freed.begin());
        }
        while (taken(nameOf(numbers.next)))
            numbers.next++;
        return nameOf(numbers.next);
    }
    /// A name is free again.
    void SetFree(const CXTString<wchar_t>& name);
    void RemoveAll() { m_numbers.clear(); }

private:
    struct Numbers {
        unsigned int next = 0;    ///< every number below is taken, or in `freed`
        std::set<unsigned int> freed;
    };

    std::map<CXTString<wchar_t>, Numbers> m_numbers;    ///< by base; there are few
};
