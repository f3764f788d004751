#pragma once

// A frame on a window system without a screen, and its commands.

#include "viewer/FrameCase.h"

/// Shows a box.
class CommandCase : public FrameCase {
protected:
    CommandCase() : scene(C3DScene::Create()) {}

    void SetUp() override
    {
        Open();
        scene->AddNode(nullptr, CreateCube({3, 5, 7}, 2, 4, 6, false, 0, 0));
        frame->SetCurrentScene(scene.get(), true);
    }

    C3DView& View() { return *frame->Get3DView(); }
    unsigned int WindowsId(unsigned int id) { return frame->GetCommandMgr().GetWindowsId(&Command(id)); }
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

    CScriptWindowSystem& windows = system;
    Owned<C3DScene> scene;
    std::vector<ShownEntry> menu;    ///< that opened last
};

constexpr unsigned int ENABLED = COMMAND_ENABLED, CHECKED = COMMAND_ENABLED | COMMAND_CHECKED;
