// The sheets about nodes and materials.

#include "channels/NormalFaceList.h"
#include "channels/VCPointList.h"
#include "images/2DIo.h"
#include "scene/GeomObject.h"
#include "viewer/CommandCase.h"
#include "viewer/InfoPages.h"
#include "windows/Keys.h"

namespace {

using Pages = std::vector<CDialogTable*>;

CControl& Control(const Pages& pages, unsigned int id)
{
    for (CDialogTable* const page : pages)
        if (CControl* const control = page->Find(id))
            return *control;
    throw std::runtime_error("no such control");
}

CCustomList& Table(const Pages& pages, unsigned int id) { return *Control(pages, id).table; }

/// Cells of a row, with '|' between.
Text Row(const CCustomList& list, int row)
{
    Text text;
    for (int column = 0; column < static_cast<int>(list.GetColumns().size()); column++)
        text += (column ? Text(L"|") : Text()) + list.GetCellText(row, column);
    return text;
}

void Move(C3DSceneNode& node, const C3DTVector<float>& by)
{
    C3DTranslateKey key;
    key.SetVector(by);
    node.AddKey(0, key);
}

/// A frame that shows a box with a material: the paint of 0.333 diffuse and 30 degrees.
class InfoSheets : public CommandCase {
protected:
    void SetUp() override
    {
        CommandCase::SetUp();
        material = scene->CreateNewMaterial(0xFFFFFFFF);
        material->SetName(L"paint");
        material->SetDiffuseColor(0, {10, 20, 30, 40});
        material->SetDiffuseFactor(0, 0.333f);
        material->SetSmoothAngle(0, 0.5235988f);
        node = scene->GetChildNode(nullptr);
        node->GetGeomObject()->ReplaceMaterial(0, material->GetMaterialID());
        frame->AddCallbackWnd(&news, true);
    }
    void TearDown() override { frame->AddCallbackWnd(&news, false); }

    C3DGeomObject& Box() { return *node->GetGeomObject(); }
    void ShowNode(C3DSceneNode* shown, CScriptWindowSystem::DialogUser user)
    {
        system.dialogUsers.push_back(std::move(user));
        frame->ShowProperties(shown);
        EXPECT_TRUE(system.dialogUsers.empty());
    }
    void ShowMaterial(CScriptWindowSystem::DialogUser user)
    {
        news.materials.clear();
        system.dialogUsers.push_back(std::move(user));
        frame->ShowProperties(material->GetMaterialID());
        EXPECT_TRUE(system.dialogUsers.empty());
    }
    Text WriteImage(const std::string& name, int width, int height)
    {
        const std::unique_ptr<Bitmap> image(rgbBitmap::Create(width, height));
        EXPECT_EQ(C2DIo(folder.Wide(name), 0, nullptr).Save(image.get()), IORESULT_OK);
        return folder.Wide(name);
    }

    struct News : C3DCallbackWnd {
        News() : C3DCallbackWnd(0) {}
        void SceneChanged(C3DScene*, unsigned int what, const CSceneChangeData& data) override
        {
            if (what == CHANGED_MATERIAL)
                materials.push_back(data.material);
        }
        std::vector<unsigned int> materials;
    } news;
    C3DMaterial* material = nullptr;
    C3DSceneNode* node = nullptr;
};

}

