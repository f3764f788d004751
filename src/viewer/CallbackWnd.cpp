#include "viewer/CallbackWnd.h"

C3DCallbackWnd::~C3DCallbackWnd() = default;
void C3DCallbackWnd::Close() {}
void C3DCallbackWnd::SceneChanged(C3DScene*, unsigned int, const CSceneChangeData&) {}
void C3DCallbackWnd::ShowObjects(_LeftBarShowMode) {}
void C3DCallbackWnd::ShowMaterials(_LeftBarShowMode) {}
void C3DCallbackWnd::NodeSelectionChanged() {}
void C3DCallbackWnd::MaterialSelectionChanged() {}
void C3DCallbackWnd::NodeDisplayChanged() {}
