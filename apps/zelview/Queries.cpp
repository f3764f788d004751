#include "Queries.h"

#include <nlohmann/json.hpp>

#include "3dzel.h"

namespace {

using Json = nlohmann::ordered_json;

Json Names(C3DScene* scene, unsigned int flag)
{
    Json list = Json::array();
    if (!scene)
        return list;
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
        const C3DSceneNode* const node = scene->GetNextNode(pos);
        if (node->IsFlagSet(flag))
            list.push_back({{"id", node->GetNodeID()}, {"name", WideToUtf8(node->GetName())}});
    }
    return list;
}

Json Selection(C3DFrameViewer& frame) { return Names(frame.GetCurrentScene(), NODE_SELECTED); }

Json Hidden(C3DFrameViewer& frame) { return Names(frame.GetCurrentScene(), NODE_HIDDEN); }

Json View(C3DFrameViewer& frame)
{
    const C3DView* const view = frame.Get3DView();
    if (!view)
        return nullptr;
    const GlViewSettings& settings = *view->GetViewSettings();
    Json matrix = Json::array();
    for (const auto& row : settings.matrix.m)
        for (const float value : row)
            matrix.push_back(value);
    const C3DCamera* const camera = settings.GetCurrentCamera();
    const CRect client = view->GetClientRect();
    Json answer{{"width", client.Width()}, {"height", client.Height()}, {"matrix", matrix}, {"number", settings.viewNumber}};
    answer["flags"] = settings.viewFlags;
    answer["zoom"] = camera ? camera->GetZoom() : 1;
    answer["orthographic"] = settings.IsOrthographic();
    answer["camera"] = view->GetCurrentCameraId();
    answer["brightness"] = settings.brightness;
    answer["time"] = frame.GetCurrentScene() ? frame.GetCurrentScene()->GetTickCount() : 0;
    answer["fullScreen"] = frame.IsFullScreen();
    return answer;
}

Json Panes(C3DFrameViewer& frame)
{
    Json list = Json::array();
    if (const CCommandStatusBar* const bar = frame.GetStatusBar())
        for (std::size_t i = 0; i < bar->GetPanes().size(); i++)
            list.push_back(WideToUtf8(bar->OnDrawPane(static_cast<int>(i))));
    return list;
}

Json Menu(C3DFrameViewer& frame, CCustomMenu& menu)
{
    frame.OnInitMenuPopup(menu);
    Json list = Json::array();
    for (const CMenuItem& item : menu.items) {
        if (item.separator) {
            list.push_back(nullptr);
            continue;
        }
        Json entry{{"text", WideToUtf8(item.text)}};
        if (item.popup)
            entry["entries"] = Menu(frame, *item.popup);
        else {
            entry["key"] = WideToUtf8(item.key);
            entry["enabled"] = item.enabled;
            entry["checked"] = item.checked;
        }
        list.push_back(std::move(entry));
    }
    return list;
}

Json Menus(C3DFrameViewer& frame) { return Menu(frame, frame.GetMenuBar()); }

std::string FromFourCC(unsigned int code)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(code >> shift & 0xFF);
    return text;
}

Json Commands(C3DFrameViewer& frame)
{
    Json list = Json::array();
    for (CZelCommand* const command : frame.GetCommandMgr().GetCommands()) {
        command->UpdateState();
        Json entry{{"id", FromFourCC(command->GetCommandID().identifier)}, {"name", WideToUtf8(command->GetName())}};
        entry["key"] = WideToUtf8(command->GetKeyAccess());
        entry["enabled"] = command->IsStateSet(COMMAND_ENABLED);
        entry["checked"] = command->IsStateSet(COMMAND_CHECKED);
        entry["current"] = frame.IsActiveCommand(command);
        list.push_back(std::move(entry));
    }
    return list;
}

Json Objects(C3DFrameViewer& frame)
{
    Json list = Json::array();
    C3DScene* const scene = frame.GetCurrentScene();
    if (!scene)
        return list;
    for (C3DNodePos pos = scene->GetFirstNode(OBJECT_ANY); pos;) {
        const C3DSceneNode* const node = scene->GetNextNode(pos);
        Json entry{{"id", node->GetNodeID()}, {"name", WideToUtf8(node->GetName())}};
        entry["kind"] = node->GetBaseObject() ? WideToUtf8(node->GetBaseObject()->GetTypeString()) : "";
        entry["selected"] = node->IsFlagSet(NODE_SELECTED);
        entry["hidden"] = node->IsFlagSet(NODE_HIDDEN);
        list.push_back(std::move(entry));
    }
    return list;
}

Json Materials(C3DFrameViewer& frame)
{
    Json list = Json::array();
    C3DScene* const scene = frame.GetCurrentScene();
    if (!scene)
        return list;
    for (unsigned int pos = scene->GetFirstMaterial(); pos != 0xFFFFFFFF;) {
        const C3DMaterial* const material = scene->GetNextMaterial(pos);
        list.push_back({{"id", material->GetMaterialID()}, {"name", WideToUtf8(material->GetName())}});
    }
    return list;
}

Json Files(C3DFrameViewer& frame)
{
    Json list = Json::array();
    if (const CDocumentFileList* const files = frame.GetFileList())
        for (int i = 0; i < files->GetFileNbr(); i++)
            list.push_back(WideToUtf8(files->GetFile(i)));
    return {{"files", list}, {"current", WideToUtf8(frame.GetCurrentFilePath())}, {"modified", frame.IsDocumentModified()}};
}

Json Title(C3DFrameViewer& frame) { return WideToUtf8(frame.GetTitle()); }

Json Dialogs(C3DFrameViewer&)
{
    Json list = Json::array();
    for (const CShownQuestion& shown : GetWindowSystem().GetShownQuestions()) {
        Json entry{{"kind", WideToUtf8(shown.kind)}, {"title", WideToUtf8(shown.title)}, {"text", WideToUtf8(shown.text)}};
        Json controls = Json::array();
        for (const CDialogTable* const page : shown.pages)
            for (const CControl& control : page->controls)
                if (control.visible)
                    controls.push_back({{"id", control.id},
                                        {"text", WideToUtf8(control.text)},
                                        {"value", WideToUtf8(control.value)},
                                        {"checked", control.checked},
                                        {"number", control.number},
                                        {"selected", control.selected},
                                        {"enabled", control.enabled}});
        entry["controls"] = std::move(controls);
        list.push_back(std::move(entry));
    }
    return list;
}

constexpr struct {
    const char* name;
    Json (*answer)(C3DFrameViewer&);
} QUERIES[] = {
    {"selection", &Selection}, {"hidden", &Hidden},     {"view", &View},       {"panes", &Panes},
    {"menus", &Menus},         {"commands", &Commands}, {"objects", &Objects}, {"materials", &Materials},
    {"files", &Files},         {"title", &Title},       {"dialogs", &Dialogs},
};

}

bool AnswerQuery(C3DFrameViewer& frame, const std::string& name, std::string& answer)
{
    for (const auto& query : QUERIES)
        if (name == query.name) {
            // Names come from files: what is no UTF-8 is replaced.
            answer = query.answer(frame).dump(-1, ' ', false, Json::error_handler_t::replace);
            return true;
        }
    return false;
}

std::string GetQueryNames()
{
    std::string names;
    for (const auto& query : QUERIES)
        names.append(names.empty() ? "" : "|").append(query.name);
    return names;
}