TEST_F(InfoSheets, NodesTellTheirPlace)
{
    // Faults in mind: the matrix of the parent and that of the scene change places; a box in scene lengths; the root is no node.
    C3DSceneNode* const group = C3DSceneNode::Create();
    group->SetObject(C3DBaseObject::Create(OBJECT_GROUP), true);
    Move(*group, {100, 0, 0});
    scene->AddNode(nullptr, group);
    C3DSceneNode* const inner = CreateCube({0, 0, 0}, 2, 2, 2, false, 0, 0);
    inner->SetName(L"inner");
    Move(*inner, {5, 6, 7});
    scene->AddNode(group, inner);
    scene->SetScaleFactor(10);

    ShowNode(inner, [](const Pages& pages) {
        EXPECT_EQ(Control(pages, INFO_NODE_NAME).value, L"inner");
        EXPECT_EQ(Control(pages, INFO_OBJECT_TYPE).value, L"Polygonal object");
        EXPECT_EQ(Control(pages, INFO_COUNTS).text, L"8 points / 6 faces");
        EXPECT_EQ(Row(Table(pages, INFO_MATRIX), 0), L"0|1.00000|0.00000|0.00000|105.00000");
        EXPECT_TRUE(CScriptWindowSystem::Check(pages, INFO_RELATIVE_MATRIX));
        EXPECT_EQ(Row(Table(pages, INFO_MATRIX), 0), L"0|1.00000|0.00000|0.00000|5.00000");
        EXPECT_EQ(Row(Table(pages, INFO_BOX), 1), L"Y|50.00000 cm|70.00000 cm|20.00000 cm|60.00000 cm");
        return true;
    });
    ShowNode(node, [](const Pages& pages) { return !Control(pages, INFO_RELATIVE_MATRIX).enabled; });
    ShowNode(nullptr, [](const Pages& pages) {
        EXPECT_EQ(Control(pages, INFO_OBJECT_TYPE).value, L"Whole scene");
        EXPECT_EQ(Control(pages, INFO_COUNTS).text, L"0 points / 0 faces");
        EXPECT_EQ(Control(pages, INFO_MATERIAL_COUNT).text, L"0 materials used by this object");
        EXPECT_EQ(Table(pages, INFO_ELEMENTS).GetRowCount(), 0);
        return true;
    });
    EXPECT_FALSE(frame->IsDocumentModified());
}

TEST_F(InfoSheets, ArraysOfGeometryAndChannels)
{
    // Faults in mind: an entry shows another's list; rows of the former list under the columns of the new one.
    C3DFaceList& faces = *Box().GetFaceList();
    CChannel* const colors = CChannel::Create(CHANNEL_VC, 500);
    colors->GetPointList()->SetSize(1);
    static_cast<CVCPointList*>(colors->GetPointList())->ElementAt(0)->SetColor({1, 2, 3, 4});
    Box().AddChannel(colors);
    CChannel* const normals = CChannel::Create(CHANNEL_SPEC_NORMAL, 501);
    normals->GetPointList()->SetSize(2);
    normals->GetPointList()->ElementAt(1)->SetFlag(POINT_UNSET, true);
    normals->GetFaceList()->SetSize(1);
    CNormalFace face;
    normals->GetFaceList()->GetFace(0, face);
    face.SetTriangle(0, 1, 0);
    Box().AddChannel(normals);
    faces.SetBackFaceMaterial(0, material->GetMaterialID());

    ShowNode(node, [&](const Pages& pages) {
        const CCustomList& list = Table(pages, INFO_ELEMENTS);
        const struct {
            const wchar_t *entry, *last;
        } arrays[] = {
            {L"Array of 6 faces", nullptr},
            {L"Array of 8 points", nullptr},
            {L"Array of 0 faces [vertex colors, Channel 0 - id 500]", nullptr},
            {L"Array of 1 points [vertex colors, Channel 0 - id 500]", L"0|1|2|3|4"},
            {L"Array of 1 faces [specified normals, Channel 0 - id 501]", L"0|3|0, unused, 0, "},
            {L"Array of 2 points [specified normals, Channel 0 - id 501]", L"1|unused|unused|unused"},
        };
        const CControl& combo = Control(pages, INFO_ARRAYS);
        EXPECT_EQ(combo.items.size(), std::size(arrays));
        for (std::size_t i = 0; i < std::min(combo.items.size(), std::size(arrays)); i++) {
            EXPECT_EQ(combo.items[i], arrays[i].entry);
            EXPECT_TRUE(CScriptWindowSystem::Choose(pages, INFO_ARRAYS, static_cast<int>(i)));
            EXPECT_TRUE(!arrays[i].last || Row(list, list.GetRowCount() - 1) == arrays[i].last);
        }
        CScriptWindowSystem::Choose(pages, INFO_ARRAYS, 0);
        int count = 0;
        const int* const corners = faces.GetIndexes(0, count);
        Text expected;
        expected.FormatString(L"0|4|%d, %d, %d, %d, |paint - paint", corners[0], corners[1], corners[2], corners[3]);
        EXPECT_EQ(Row(list, 0), expected);

        // The keys of the list; without a selected row the clipboard keeps what it has.
        CCustomList& keyed = Table(pages, INFO_ELEMENTS);
        system.clipboard = L"before";
        keyed.OnKey('C', INPUT_CTRL);
        EXPECT_EQ(system.clipboard, L"before");
        CScriptWindowSystem::Choose(pages, INFO_ARRAYS, 3);
        keyed.OnKey('A', INPUT_CTRL);
        keyed.OnKey(VK_INSERT, INPUT_CTRL);
        EXPECT_EQ(system.clipboard, L"0\t1\t2\t3\t4\t\r\n");
        return true;
    });
}

