#include <gtest/gtest.h>

#include "geometry/FaceTagger.h"
#include "support/Checksum.h"
#include "support/RandomMesh.h"

namespace {

// What a tagger is told, in order, as text; and what it answers. An answer depends on its arguments alone.
class Recorder : public CFaceTagger {
public:
    explicit Recorder(int mode) : m_mode(mode) {}

    bool InitProcess(CGeomInfo* info) override
    {
        EXPECT_EQ(info, m_info);
        EXPECT_EQ(m_faces, info->GetSrcFaceList());
        EXPECT_EQ(m_points, info->GetSrcPointList());
        return m_mode != REFUSE_START;
    }
    void EndProcess(unsigned int groups) override { log += "end " + std::to_string(groups) + '\n'; }
    void BeginNewGroup(unsigned int group, unsigned int face) override
    {
        log += "group " + std::to_string(group) + " from " + std::to_string(face) + '\n';
    }
    bool BelongToGroup(unsigned int face, unsigned int point, int* faces, unsigned int count) override
    {
        return Answer("point " + std::to_string(static_cast<int>(point)), face, faces, count);
    }
    bool BelongToGroup(unsigned int face, C3DEdge& edge, int* faces, unsigned int count) override
    {
        return Answer("edge " + std::to_string(edge.GetFirst()) + '-' + std::to_string(edge.GetSecond()), face, faces, count);
    }
    void ProcessGroup(unsigned int* faces, unsigned int count) override
    {
        log += "is";
        for (unsigned int i = 0; i < count; i++)
            log += ' ' + std::to_string(faces[i]);
        log += '\n';
    }

    enum Mode { TAKE_ALL, REFUSE_ALL, REFUSE_SOME, DROP_SOME, STRAY, MODES, REFUSE_START };
    std::string log;

private:
    bool Answer(const std::string& where, unsigned int face, int* faces, unsigned int count)
    {
        log += std::to_string(face) + " at " + where + ':';
        unsigned int sum = face;
        for (unsigned int i = 0; i < count; i++) {
            log += ' ' + std::to_string(faces[i]);
            sum = sum * 31 + static_cast<unsigned int>(faces[i]);
            if (m_mode == DROP_SOME && (sum & 3) == 0)
                faces[i] = -1;
            if (m_mode == STRAY && (sum & 3) == 0)
                faces[i] = sum & 4 ? 1 << 30 : -5;    // no faces of the list
        }
        log += '\n';
        return m_mode != REFUSE_ALL && (m_mode != REFUSE_SOME || sum % 3);
    }

    const int m_mode;
};

}

// The sum is that of the plain flood: a queue in which a face may stand many times, and a table of visited faces.
TEST(TagFaces, TellsTheTaggerWhatThePlainFloodTellsIt)
{
    Checksum sum;
    for (unsigned int seed = 0; seed < 200; seed++)
        for (int mode = 0; mode < Recorder::MODES; mode++)
            for (const bool byEdge : {false, true}) {
                SCOPED_TRACE(testing::Message() << "mesh " << seed << " tagger " << mode << (byEdge ? " by edge" : " by point"));
                const RandomMesh m(seed, seed % 4 ? RandomMesh::MIXED : RandomMesh::BROKEN);
                CGeomInfo info = m.mesh.Info();
                Recorder tagger(mode);
                m.mesh.faces->TagFaces(&info, tagger, byEdge);
                sum.Add(tagger.log);
                ASSERT_TRUE(byEdge ? m.mesh.faces->HasEdgeToFaceGraph() : m.mesh.faces->HasPointToFaceGraph());
            }
    EXPECT_EQ(sum.Get(), 0x840E8A4BA4EB3034u);
}

TEST(TagFaces, CountsGroups)
{
    const Mesh tie = BowTie(), none = MakeMesh({}, {}), cube = Cube();
    cube.faces->SetFaceFlag(1, FACE_EMPTY, true);
    struct {
        const char* name;
        const Mesh& mesh;
        int mode;
        bool byEdge;
        unsigned int groups;
    } const rows[] = {
        {"a bow tie hangs together at a point", tie, Recorder::TAKE_ALL, false, 1},
        {"but not along an edge", tie, Recorder::TAKE_ALL, true, 2},
        {"each live face alone", cube, Recorder::REFUSE_ALL, true, 5},
        {"refused at once", cube, Recorder::REFUSE_START, true, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CGeomInfo info = row.mesh.Info();
        Recorder tagger(row.mode);
        EXPECT_EQ(row.mesh.faces->TagFaces(&info, tagger, row.byEdge), row.groups);
        EXPECT_EQ(tagger.log.find("group") == std::string::npos, row.groups == 0);
    }
    Recorder tagger(Recorder::TAKE_ALL);
    EXPECT_EQ(cube.faces->TagFaces(nullptr, tagger, true), 0u);
}

TEST(TagFaces, ATaggerThatTakesAllGetsTheSameGroupsUnasked)
{
    // Fault in mind: the walk round each point once meets the faces in another order.
    struct Groups : Recorder {
        explicit Groups(bool unasked) : Recorder(TAKE_ALL) { m_takesAll = unasked; }
        void ProcessGroup(unsigned int* faces, unsigned int count) override { found.emplace_back(faces, faces + count); }
        std::vector<std::vector<unsigned int>> found;
    };
    for (unsigned int seed = 0; seed < 100; seed++) {
        const RandomMesh m(seed, seed % 4 ? RandomMesh::MIXED : RandomMesh::BROKEN);
        CGeomInfo info = m.mesh.Info();
        Groups asked(false), unasked(true);
        m.mesh.faces->TagFaces(&info, asked, false);
        m.mesh.faces->TagFaces(&info, unasked, false);
        EXPECT_EQ(unasked.found, asked.found) << seed;
    }
}
