#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>

#include "scene/Materials.h"
#include "support/Checksum.h"
#include "support/Streams.h"

namespace {

constexpr unsigned int FRESH = 0xFFFFFFFF, NO_CHANNEL = 0xFFFFFFFF;
const CRGBColor RED(255, 0, 0), GREEN(0, 255, 0);

std::vector<C3DMaterial*> All(const CMaterials& materials)
{
    std::vector<C3DMaterial*> all;
    for (unsigned int pos = materials.GetFirst(); pos != HASH_END;) {
        unsigned int id;
        C3DMaterial* material;
        materials.GetNext(pos, id, material);
        EXPECT_EQ(material->GetMaterialID(), id);
        all.push_back(material);
    }
    EXPECT_EQ(all.size(), materials.GetCount());
    return all;
}

/// Every table against a look at each material.
void CheckTables(const CMaterials& materials)
{
    const auto all = All(materials);
    for (C3DMaterial* const material : all) {
        EXPECT_EQ(materials.FindByID(material->GetMaterialID()), material);
        const C3DMaterial* const named = materials.FindByName(material->GetName());
        EXPECT_TRUE(named && named->GetName() == material->GetName());
        for (const bool byName : {false, true}) {
            const C3DMaterial* const same = materials.Find(*material, byName);
            EXPECT_TRUE(same && same->HasSameParameters(*material) && (!byName || same->GetName() == material->GetName()));
        }
    }
}

std::wstring FirstFreeName(const CMaterials& materials, const std::wstring& base)
{
    std::set<std::wstring> names;
    for (const C3DMaterial* const material : All(materials))
        names.insert(material->GetName().Str());
    std::wstring name = base;
    for (int i = 0; names.count(name); i++)
        name = base + std::to_wstring(i);
    return name;
}

}

TEST(Materials, TheDefaultMaterialComesWhenAskedFor)
{
    CMaterials materials;
    EXPECT_EQ(static_cast<const CMaterials&>(materials).FindByID(0), nullptr);
    EXPECT_FALSE(materials.RemoveMaterial(0));
    C3DMaterial* const material = materials.FindByID(0);
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(materials.GetCount(), 1u);
    const CXTString<wchar_t> name = material->GetName();
    EXPECT_EQ(materials.FindByName(name), material);
    EXPECT_EQ(materials.CreateNewMaterial(0)->GetName(), name + L"0");    // under an id of its own

    C3DMaterial other;
    other.SetName(L"other");
    other.SetDiffuseColor(0, RED);
    materials.SetDefaultMaterial(other);
    EXPECT_EQ(materials.FindByID(0), material);
    EXPECT_EQ(materials.FindByName(L"other"), material);
    EXPECT_EQ(materials.Find(other, true), material);
    materials.RemoveAll();
    materials.SetDefaultMaterial(other);
    EXPECT_EQ(materials.FindByID(0)->GetName(), name);
}

TEST(Materials, IdsStayUnique)
{
    CMaterials materials;
    const unsigned int next = C3DMaterial().GetMaterialID() + 1;
    EXPECT_EQ(materials.CreateNewMaterial(next)->GetMaterialID(), next);    // takes that number from the counter too
    EXPECT_EQ(materials.CreateNewMaterial(next + 2)->GetMaterialID(), next + 2);
    EXPECT_EQ(materials.CreateNewMaterial(next + 3)->GetMaterialID(), next + 3);
    std::set<unsigned int> ids;
    for (int i = 0; i < 10; i++)
        ids.insert(materials.CreateNewMaterial(i % 2 ? next : FRESH)->GetMaterialID());
    EXPECT_EQ(ids.size(), 10u);
    EXPECT_EQ(materials.GetCount(), 13u);
    CheckTables(materials);
}

