#include "scene/NameNumbers.h"

#include <algorithm>
#include <limits>

/// Value of a text of decimal digits as the names have it: no leading zero, no sign.
static bool ParseNumber(const wchar_t* digits, int count, unsigned int& number)
{
    constexpr int MOST = std::numeric_limits<unsigned int>::digits10;
    if (count < 1 || count > MOST || (digits[0] == L'0' && count > 1))
        return false;
    number = 0;
    return std::all_of(digits, digits + count, [&](wchar_t digit) {
        number = number * 10 + static_cast<unsigned int>(digit - L'0');
        return digit >= L'0' && digit <= L'9';
    });
}

void CNameNumbers::SetFree(const CXTString<wchar_t>& name)
{
    for (auto& [base, numbers] : m_numbers) {
        unsigned int number;
        if (name.Str().starts_with(base.Str()) &&
            ParseNumber(name.c_str() + base.GetLength(), name.GetLength() - base.GetLength(), number) && number < numbers.next)
            numbers.freed.insert(number);
    }
}
