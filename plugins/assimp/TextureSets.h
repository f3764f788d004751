#pragma once

#include <algorithm>
#include <bitset>

#include <assimp/mesh.h>

/// Sets of texture coordinates, by their number.
using TextureSets = std::bitset<AI_MAX_NUMBER_OF_TEXTURECOORDS>;
constexpr unsigned int NO_TEXTURE_SET = AI_MAX_NUMBER_OF_TEXTURECOORDS;

inline TextureSets TextureSetsOf(const aiMesh& mesh)
{
    TextureSets sets;
    for (unsigned int set = 0; set < sets.size(); set++)
        sets[set] = mesh.HasTextureCoords(set);
    return sets;
}

/// The set to take for the one that a material names: that one, or else the last before it, or the first behind it. NO_TEXTURE_SET when there is
/// none at all.
inline unsigned int NearestSet(const TextureSets& sets, unsigned int wanted)
{
    wanted = std::min(wanted, NO_TEXTURE_SET - 1);
    for (unsigned int set = wanted + 1; set-- > 0;)
        if (sets[set])
            return set;
    unsigned int set = wanted;
    while (set < NO_TEXTURE_SET && !sets[set])
        set++;
    return set;
}