TEST_F(InfoSheets, FacesAreCountedByMaterial)
{
    // Faults in mind: dead faces count; a face with one material on both sides counts twice.
    C3DFaceList& faces = *Box().GetFaceList();
    const unsigned int paint = material->GetMaterialID(), other = scene->CreateNewMaterial(0xFFFFFFFF)->GetMaterialID();
    scene->GetMaterialByID(other)->SetName(L"other");
    scene->GetMaterialByID(other)->AddMaterialMap(L"folder/wood.png", 0, MAP_DIFFUSE, PROJECTION_UVW);
    faces.SetBackFaceMaterial(0, paint);
    faces.SetBackFaceMaterial(1, other);
    C3DFace dead;
    faces.GetFace(5, dead);
    dead.SetInvalidFlag(true);
    ShowNode(node, [](const Pages& pages) {
        EXPECT_EQ(Control(pages, INFO_MATERIAL_COUNT).text, L"2 materials used by this object");
        EXPECT_EQ(Row(Table(pages, INFO_MATERIALS), 0), L"paint||5");
        EXPECT_EQ(Row(Table(pages, INFO_MATERIALS), 1), L"other|wood.png|1");
        return true;
    });
}

TEST_F(InfoSheets, TypedValuesOfAMaterial)
{
    const struct {
        const char* name;
        InfoControl field;
        const wchar_t* typed;
        float (C3DMaterial::*get)(unsigned int) const;
        float expected;
        bool changes;
    } rows[] = {
        {"untouched", INFO_DIFFUSE_FACTOR, L"0.33", &C3DMaterial::GetDiffuseFactor, 0.333f, false},
        {"no number", INFO_DIFFUSE_FACTOR, L"much", &C3DMaterial::GetDiffuseFactor, 0.333f, false},
        {"not finite", INFO_DIFFUSE_FACTOR, L"nan", &C3DMaterial::GetDiffuseFactor, 0.333f, false},
        {"decimal comma", INFO_DIFFUSE_FACTOR, L" 0,5", &C3DMaterial::GetDiffuseFactor, 0.5f, true},
        {"beyond", INFO_TRANSPARENCY, L"7", &C3DMaterial::GetTransparencyFactor, 1, true},
        {"beyond already", INFO_TRANSPARENCY, L"8", &C3DMaterial::GetTransparencyFactor, 1, false},
        {"a hair of an angle", INFO_SMOOTH_ANGLE, L"30.004", &C3DMaterial::GetSmoothAngle, 0.5235988f, false},
        {"an angle", INFO_SMOOTH_ANGLE, L"90 \u00b0", &C3DMaterial::GetSmoothAngle, 1.5707963f, true},
    };
    scene->SetCurrentTime(7);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        frame->DocumentSaved();
        ShowMaterial([&](const Pages& pages) { return CScriptWindowSystem::Enter(pages, row.field, row.typed); });
        EXPECT_FLOAT_EQ((material->*row.get)(0), row.expected);
        EXPECT_EQ(frame->IsDocumentModified(), row.changes);
        EXPECT_EQ(news.materials, std::vector<unsigned int>(row.changes, material->GetMaterialID()));
    }
    EXPECT_EQ(material->GetKeyNbr(KEY_TRANSPARENCY_FACTOR), 1);    // what stood still does so at other times too
    ShowMaterial([](const Pages& pages) { return CScriptWindowSystem::Enter(pages, INFO_MATERIAL_NAME, L"coat"); });
    EXPECT_EQ(scene->GetMaterialByName(L"coat"), material);
}

