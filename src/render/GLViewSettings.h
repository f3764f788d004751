#pragma once

#include "geometry/4x4Matrix.h"
#include "scene/Forward.h"
#include "tools/Color.h"

/// Points of view. A name tells where the eye stands: LEFT looks along +x, FRONT along +y, TOP along -z.
enum _RVIEW_FLAG : unsigned int {
    RVIEW_DEFAULT = 0,    ///< the scene's first camera when the settings say so, else the front
    RVIEW_LEFT,
    RVIEW_RIGHT,
    RVIEW_TOP,
    RVIEW_BOTTOM,
    RVIEW_FRONT,
    RVIEW_BACK,
    RVIEW_CUSTOM,    ///< whatever the matrix says
    RVIEW_LEFT_TOP_FRONT,
    RVIEW_RIGHT_TOP_FRONT,
    RVIEW_LEFT_TOP_BACK,
    RVIEW_RIGHT_TOP_BACK,
    RVIEW_LEFT_BOTTOM_FRONT,
    RVIEW_RIGHT_BOTTOM_FRONT,
    RVIEW_LEFT_BOTTOM_BACK,
    RVIEW_RIGHT_BOTTOM_BACK,
};

/// Change mask of GlViewSettings. The low bits say which fields count, the high ones ask for work.
enum _GLSET_FLAGS : unsigned int {
    GLSET_MATRIX = 0x1,
    GLSET_TRANSLATION = 0x2,    ///< of the matrix, elements 3, 7 and 11 alone
    GLSET_VIEW_FLAGS = 0x8,
    GLSET_VIEW_NUMBER = 0x10,    ///< and the angle
    GLSET_BACKGROUND = 0x20,
    GLSET_WIREFRAME_COLOR = 0x40,
    GLSET_SELECTION_COLOR = 0x80,
    GLSET_LIGHT_COLOR = 0x100,
    GLSET_HIDDEN_KINDS = 0x200,
    GLSET_UPDATE = 0x10000,    ///< C3DView::UpdateView at the end; without it nothing is redrawn
    GLSET_FIT = 0x20000,       ///< fits the view to the scene
    GLSET_FIT_ALT = 0x40000,
    GLSET_FIT_SELECTION = 0x80000,    ///< with a fit: to the selected nodes
    GLSET_FLUSH_ALL = 0x100000,       ///< every call list is built again
    GLSET_RELOAD_TEXTURES = 0x200000,
    GLSET_RESUME_UPDATES = 0x400000,    ///< ends what VIEWFLAG_HOLD_UPDATES holds
    GLSET_CAMERA = 0x800000,
};

