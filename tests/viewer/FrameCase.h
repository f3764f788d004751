#pragma once

// A frame on a window system without screen, and files for it.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "io/3DIo.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/3DZel.h"
#include "scene/Material.h"
#include "scene/Primitives.h"
#include "support/MemoryProfile.h"
#include "support/Owned.h"
#include "support/TempFolder.h"
#include "tools/FilePath.h"
#include "tools/FourCC.h"
#include "tools/StringTable.h"
#include "viewer/FrameViewer.h"
#include "viewer/RenderStatusBar.h"
#include "windows/ScriptWindowSystem.h"

using Text = CXTString<wchar_t>;

/// A row of cubes of side 1, each with a material of its own; the caller's.
inline C3DScene* CreateCubes(int count)
{
    C3DScene* const scene = C3DScene::Create();
    for (int i = 0; i < count; i++) {
        C3DMaterial* const material = scene->CreateNewMaterial(0xFFFFFFFF);
        material->SetName(L"paint" + Text(static_cast<wchar_t>(L'0' + i), 1));
        material->SetDiffuseColor(0, {static_cast<unsigned char>(50 * i), 100, 0});
        C3DSceneNode* const cube = CreateCube({2.0f * static_cast<float>(i), 0, 0}, 1, 1, 1, false, material->GetMaterialID(), 0);
        cube->SetName(L"cube" + Text(static_cast<wchar_t>(L'0' + i), 1));
        scene->AddNode(nullptr, cube);
    }
    return scene;
}

class FrameCase : public testing::Test {
protected:
    FrameCase() : m_config("XDG_CONFIG_HOME", folder.Name("config")), m_former(SetWindowSystem(&system))
    {
        SetLanguage(LANGUAGE_ENGLISH);
        Init3DZel(INIT_NO_PLUGINS);
        frame = std::make_unique<C3DFrameViewer>();
    }
    ~FrameCase() override
    {
        frame.reset();
        Close3DZel(INIT_NO_PLUGINS);
        SetWindowSystem(m_former);
    }

    void Open()
    {
        ASSERT_TRUE(frame->Create(L"test"));
        frame->ShowFrame();
    }
    /// A native file of the folder that holds so many cubes.
    Text WriteCubes(const std::string& name, int count)
    {
        const Owned<C3DScene> scene(CreateCubes(count));
        C3DIo io(folder.Wide(name), FILEIO_SILENT, nullptr);
        EXPECT_TRUE(io.Save(false, scene.get(), nullptr));
        return folder.Wide(name);
    }
    CommandResult Run(unsigned int id) { return frame->RunCommand(id); }
    CZelCommand& Command(unsigned int id) { return *frame->GetCommandMgr().GetCommandById(id); }
    Text Pane(int pane) { return frame->GetRenderStatusBar()->OnDrawPane(pane); }
    Text Title() { return system.GetTitle(frame.get()); }
    int Nodes() { return frame->GetCurrentScene()->GetChildCount(nullptr, OBJECT_ANY); }
    /// Changes the document as a user would.
    void DeleteFirstNode()
    {
        C3DScene& scene = *frame->GetCurrentScene();
        scene.SelectNone();
        scene.Select(scene.GetChildNode(nullptr), 0);
        EXPECT_EQ(Run(FourCC("DELN")), COMMAND_DONE);
    }
    /// How often something was asked or shown that begins so.
    int CountShown(const Text& start)
    {
        return static_cast<int>(
            std::count_if(system.shown.begin(), system.shown.end(), [&](const Text& text) { return text.Find(start) == 0; }));
    }

    TempFolder folder;
    CMemoryProfile profile;
    CScriptWindowSystem system;
    std::unique_ptr<C3DFrameViewer> frame;

private:
    ScopedVariable m_config;
    IWindowSystem* m_former;
};
