#pragma once

// A frame on a window system without a screen, and its commands.

#include <gtest/gtest.h>

#include "support/MemoryProfile.h"
#include "render/View.h"
#include "scene/3DScene.h"
#include "scene/Primitives.h"
#include "support/Owned.h"
#include "tools/FourCC.h"
#include "viewer/FrameViewer.h"
#include "windows/ScriptWindowSystem.h"

class CommandCase : public testing::Test {
protected:
    CommandCase() : scene(C3DScene::Create()) {}

    void SetUp() override
    {
        SetWindowSystem(&windows);
        frame = std::make_unique<C3DFrameViewer>();
        ASSERT_TRUE(frame->Create(L"test"));
        frame->ShowFrame();
        scene->AddNode(nullptr, CreateCube({3, 5, 7}, 2, 4, 6, false, 0, 0));
        frame->SetCurrentScene(scene.get(), true);
    }
    void TearDown() override
    {
        frame.reset();
        SetWindowSystem(nullptr);
    }

    C3DView& View() { return *frame->Get3DView(); }
    CZelCommand& Command(unsigned int id) { return *frame->GetCommandMgr().GetCommandById(id); }
    unsigned int WindowsId(unsigned int id) { return frame->GetCommandMgr().GetWindowsId(&Command(id)); }
    CommandResult Run(unsigned int id) { return frame->RunCommand(id); }
    /// COMMAND_ENABLED and COMMAND_CHECKED.
    unsigned int State(unsigned int id)
    {
        Command(id).UpdateState();
        return Command(id).GetState() & (COMMAND_ENABLED | COMMAND_CHECKED);
    }
    /// Opens the menu beside the command's button and chooses the entry of that place, separators counted; -1 for none.
    void OpenToolbarMenu(unsigned int id, int place)
    {
        menu.clear();
        windows.menuUsers.push_back([this, place](const CCustomMenu& shown) {
            for (const CMenuItem& item : shown.items)
                menu.push_back({item.id, item.separator ? L"---" : item.text, item.key, item.enabled, item.checked});
            return place < 0 ? 0 : shown.items.at(static_cast<std::size_t>(place)).id;
        });
        frame->OnToolbarMenu(WindowsId(id), {10, 10});
    }

    struct ShownEntry {
        unsigned int id;
        CXTString<wchar_t> text, key;
        bool enabled, checked;
    };

    CScriptWindowSystem windows;
    CMemoryProfile profile;
    Owned<C3DScene> scene;
    std::unique_ptr<C3DFrameViewer> frame;
    std::vector<ShownEntry> menu;    ///< that opened last
};

constexpr unsigned int ENABLED = COMMAND_ENABLED, CHECKED = COMMAND_ENABLED | COMMAND_CHECKED;