TEST(Materials, TablesFollowEveryChange)
{
    // Faults in mind: a setter leaves the material under its former name, colour, file or keys; a freed number is not used again, or one
    // that was taken since is.
    CMaterials materials;
    std::mt19937 random(7);
    const auto pick = [&](unsigned int count) { return static_cast<int>(random() % count); };
    const CRGBColor colors[] = {RED, GREEN, CRGBColor(192, 192, 192)};
    const wchar_t* const names[] = {L"", L"0", L"1", L"2", L"7", L"07", L"a"};
    const wchar_t* const files[] = {L"a.png", L"b.png", L"c.png"};
    for (int step = 0; step < 3000; step++) {
        const auto all = All(materials);
        C3DMaterial* const one = all.empty() ? nullptr : all[pick(all.size())];
        switch (one ? pick(10) : 0) {
        case 0:
        case 1: {
            const std::wstring expected = FirstFreeName(materials, L"");
            ASSERT_EQ(materials.CreateNewMaterial(FRESH)->GetName().Str(), expected);
            break;
        }
        case 2: one->SetName(names[pick(std::size(names))]); break;
        case 3: one->SetDiffuseColor(pick(2), colors[pick(std::size(colors))]); break;
        case 4: one->AddMaterialMap(files[pick(std::size(files))], NO_CHANNEL, MAP_DIFFUSE, PROJECTION_UVW); break;
        case 5:
            if (one->GetDiffuseMaps())
                one->GetDiffuseMaps()->SetFileName(files[pick(std::size(files))], L"");
            break;
        case 6: *one = *all[pick(all.size())]; break;
        case 7: one->SetTransparencyFactor(0, static_cast<float>(pick(2))); break;
        case 9:    // past the setters
            static_cast<C3DTypeKey<float>*>(one->CreateKey(0, KEY_BUMP_FACTOR, 0))->value = static_cast<float>(pick(2));
            break;
        case 8: EXPECT_TRUE(materials.RemoveMaterial(one->GetMaterialID())); break;
        }
        if (step % 50 == 0)
            CheckTables(materials);
    }
    CheckTables(materials);

    C3DMaterial wanted;
    wanted.SetDiffuseColor(0, CRGBColor(1, 2, 3));
    EXPECT_EQ(materials.Find(wanted, false), nullptr);
    C3DMaterial* const one = All(materials)[0];
    *one = wanted;
    EXPECT_EQ(materials.Find(wanted, false), one);
    one->SetDiffuseColor(0, RED);
    EXPECT_EQ(materials.Find(wanted, false), nullptr);
}

TEST(Materials, TheFirstOfACrowdIsTheFirstInSlotOrder)
{
    // 400 materials of one colour; 40 files, a wide and a narrow one among them; each pair of file and factor several times. The sum is
    // that of a walk over all of them in slot order.
    CMaterials materials;
    for (int i = 0; i < 400; i++) {
        C3DMaterial* const material = materials.CreateNewMaterial(1000 + 7 * i);
        material->AddMaterialMap(std::to_wstring(i % 2 ? 0 : i % 40), NO_CHANNEL, MAP_BUMP, PROJECTION_UVW);
        material->SetBumpFactor(0, static_cast<float>(i % 3) / 4);
    }
    Checksum sum;
    for (const C3DMaterial* const material : All(materials))
        sum.Add(materials.Find(*material, false)->GetMaterialID());
    EXPECT_EQ(sum.Get(), 0xCDA69B9A280660ADu);
}

