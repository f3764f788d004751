#pragma once

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

/// Damage as files meet it: flipped bits, lost ends, counts blown up, parts of one file in another. The same seed gives the same damage.
class CMutator {
public:
    explicit CMutator(unsigned int seed) : m_random(seed) {}

    /// One to three mutations of `file`; `other` gives bytes for splices.
    std::string Mutate(std::string file, const std::string& other)
    {
        for (std::size_t left = 1 + Below(3); left > 0 && !file.empty(); left--)
            Damage(file, other);
        return file;
    }

private:
    std::size_t Below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(m_random); }

    void Damage(std::string& file, const std::string& other)
    {
        const std::size_t place = Below(file.size()), length = 1 + Below(std::min<std::size_t>(64, file.size() - place));
        switch (Below(8)) {
        case 0: file[place] = static_cast<char>(file[place] ^ 1 << Below(8)); break;
        case 1: file[place] = static_cast<char>(Below(256)); break;
        case 2: file.resize(place); break;
        case 3: file.erase(place, length); break;
        case 4: file.insert(place, std::string(file, Below(file.size()), length)); break;
        case 5: file.replace(place, length, other, Below(other.size()), length); break;
        case 6: SetNumber(file, place, INFLATED[Below(std::size(INFLATED))]); break;
        case 7: SetNumber(file, place, static_cast<unsigned int>(Below(40))); break;
        }
    }
    static void SetNumber(std::string& file, std::size_t place, unsigned int number)
    {
        std::memcpy(file.data() + place, &number, std::min(sizeof number, file.size() - place));
    }

    static constexpr unsigned int INFLATED[] = {0xFFFFFFFF, 0x80000000, 0x7FFFFFFF, 0x7FFFFFFE, 0x40000001, 0x10000000,
                                                0x01000000, 0x00100000, 0x00010000, 0x0000FFFF, 0x00001000, 0xFFFFFFFE};
    std::mt19937 m_random;
};
