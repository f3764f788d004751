#pragma once

#include "scene/Forward.h"
#include "tools/Api.h"

/// What changed in a scene, bits.
enum SceneChange : unsigned int {
    CHANGED_SCENE = 1,    ///< another scene, or all of it
    CHANGED_NODES = 2,    ///< nodes came or went
    CHANGED_POINTS_OF_SCENE = 4,
    CHANGED_FACES_OF_SCENE = 8,
    CHANGED_MATERIAL = 16,
    CHANGED_TIME = 32,
    CHANGED_UNIT = 64,
};

/// What of a scene's change is meant; nothing when all of it is.
struct CSceneChangeData {
    C3DSceneNode* node = nullptr;
    unsigned int material = 0xFFFFFFFF;
    bool IsNull() const { return !node && material == 0xFFFFFFFF; }
};

/// What ShowObjects and ShowMaterials ask for.
enum _LeftBarShowMode { LEFTBAR_HIDE = 0, LEFTBAR_SHOW = 1, LEFTBAR_TOGGLE = 2 };

/// A window that follows the scene of a frame. All operations do nothing unless derived ones do.
class ZEL_API C3DCallbackWnd {
public:
    explicit C3DCallbackWnd(unsigned short priority) : m_priority(priority) {}
    virtual ~C3DCallbackWnd();
    C3DCallbackWnd(const C3DCallbackWnd&) = delete;
    C3DCallbackWnd& operator=(const C3DCallbackWnd&) = delete;

    virtual void Close();                                                                           ///< the frame goes
    virtual void SceneChanged(C3DScene* scene, unsigned int what, const CSceneChangeData& data);    ///< `what`: SceneChange
    virtual void ShowObjects(_LeftBarShowMode mode);
    virtual void ShowMaterials(_LeftBarShowMode mode);
    virtual void NodeSelectionChanged();
    virtual void MaterialSelectionChanged();
    virtual void NodeDisplayChanged();

    unsigned short GetPriority() const { return m_priority; }

private:
    const unsigned short m_priority;
};
