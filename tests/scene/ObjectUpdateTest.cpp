#include <gtest/gtest.h>

#include "channels/DependentChannels.h"
#include "channels/FaceNormalChannel.h"
#include "channels/PointNormalChannel.h"
#include "geometry/3DVectorList.h"
#include "scene/Curve.h"
#include "scene/Patch.h"
#include "scene/SceneBuilders.h"

namespace {

/// Lets a test start from any update word.
class CProbe : public C3DObject {
public:
    using C3DBaseObject::SetUpdateFlags;
    using C3DBaseObject::SetUpdateWord;
};

}

TEST(ObjectUpdate, ReportsExpand)
{
    struct {
        const char* name;
        unsigned int report, base, geometric;
    } const rows[] = {
        {"other", 0x1, 0x10020000, 0x10020000},          {"points", 0x2, 0x100B0000, 0x100B0000},
        {"faces", 0x4, 0x10080000, 0x10080000},          {"texture coordinates", 0x8, 0x10020000, 0x10020000},
        {"normals", 0x10, 0x10080000, 0x10080000},       {"points and faces", 0x6, 0x100B0000, 0x100B0000},
        {"display", 0x10000000, 0x10000000, 0x10000000}, {"high bits do not pass", 0xEFFF0020, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const CRef<CProbe> object(new CProbe);
        object->SetUpdateWord(0);
        object->Invalidate(row.report, true);
        EXPECT_EQ(object->GetUpdateFlags(), row.base);
        object->SetUpdateWord(0xFFFFFFFF);
        object->Invalidate(row.report, false);
        EXPECT_EQ(object->GetUpdateFlags(), ~row.base);
    }
}

TEST(ObjectUpdate, ClearingStampsWhatWasGivenItself)
{
    const CRef<CProbe> object(new CProbe);
    EXPECT_EQ(object->GetUpdateFlags(), 0x30000u);
    EXPECT_FALSE(object->NeedUpdate());
    const auto stamped = [&] {
        unsigned int bits = 0;
        for (unsigned int bit = 1; bit; bit <<= 1)
            bits |= object->GetUpdateStamp(static_cast<_OBJECT_UPDATE_PROPERTIES>(bit)) != 0 ? bit : 0;
        return bits;
    };
    EXPECT_EQ(stamped(), 0u);
    object->SetUpdateFlags(CHANGE_POINTS, false);    // through the expansion alone
    EXPECT_EQ(stamped(), 0u);
    object->SetUpdateFlags(0x30000, true);
    EXPECT_EQ(stamped(), 0u);
    object->SetUpdateFlags(0x90000, false);
    EXPECT_EQ(stamped(), 0x90000u);
    object->SetUpdateFlags(0xFFFF0000, false);
    EXPECT_EQ(stamped(), 0xF0000u);
}

TEST(ObjectUpdate, UpdateLeavesTheBoxesAlone)
{
    const CRef<CProbe> object(new CProbe);
    object->Invalidate(CHANGE_POINTS, true);
    EXPECT_TRUE(object->NeedUpdate());
    EXPECT_FALSE(object->Update(nullptr, OBJECT_UPDATE_ALL));
    EXPECT_FALSE(object->NeedUpdate());
    EXPECT_EQ(object->GetUpdateFlags(), 0x10030000u);    // display is the view's business
    EXPECT_EQ(object->GetUpdateStamp(OBJECT_UPDATE_POINT_BOX), 0);
    EXPECT_NE(object->GetUpdateStamp(OBJECT_UPDATE_UVW), 0);
}

TEST(ObjectUpdate, GeometryReportsReachTheListsAndTheNormals)
{
    struct {
        unsigned int report;
        bool points, faces, normalsGo;
    } const rows[] = {
        {CHANGE_OTHER, false, false, false}, {CHANGE_POINTS, true, false, true},   {CHANGE_FACES, false, true, true},
        {CHANGE_UVW, false, false, false},   {CHANGE_NORMALS, false, false, true},
    };
    for (const auto& row : rows) {
        for (const bool set : {true, false}) {
            SCOPED_TRACE(testing::Message() << row.report << set);
            const CRef<C3DObject> object(CreateSquare());
            object->GetPointList()->SetFlag(POINTLIST_CHANGED, false);
            object->GetFaceList()->SetFlag(FACELIST_CHANGED, false);
            object->AddChannel(CChannel::Create(CHANNEL_POINT_NORMAL, NO_CHANNEL_ID));
            object->AddChannel(CChannel::Create(CHANNEL_UVW, NO_CHANNEL_ID));
            object->AddChannel(CChannel::Create(CHANNEL_FACE_NORMAL, NO_CHANNEL_ID));
            object->Invalidate(row.report, set);
            EXPECT_EQ(object->GetPointList()->IsFlagSet(POINTLIST_CHANGED), row.points);
            EXPECT_EQ(object->GetFaceList()->IsFlagSet(FACELIST_CHANGED), row.faces);
            EXPECT_EQ(object->GetChannels()->GetSize(), row.normalsGo ? 1 : 3);
            EXPECT_NE(object->GetChannelByIndex(0, CHANNEL_UVW, true), nullptr);
        }
    }
}

TEST(ObjectUpdate, NormalsAreMadeOnDemandAndFollowAChange)
{
    const CRef<C3DObject> object(CreateSquare());
    CFaceNormalChannel* faces = object->GetFaceNormalChannel();
    CPointNormalChannel* corners = object->GetPointNormalChannel();
    ASSERT_TRUE(faces && corners);
    EXPECT_EQ(object->GetFaceNormalChannel(), faces);
    EXPECT_EQ(Values(*faces->GetNormalVectorList()->ElementAt(1)), (std::vector<float>{0, 0, 1}));
    EXPECT_FALSE(corners->IsFlagSet(CHANNEL_STALE));
    EXPECT_TRUE(object->FlipNormals());    // drops both
    EXPECT_EQ(object->GetChannels()->GetSize(), 0);
    EXPECT_EQ(Values(*object->GetFaceNormalChannel()->GetNormalVectorList()->ElementAt(1)), (std::vector<float>{0, 0, -1}));
    const CRef<C3DCurve> curve(new C3DCurve);
    EXPECT_EQ(curve->GetFaceNormalChannel(), nullptr);
    EXPECT_EQ(curve->GetPointNormalChannel(), nullptr);
}

TEST(ObjectUpdate, NewListsAreReportedAndTheOldOnesReleased)
{
    const CRef<C3DObject> object(CreateSquare());
    object->Invalidate(OBJECT_UPDATE_DISPLAY, false);
    C3DPointList* const points = object->GetPointList();
    object->SetPointList(points, true);    // its own list: nothing happens
    EXPECT_EQ(object->GetPointNbr(), 5);
    EXPECT_FALSE(object->IsInvalidate(OBJECT_UPDATE_DISPLAY));
    points->AddRef();
    object->SetPointList(nullptr, true);
    EXPECT_EQ(points->GetRefCount(), 1);
    EXPECT_TRUE(object->IsInvalidate(OBJECT_UPDATE_DISPLAY));
    EXPECT_TRUE(object->IsInvalidate(OBJECT_UPDATE_BOXES));
    EXPECT_EQ(object->GetPointNbr(), 0);
    object->SetPointList(points, true);
    object->SetChannels(nullptr, true);
    EXPECT_NE(object->GetChannels(), nullptr);
    EXPECT_EQ(object->AddChannel(nullptr), 0xFFFFFFFFu);
}
