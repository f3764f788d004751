#pragma once

#include "channels/Cosine.h"
#include "tools/BlockVector.h"

/// Sums of what the faces around one point contribute, for a point that many faces have: for each face its own part, then those of the
/// others within the angle of it, in their order. The sums are those of one walk for each face, to the bit; here one walk serves a block.
class CHubSums {
public:
    explicit CHubSums(const CAngleTest& angle) : m_angle(angle) {}

    /// The faces come in ascending order, all before the first Get. The unit normal is referred to.
    void Add(int face, const C3DTVector<float>& unitNormal, const C3DTVector<float>& part);
    bool Has(int face) const;
    /// For a face that was added. False when some face lies outside the angle of it.
    ///
    /// Cost: a walk over all faces at the first face of a block.
    bool Get(int face, C3DTVector<float>& sum);

private:
    using Lanes [[gnu::vector_size(16)]] = float;
    using Mask [[gnu::vector_size(16)]] = int;
    static constexpr int LANES = 4, GROUPS = 2, BLOCK = LANES * GROUPS;

    struct Group {
        Lanes normal[3], sum[3];
        Mask outside;
    };
    struct Sum {
        C3DTVector<float> vector;
        bool allAgree;
    };

    int Find(int face) const;
    void WorkOut(int block);
    void AddOthers(Group (&groups)[GROUPS], int begin, int first, int last) const;

    CAngleTest m_angle;
    CBlockVector<int> m_faces;
    CBlockVector<const C3DTVector<float>*> m_normals;
    CBlockVector<float> m_normalAxes[3];    // not a number where the length is not 1: nothing is decided by them then
    CBlockVector<float> m_partAxes[3];
    CBlockVector<char> m_known;    // by block
    CBlockVector<Sum> m_sums;
};