/// How a view shows its scene.
enum _VIEW_FLAGS : unsigned int {
    VIEWFLAG_WIREFRAME = 0x1,    ///< alone: wires; with one of the next two: wires over the surface
    VIEWFLAG_FLAT = 0x2,
    VIEWFLAG_SMOOTH = 0x4,
    VIEWFLAG_TRANSPARENCY = 0x10,           ///< transparent materials blend
    VIEWFLAG_MARKED_ONLY = 0x20,            ///< only faces and points of curves that a host has marked
    VIEWFLAG_SHOW_SELECTED_FACES = 0x40,    ///< marked faces (VIEW_FACE_MARKED) have the selection material
    VIEWFLAG_HIDDEN_STIPPLED = 0x80,        ///< on surfaces: hidden nodes are shown half
    VIEWFLAG_CULL_BACK = 0x100,
    VIEWFLAG_TEXTURE = 0x200,
    VIEWFLAG_VERTEX_COLORS = 0x400,
    VIEWFLAG_SPEC_NORMALS = 0x800,    ///< given normals count
    VIEWFLAG_FACE_LABELS = 0x1000,
    VIEWFLAG_POINT_LABELS = 0x2000,
    VIEWFLAG_DRAW_NORMALS = 0x4000,
    VIEWFLAG_DRAW_BOXES = 0x8000,    ///< of every node and of the scene, not of selected nodes alone
    VIEWFLAG_SHOW_CAMERAS = 0x10000,
    VIEWFLAG_SHOW_LIGHTS = 0x20000,
    VIEWFLAG_HOLD_UPDATES = 0x80000,    ///< objects are not updated while the user is at work
    VIEWFLAG_ECONOMY = 0x100000,        ///< one light, and textures of a limited size
    VIEWFLAG_PERSPECTIVE_HINT = 0x200000,
    VIEWFLAG_SMOOTH_TEXTURES = 0x400000,
    // Of the moment: never stored, never taken from a caller.
    VIEWFLAG_UPDATES_HELD = 0x1000000,
    VIEWFLAG_NO_COLOR_WRITE = 0x2000000,
    VIEWFLAG_NO_CLEAR = 0x4000000,
    VIEWFLAG_CULLING_ON = 0x8000000,
};
constexpr unsigned int VIEWFLAG_SOLID = VIEWFLAG_FLAT | VIEWFLAG_SMOOTH;
constexpr unsigned int VIEWFLAG_RENDER_MODE = VIEWFLAG_WIREFRAME | VIEWFLAG_SOLID;
constexpr unsigned int VIEWFLAG_TRANSIENT = 0x0F000000;
constexpr unsigned int VIEWFLAG_DEFAULT = VIEWFLAG_SMOOTH | VIEWFLAG_TRANSPARENCY | VIEWFLAG_TEXTURE | VIEWFLAG_VERTEX_COLORS |
                                          VIEWFLAG_SPEC_NORMALS | VIEWFLAG_ECONOMY | VIEWFLAG_PERSPECTIVE_HINT | VIEWFLAG_SMOOTH_TEXTURES;

/// What a view shows and how: its state, and the message that changes it. A caller fills a fresh record, names the fields that count in
/// `changeMask`, and gives it to C3DView::SetViewSettings.
class ZEL_API GlViewSettings {
public:
    GlViewSettings();
    /// Shares the camera.
    GlViewSettings(const GlViewSettings& other);
    GlViewSettings& operator=(const GlViewSettings& other);
    virtual ~GlViewSettings();

    /// Takes a copy of the camera; a new default camera for null.
    void SetCurrentCamera(const C3DCamera* camera);
    /// Null before the first SetCurrentCamera: perspective.
    C3DCamera* GetCurrentCamera() const { return m_camera; }
    bool IsOrthographic() const;

private:
    C3DCamera* m_camera = nullptr;

public:
    unsigned int changeMask = 0;    ///< _GLSET_FLAGS
    float aspect = 0;               ///< width over height; 0 before the first size and for a height of 0
    float sceneSize = 1;            ///< diagonal of the scene's box
    float nearPlane = 0, farPlane = 1;
    C4x4TMatrix<float> matrix;    ///< a scene point p is seen at rotation * (p - sceneCenter) + translation
    C3DTPoint<float> sceneCenter{0, 0, 0};
    unsigned int hiddenKinds = 0;             ///< _OBJECT_KINDOF of what is not drawn
    unsigned int viewFlags = 0xFFFFFFFF;      ///< _VIEW_FLAGS
    _RVIEW_FLAG viewNumber = RVIEW_CUSTOM;    ///< point of view
    float viewAngle = 0;                      ///< of the slanted points of view, radians; 0: that of the preferences
    float brightness = 1;                     ///< factor of the light
    CRGBColor background{128, 128, 128};
    CRGBColor wireframeColor{255, 0, 0};
    CRGBColor selectionColor{255, 0, 0};
    CRGBColor lightColor{192, 192, 192};
};

/// matrix = matrix * rotation, in the sense of C4x4TMatrix::FromQuaternion: a quarter about x brings z, what is up, to the eye's y. Angles below 1e-15
/// in size do nothing.
ZEL_API void TurnMatrix(C4x4TMatrix<float>& matrix, const C3DTVector<float>& axis, double angle);