TEST(Materials, CopiesKeepIds)
{
    CMaterials from;
    from.CreateNewMaterial(1)->SetName(L"from 1");
    from.CreateNewMaterial(2)->SetName(L"from 2");
    from.FindByID(2)->AddMaterialMap(L"a.png", 5, MAP_DIFFUSE, PROJECTION_UVW);
    C3DFaceList::MaterialsMap listed;
    listed.Insert(2, 1);
    const struct {
        const char* name;
        unsigned int flags;
        const C3DFaceList::MaterialsMap* listed;
        const wchar_t* names[3];    // of ids 1, 2, 3; null: no such material
    } rows[] = {
        {"all", 0, nullptr, {L"from 1", L"from 2", L"to 3"}},
        {"only new", CMaterials::COPY_ONLY_NEW, nullptr, {L"to 1", L"from 2", L"to 3"}},
        {"replace all", CMaterials::COPY_REPLACE_ALL, nullptr, {L"from 1", L"from 2", nullptr}},
        {"listed", CMaterials::COPY_ONLY_LISTED, &listed, {L"to 1", L"from 2", L"to 3"}},
        {"no list", CMaterials::COPY_ONLY_LISTED, nullptr, {L"to 1", nullptr, L"to 3"}},
        {"a list that is not asked for", 0, &listed, {L"from 1", L"from 2", L"to 3"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CMaterials to;
        to.CreateNewMaterial(1)->SetName(L"to 1");
        to.CreateNewMaterial(3)->SetName(L"to 3");
        to.CopyMaterials(from, row.flags, row.listed);
        to.CopyMaterials(to, row.flags, row.listed);    // nothing
        for (unsigned int id = 1; id <= 3; id++) {
            const C3DMaterial* const material = to.FindByID(id);
            ASSERT_EQ(material != nullptr, row.names[id - 1] != nullptr);
            if (material) {
                EXPECT_EQ(material->GetName().Str(), row.names[id - 1]);
            }
        }
        if (row.names[1]) {
            EXPECT_TRUE(*to.FindByID(2) == *from.FindByID(2));
        }
        CheckTables(to);
    }
}

// ---- Stream

namespace {

/// One material under a striking id, with everything.
void Fill(CMaterials& materials)
{
    C3DMaterial* const material = materials.CreateNewMaterial(0x00ABCDEF);
    material->SetName(L"brick");
    material->SetFlags(MATERIAL_HIDDEN | MATERIAL_NAME_CHANGED, true);
    material->SetDiffuseColor(0, RED);
    material->SetDiffuseColor(10, GREEN);
    material->SetVertexColor(0, 3, 0.5f);
    material->GetCustomData().SetInt(1, 2);
    CMaterialMap* const map = material->AddMaterialMap(L"brick.png", 4, MAP_DIFFUSE, PROJECTION_BOX);
    map->SetAlphaFileName(L"alpha.png", L"");
    map->SetAxis(MAP_AXIS_Z);
    map->SetFlag(MAP_NO_ALPHA_TEST, true);
    map->SetTranslation(0, {1, 2, 3});
    map->SwapCoordinates(0x42);
    map->GetCustomData().SetInt(3, 4);
    material->AddMaterialMap(L"bump.png", 4, MAP_BUMP, PROJECTION_UVW);
    materials.CreateNewMaterial(0x00ABCDF0)->SetName(L"plain");
}

/// Replaces the only place where the id stands.
std::vector<unsigned char> WithID(std::vector<unsigned char> bytes, unsigned int from, unsigned int to)
{
    const auto* const first = reinterpret_cast<const unsigned char*>(&from);
    const auto place = std::search(bytes.begin(), bytes.end(), first, first + sizeof from);
    EXPECT_NE(place, bytes.end());
    std::memcpy(&*place, &to, sizeof to);
    return bytes;
}

}

TEST(Materials, AStreamGivesBackEverything)
{
    CMaterials source, loaded;
    Fill(source);
    loaded.CreateNewMaterial(3);
    const auto bytes = Stored(source);
    ASSERT_TRUE(Load(loaded, bytes));
    EXPECT_FALSE(source.FindByID(0x00ABCDEF)->IsFlagSet(MATERIAL_NAME_CHANGED));    // cleared behind the writer
    EXPECT_EQ(loaded.GetCount(), 2u);
    CheckTables(loaded);
    const C3DMaterial &a = *source.FindByID(0x00ABCDEF), *b = loaded.FindByName(L"brick");
    ASSERT_NE(b, nullptr);
    EXPECT_TRUE(a == *b);
    EXPECT_EQ(b->GetMaterialID(), 0x00ABCDEFu);
    EXPECT_EQ(b->GetFlags(), static_cast<unsigned int>(MATERIAL_HIDDEN | MATERIAL_NAME_CHANGED));
    EXPECT_TRUE(a.GetCustomData() == b->GetCustomData());
    EXPECT_TRUE(a.GetDiffuseMaps()->GetCustomData() == b->GetDiffuseMaps()->GetCustomData());
    EXPECT_GT(C3DMaterial().GetMaterialID(), 0x00ABCDF0u);

    // Into a material that stands in a collection: it stays there under its id.
    C3DMaterial* const plain = loaded.FindByName(L"plain");
    ASSERT_TRUE(Load(*plain, Stored(*source.FindByID(0x00ABCDEF))));
    EXPECT_EQ(plain->GetMaterialID(), 0x00ABCDF0u);
    EXPECT_TRUE(*plain == a);
    CheckTables(loaded);
}

TEST(Materials, DamagedStreamsAreRefused)
{
    CMaterials source;
    Fill(source);
    const auto bytes = Stored(source);
    for (std::size_t size = 0; size < bytes.size(); size++) {
        CMaterials loaded;
        EXPECT_FALSE(Load(loaded, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}));
        CheckTables(loaded);
    }
    CMaterials loaded;
    EXPECT_FALSE(Load(loaded, WithID(bytes, 0x00ABCDF0, 0xFFFFFFFF)));
    EXPECT_FALSE(Load(loaded, WithID(bytes, 0x00ABCDF0, 0x00ABCDEF)));    // twice the same
    EXPECT_TRUE(Load(loaded, bytes));
    for (std::size_t i = 0; i < bytes.size(); i++) {
        auto damaged = bytes;
        damaged[i] ^= 0xFF;
        CMaterials victim;
        Load(victim, damaged);    // whatever comes of it, it can be looked at and destroyed
        EXPECT_LE(All(victim).size(), 2u);
    }
}
