// Scenes written through library and plug-in and read again.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "PluginTest.h"

namespace {

class SaveTest : public PluginTest {
protected:
    /// `form`: one of several forms of the format, by its name in the import library.
    bool Save(C3DScene& scene, const std::string& path, const std::string& form = "")
    {
        saved.RemoveLog();
        saved.flags = 0;
        saved.GetCustomData().SetString(FourCC("FORM"), Utf8ToWide(form));
        C3DIo io(CFileNameSpec(Utf8ToWide(path)), FILEIO_SILENT, nullptr);
        const bool written = io.Save(false, &scene, &saved);
        result = io.GetLastResult();
        return written;
    }

    CSceneExportOptions saved;
};

int TriangleCount(const C3DScene& scene)
{
    int count = 0;
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL); pos;) {
        C3DGeomObject* object;
        scene.GetNextNode(object, pos);
        for (int i = 0; i < object->GetFaceNbr(); i++) {
            int corners;
            object->GetFaceList()->GetIndexes(static_cast<unsigned int>(i), corners);
            count += corners - 2;
        }
    }
    return count;
}

}

TEST_F(SaveTest, EveryFormatThatIsReadTooBringsTheModelBack)
{
    const struct {
        const char* extension;
        const char* form;
        bool keepsPolygons, keepsTree;
    } rows[] = {
        {"obj", "", true, false},      {"obj", "objnomtl", true, false}, {"ply", "", true, false},   {"ply", "ply", true, false},
        {"stl", "", false, false},     {"stl", "stl", false, false},     {"gltf", "", false, true},  {"glb", "", false, true},
        {"gltf", "gltf", false, true}, {"glb", "glb", false, true},      {"dae", "", true, true},    {"fbx", "fbxa", true, true},
        {"x", "", true, true},         {"x3d", "", true, true},          {"assbin", "", true, true}, {"3ds", "", false, true},
    };
    const Scene scene = Read(MODELS "/pavilion.dae");
    ASSERT_TRUE(scene);
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.extension) + " " + row.form);
        const std::string path = folder.Name(std::string("pavilion.") + row.extension);
        ASSERT_TRUE(Save(*scene, path, row.form)) << WideToUtf8(saved.GetLogText(255));
        EXPECT_EQ(result, IORESULT_OK);
        const Scene again = Read(path);
        ASSERT_TRUE(again) << WideToUtf8(options.GetLogText(255));
        EXPECT_EQ(again->GetPointNbr(), 881);
        EXPECT_EQ(TriangleCount(*again), 1698);
        EXPECT_EQ(again->GetFaceNbr(), row.keepsPolygons ? 759 : 1698);
        if (row.keepsTree) {
            EXPECT_GE(again->GetChildCount(nullptr, OBJECT_ANY), 19);
        }
    }
}

TEST_F(SaveTest, WhatCannotBeWrittenIsAResultAndLeavesTheOldFilesWhole)
{
    const Scene scene = Read(MODELS "/pavilion.dae");
    ASSERT_TRUE(scene);
    for (const char* extension : {"obj", "ply", "stl", "gltf", "dae", "3ds"}) {
        SCOPED_TRACE(extension);
        EXPECT_FALSE(Save(*scene, folder.Name(std::string("missing/folder/model.") + extension)));
        EXPECT_NE(result, IORESULT_OK);
        EXPECT_TRUE(saved.HasLog(IoLogInfo::FAILURE));
    }
    // The side file's place is taken by a folder: the main file, which could be written, stays as it was.
    folder.Write("taken.obj", "old");
    std::filesystem::create_directories(folder.Name("taken.mtl"));
    EXPECT_FALSE(Save(*scene, folder.Name("taken.obj")));
    EXPECT_EQ(folder.Read("taken.obj"), "old");
    EXPECT_EQ(folder.CountFiles(), 2u);
}