TEST_F(InfoSheets, ColorsAreWrittenAtOnceAndTakenBackByCancel)
{
    const auto paint = [&](const Pages& pages, bool ok) {
        EXPECT_EQ(Control(pages, INFO_DIFFUSE_COLOR).text, L"10 20 30 40");
        Control(pages, INFO_DIFFUSE_COLOR).color = {200, 100, 50, 40};
        pages[0]->OnControl(INFO_DIFFUSE_COLOR);
        EXPECT_EQ(material->GetDiffuseColor(0, false), CRGBColor(200, 100, 50, 40));
        EXPECT_EQ(news.materials.size(), 1u);
        EXPECT_TRUE(frame->IsDocumentModified());
        return ok;
    };
    ShowMaterial([&](const Pages& pages) { return paint(pages, false); });
    EXPECT_EQ(material->GetDiffuseColor(0, false), CRGBColor(10, 20, 30, 40));
    EXPECT_EQ(news.materials.size(), 2u);
    EXPECT_FALSE(frame->IsDocumentModified());
    ShowMaterial([&](const Pages& pages) { return paint(pages, true); });
    EXPECT_EQ(material->GetDiffuseColor(0, false), CRGBColor(200, 100, 50, 40));
    EXPECT_TRUE(frame->IsDocumentModified());
}

TEST_F(InfoSheets, MapsOfAMaterial)
{
    ShowMaterial([](const Pages& pages) {
        EXPECT_FALSE(Control(pages, INFO_MODIFY_FILE).enabled);
        EXPECT_FALSE(Control(pages, INFO_OPEN_BITMAP).enabled);
        return true;
    });
    const Text wide = WriteImage("wide.png", 1000, 10), other = WriteImage("other.png", 4, 4);
    material->AddMaterialMap(wide, 0, MAP_DIFFUSE, PROJECTION_UVW);
    material->AddMaterialMap(L"missing.png", 0, MAP_BUMP, PROJECTION_UVW);
    ShowMaterial([&](const Pages& pages) {
        EXPECT_EQ(Control(pages, INFO_MAPS).items, (std::vector<Text>{L"wide.png", L"missing.png"}));
        EXPECT_EQ(Control(pages, INFO_MAP_PICTURE).picture->GetWidth(), 128);
        EXPECT_EQ(Control(pages, INFO_MAP_PICTURE).picture->GetHeight(), 1);
        int width = 0;
        system.dialogUsers.push_back([&](const Pages& opened) {
            width = Control(opened, INFO_OPENED_PICTURE).picture->GetWidth();
            return true;
        });
        CScriptWindowSystem::Press(pages, INFO_OPEN_BITMAP);
        EXPECT_EQ(width, 800);

        CScriptWindowSystem::Choose(pages, INFO_MAPS, 1);
        EXPECT_FALSE(Control(pages, INFO_MAP_PICTURE).picture);
        CScriptWindowSystem::Press(pages, INFO_OPEN_BITMAP);    // nothing to open
        system.fileAnswers.push_back({other});
        CScriptWindowSystem::Press(pages, INFO_MODIFY_FILE);
        EXPECT_EQ(Control(pages, INFO_MAPS).items[1], L"other.png");
        EXPECT_EQ(Control(pages, INFO_MAP_PICTURE).picture->GetWidth(), 4);
        EXPECT_EQ(material->GetBumpMaps()->GetFileName(), other);
        return false;
    });
    EXPECT_EQ(material->GetBumpMaps()->GetFileName(), L"missing.png");
    EXPECT_EQ(news.materials.size(), 2u);
    EXPECT_FALSE(frame->IsDocumentModified());
}

TEST_F(InfoSheets, OfWhatIsNotThereFieldsAreEmpty)
{
    system.dialogUsers.push_back([](const Pages& pages) {
        EXPECT_EQ(Control(pages, INFO_MATERIAL_NAME).value, L"");
        EXPECT_FALSE(Control(pages, INFO_DIFFUSE_COLOR).enabled);
        pages[0]->OnControl(INFO_DIFFUSE_COLOR);
        return true;
    });
    frame->ShowProperties(0xFFFFFFFF);
    EXPECT_FALSE(frame->IsDocumentModified());
}
