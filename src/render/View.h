#pragma once

#include <functional>
#include <memory>
#include <numbers>
#include <vector>

#include "images/Bitmap.h"
#include "render/CallLists.h"
#include "render/GLPlatform.h"
#include "render/GLViewSettings.h"
#include "render/RenderElement.h"
#include "scene/Material.h"
#include "tools/Array.h"
#include "tools/Hash.h"
#include "windows/CommandView.h"

class CGLDrawText;
class CGLRenderingMode;
class C3DCurve;
class IViewHost;
struct glPickInfo;

/// When a display callback is called.
enum glCallbackDisplayState : unsigned int {
    DISPLAY_PASS_BEGIN = 0,    ///< 0 as the answer refuses the pass
    DISPLAY_PASS_END = 1,
    DISPLAY_NODE = 2,    ///< 0 leaves the node out
    DISPLAY_OVERLAY_BEGIN = 3,
    DISPLAY_OVERLAY_END = 4,
    DISPLAY_OVERLAY_NODE = 5,    ///< draws directly, in the node's space
};

/// State of a view's GL contexts.
enum _OPENGL_DRAWING_SETTINGS : unsigned int {
    GLDRAW_ALT_FORMAT = 0x1,              ///< the pixel format is that of the profile
    GLDRAW_MEMORY = 0x1000000,            ///< off screen: no tint of what is selected, no boxes, no labels
    GLDRAW_DEFERRED_PAINT = 0x2000000,    ///< the paint under way is the late one, which draws what is too slow for interaction
    GLDRAW_MULTISAMPLE = 0x4000000,
    GLDRAW_PBUFFER = 0x8000000,
    // For hosts that want in a picture what is left out off screen: set before it is drawn.
    GLDRAW_MEMORY_BOXES = 0x10000000,
    GLDRAW_MEMORY_LABELS = 0x20000000,
};

/// Context of a view. Lists belong to one context.
struct _GLContext {
    void* reserved = nullptr;
    HDC dc = nullptr;
    HGLRC context = nullptr;
};

/// Added to the mode of C3DView::BeginNode: the faces of transparent materials.
constexpr unsigned int DRAW_TRANSPARENT = 16;

/// What C3DView::SelectFacesFromRect does with faces that were marked before. Searches for nodes and points don't look at it.
enum GLSelectMode : unsigned int {
    GLSELECT_DEFAULT = 0,    ///< what is found is marked, and nothing else
    GLSELECT_TOGGLE = 1,     ///< the rest stays; when all that is found is marked already, it loses its mark
};

/// Draws a scene with OpenGL, in a window or off screen.
///
/// Off screen no window, display, GPU or toolkit is needed: CreateMemoryRendering, SetScene, SetViewSettings or UpdateView, then
/// CreateBitmapFromScene any number of times, DeleteMemoryRendering.
///
/// A view is used by the thread that made it. Several threads may each have views of their own, of scenes of their own: neither scenes nor cameras
/// can be used by two, so that another thread than the window's draws a copy of the scene (C3DScene::Copy) with a camera of its own
/// (GlViewSettings::SetCurrentCamera). Several views of one scene, on one thread, are independent: each draws what has changed since it looked last.
///
/// Nothing is drawn of a scene before UpdateView; geometry goes to GL once, as one call list for each object, and is sent again when it changes.
class ZEL_API C3DView : public CCommandView {
public:
    using DisplayCallback = int (*)(C3DSceneNode* node, glCallbackDisplayState state, unsigned int mode, void* data);
    using FlushCallback = void (*)(C3DSceneNode* node, void* data);
    using BeginNodeCallback = int (*)(_RenderElement* element, _CallListType& type, void* data);
    using FaceCallback = _FACE_RESULT (*)(_RenderElement* element);
    using PointMaterialCallback = int (*)(_RenderElement* element);

    C3DView();
    ~C3DView() override;
    const CXRuntimeClass* GetRuntimeClassDescriptor() const override;
    static const CXRuntimeClass* GetThisRuntimeClassDescriptor();
    static CXObject* CreateObject();

    // Scene and settings (ViewUpdate.cpp)

    /// Takes a reference; null for none. Nothing is drawn before UpdateView. `flags`: GLSET_FIT...
    void SetScene(C3DScene* scene, unsigned int flags);
    C3DScene* GetScene() const { return m_scene; }
    /// Takes the fields that the record's change mask names.
    virtual void SetViewSettings(const GlViewSettings* settings);
    const GlViewSettings* GetViewSettings() const { return &m_settings; }
    unsigned int GetViewFlag() const { return m_settings.viewFlags; }
    /// Brings what is drawn up to date with scene and settings. `flags`: the high bits of _GLSET_FLAGS.
    void UpdateView(int flags);
    /// Between the two UpdateView only notes what is asked for. Counted; the last UnlockWindow runs it once.
    void LockWindow();
    void UnlockWindow();
    void SetBackgroundColor(unsigned char red, unsigned char green, unsigned char blue);
    /// Null for none.
    void SetHost(IViewHost* host) { m_host = host; }
    IViewHost* GetHost() const { return m_host; }

    // Point of view (Framing.cpp)

    /// Numbers that have a direction of their own; 0 for the default. `angle`: of the slanted ones, radians; 0 takes the preferences'.
    void SetView(_RVIEW_FLAG number, int redraw, float angle);
    /// Looks through a camera; false for null and for nodes that hold none.
    bool LoadCamera(C3DSceneNode* node);
    int GetCurrentCameraId() const { return m_cameraID; }    ///< node id, -1 for none
    void SetCurrentCameraId(int id) { m_cameraID = id; }
    /// Centre of the scene's box, cameras and lights left out; the origin without a scene.
    C3DTPoint<float> GetSceneCenter() const;
    /// The same box. `boxFlags` are added, kinds of `excluded` left out. Zeros when there is nothing.
    void GetBBox(bool selectedOnly, C3DTPoint<float>& min, C3DTPoint<float>& max, C3DTPoint<float>& center, unsigned int boxFlags,
                 unsigned int excluded) const;

    // Pictures off screen (MemoryRendering.cpp)

    /// 1, or 0 when there is no driver. `depth`: 24, or 32 for a picture with alpha.
    int CreateMemoryRendering(int width, int height, int depth);
    /// Releases the scene too; 1.
    int DeleteMemoryRendering();
    /// A new picture of the size asked for, the caller's; null without memory rendering. The alpha of depth 32 is 255 where nothing was drawn and
    /// 0 where something opaque was.
    Bitmap* CreateBitmapFromScene();

    // Contexts (ViewContexts.cpp)

    HGLRC GetGLContext() const { return m_contexts.empty() ? nullptr : m_contexts.back().context; }
    CDC* GetClientDC() const { return m_contexts.empty() ? nullptr : m_contexts.back().dc; }
    bool IsDrawingFlagSet(unsigned int flags) const { return (m_drawingFlags & flags) == flags; }
    bool IsOneDrawingFlagSet(unsigned int mask) const { return (m_drawingFlags & mask) != 0; }
    void SetDrawingFlag(unsigned int flags, bool on) { m_drawingFlags = on ? m_drawingFlags | flags : m_drawingFlags & ~flags; }

    // Drawing (RenderScene.cpp, RenderNode.cpp, Overlays.cpp)

    /// Draws the given nodes, all for null, in the order of the scene.
    void RenderScene(CHashTable<C3DSceneNode*>* nodes);
    /// A line for the normal of each corner; the node's lines keep their apparent length.
    void DrawNormals(C3DSceneNode* node);
    /// Numbers of points and faces; in the deferred paint of a window alone, and off screen with GLDRAW_MEMORY_LABELS.
    void RenderGDI(C3DSceneNode* node);
    /// Culls the back faces, or with `front` false the front ones, or with `on` 0 none; `flags` gets or loses VIEWFLAG_CULLING_ON.
    void SetCullMode(int on, unsigned int& flags, bool front);
    /// Pushes surfaces back, in tenths of GL's unit, so that lines lie over them; the former value.
    int SetObjectOffset(int offset);
    /// 2D mode of overlays, nested: the first `on` counts, and the last off.
    void SwitchTo2DMode(bool on, unsigned int mode, unsigned int extra);
    /// Box of the node along the scene's axes; off screen with GLDRAW_MEMORY_BOXES alone.
    void DrawBox(C3DSceneNode* node);

    // Flushing: geometry into call lists (Flush.cpp, DrawFaces.cpp, BeginFace.cpp)

    /// Compiles the object of the node unless it has lists, brings it up to date before, and takes its OBJECT_UPDATE_DISPLAY away.
    void FlushNode(C3DSceneNode* node);
    /// Drops the lists of the node's object; 1, or 0 without object.
    int RemoveNode(C3DSceneNode* node);
    /// Each compiles its list of the geometry, which is the node's final object, in place of a former one: for flush callbacks too.
    void ViewFlatNode(C3DSceneNode* node, C3DGeomObject* geometry);
    void ViewSmoothNode(C3DSceneNode* node, C3DGeomObject* geometry);
    void ViewWireframeNode(C3DSceneNode* node, C3DGeomObject* geometry);

    // Call lists (CallLists.cpp)

    /// Nested calls count; the outermost begins the list, in place of a former one.
    void BeginCallList(C3DBaseObject* object, _CallListType type);
    void EndCallList();
    /// Nothing when there is no such list.
    void DrawCallList(C3DSceneNode* node, _CallListType type);
    /// Whether anything of the object is compiled.
    bool HasCallList(C3DBaseObject* object) const;
    /// Id of the object, 0xFFFFFFFF for null.
    static unsigned int GetCallListID(const C3DBaseObject* object);
    /// Lists of the current context whose type is in the mask, of one object or of all; 0 without a context.
    int DeleteGLLists(_CallListType mask, C3DBaseObject* object);

    // Materials (ViewMaterials.cpp, ViewTextures.cpp, ViewLighting.cpp)

    // The material that is set is remembered, and one that is set again costs nothing. Call lists know nothing of each other: ReinitCurrentMaterial
    // at the start of each.

    /// Sets the material's colours, unless it is the current one and not forced.
    void InitMaterial(C3DMaterial* material, int force);
    /// That of the element.
    void InitMaterial();
    /// Forgets what is set.
    void ReinitCurrentMaterial();
    unsigned int GetCurrentMaterial() const { return static_cast<unsigned int>(m_currentMaterial); }
    /// For what is drawn without light. Nothing for the current material, and for an id without material.
    void InitDiffuseColor(C3DMaterial& material);
    void InitDiffuseColor(unsigned int materialID);
    /// Of the corner that the element names, inside glBegin.
    void InitPointMaterial();
    /// Material and texture of the element's face, or no texture. Ends the open GL_TRIANGLES and begins new ones; nothing when all that is set.
    void InitTexture();
    /// Textures on or off in GL, whatever the view flags.
    void EnableTexture(int on);
    /// Whether there is a texture of the element's material.
    int TextureExist();
    /// Deals with the news of a material and clears its flags (MATERIAL_CHANGES). Views that were not told find out at their next UpdateView with
    /// GLSET_UPDATE.
    void MaterialChanged(unsigned int materialID);
    C3DMaterial& GetSelectionMaterial() { return m_selectionMaterial; }
    C3DMaterial& GetUserMaterial() { return m_userMaterial; }
    /// Above 0 brighter by 1.3, below 0 darker, 0 back to normal.
    void Brightness(int step);
    /// A derived view that answers false loads no texture.
    virtual int IsTextureEnabled() const;

    // Picking (Picking.cpp, FacePicking.cpp)

    /// Nodes with something in the rectangle (pixels of the window, y down), as often as they are hit; with a width or height of 0 the nearest
    /// one at the point alone. Their number.
    unsigned int SelectNodesFromRect(CXArray<C3DSceneNode*>& nodes, unsigned int x, unsigned int y, unsigned int width, unsigned int height,
                                     GLSelectMode mode, unsigned int reserved);
    /// Marks faces of polygon objects: those of which a pixel shows in the rectangle, in pure wireframe, which hides none, all that reach into it;
    /// with a width or height of 0 the one that shows at the point. `nodes`: those with such faces, once each. UpdateView shows the marks.
    ///
    /// @param mark  bits of the faces' flags, as VIEW_FACE_MARKED
    /// @return      number of faces found. Nodes that share an object share its faces
    unsigned int SelectFacesFromRect(CXArray<C3DSceneNode*>& nodes, unsigned int x, unsigned int y, unsigned int width, unsigned int height,
                                     GLSelectMode mode, unsigned int mark);
    /// Finds nothing.
    unsigned int SelectPointsFromRect(CXArray<C3DSceneNode*>& nodes, unsigned int x, unsigned int y, unsigned int width,
                                      unsigned int height, GLSelectMode mode, unsigned int reserved);

    // Callbacks of hosts: null for none. All share the data.

    void SetCallbackData(void* data) { m_callbackData = data; }
    void SetDisplayCallback(DisplayCallback callback) { m_displayCallback = callback; }
    void SetFlushCallback(FlushCallback callback) { m_flushCallback = callback; }
    void SetBeginNodeCallback(BeginNodeCallback callback) { m_beginNodeCallback = callback; }
    void SetFaceCallback(FaceCallback callback) { m_faceCallback = callback; }
    void SetPointMaterialCallback(PointMaterialCallback callback) { m_pointMaterialCallback = callback; }

    // Events of the window (ViewEvents.cpp)

    /// Once the window is there; -1 when no context can be had.
    int OnCreate() override;
    void OnPaint() override;
    bool OnEraseBkgnd(CDC* dc) override;
    void OnSize(int width, int height) override;
    void OnTimer(unsigned int id) override;
    void OnDestroy() override;
    /// The current command, then the host.
    void OnDraw(CDC* dc) override;

protected:
    friend class CCornerSender;
    friend class CGLActivate;
    friend class CGLDrawText;
    friend class CGLRenderingMode;

    // ViewContexts.cpp
    void Activate();
    void Deactivate();
    /// Whether the view's own context is current. Where it cannot be, none is, and GL does nothing.
    bool IsActive() const { return m_isCurrent; }
    void MakeTopCurrent();
    void RestoreFormer();
    void StackChanged();
    /// Pushes a new context that draws on it; false, also for null, when there can be none.
    bool CreateDefaultGLContext(std::unique_ptr<CDC> dc);
    /// For the window of the peer, with the most samples that can be had, and none where no GPU draws; 1, or 0 without a context.
    int CreateMultiSampleGLContext();
    bool IsDrawnByProcessor();
    /// For a window without native handle: off screen.
    bool CreatePixelContext();
    std::unique_ptr<CDC> CreatePixelDC(CSize size);
    void GrowPixelSurface(CSize client);
    /// The platform's drivers answer.
    bool InitGLExtension() const;
    /// Of the top of the stack, with all lists and textures that belong to it.
    void DeleteGLContext();
    /// State that no list or render changes, once a context.
    void InitGLContext() const;
    /// State that follows the view flags, when they are others than those last applied.
    void InitViewFlag();

    // MemoryRendering.cpp
    bool TryPBuffer(int width, int height, int depth);
    int InitPBuffer(unsigned int width, unsigned int height, unsigned int depth);
    Bitmap* CreateBitmapFromPBuffer();
    Bitmap* CreateBitmapFromMemory();
    void RenderDepthOfAlpha();
    void PresentPicture();

    // ViewProfile.cpp
    void LoadDefaultSettings();
    void SaveDefaultSettings();

    // ViewUpdate.cpp
    void HoldUpdates(unsigned int flags);
    /// Whether an object that shows has work to do.
    bool NeedsUpdate();
    /// What is compiled of an object is no longer what it is, or there is nothing of it.
    bool HasChanged(C3DSceneNode* node);
    /// Compiles what has news, of materials too. Costs nothing as long as no scene of the process changes.
    void FlushChangedNodes();
    void ForgetGoneObjects();

    // ViewEvents.cpp
    void OnUnusedWheel(unsigned int state, short delta, const CPoint& point) override;
    /// Nearer by a positive number; what is at `point` stays there.
    void ZoomByNotches(double notches, const CPoint& point);

    // Framing.cpp

    static constexpr double VIEW_ANGLE = 45 * std::numbers::pi / 180;    ///< of perspective, from top to bottom
    void AdjustView(unsigned int flags);
    void InitClippingPlane();
    /// Box flags and point filter of all framing, by what is shown of hidden nodes.
    void GetFramingBox(unsigned int& boxFlags, unsigned int& pointFilter) const;
    /// Where the line of sight through a point of the window goes, in the eye's directions: for each unit of depth in perspective, at every depth
    /// otherwise.
    void GetEyeSlope(const CPoint& point, double& x, double& y) const;
    /// Nothing without a context.
    void SizeChanged(int width, int height);

    // Flush.cpp
    void BeginScene();
    void EndScene();
    void FlushScene();
    void FlushObject(C3DSceneNode* node);
    void Flush3DGeomObject(C3DSceneNode* node, C3DGeomObject* geometry);
    void Flush3DObject(C3DSceneNode* node, C3DGeomObject* geometry);
    void Flush3DCurve(C3DSceneNode* node, C3DCurve* curve);
    void Flush3DPatch(C3DSceneNode* node, C3DPatch* patch);
    bool BeginNode(C3DSceneNode* node, C3DGeomObject* geometry, unsigned int mode);
    void EndNode();
    void InitCurrentRenderElement();
    /// Makes the face the current one and sets its material; false when it is not drawn.
    bool BeginFace(int face, bool front);
    void DrawSolid(C3DSceneNode* node, C3DGeomObject* geometry, unsigned int mode);
    /// Between the two stand corners, of GL_TRIANGLES or GL_LINES; outside, changes of state (CallLists.cpp).
    void BeginPrimitive(unsigned int primitive);
    void EndPrimitive();

    // ViewMaterials.cpp, ViewTextures.cpp, ViewLighting.cpp
    void InitLighting();
    void InitMapping();
    unsigned int InitMaterialMapping(unsigned int materialID, bool replace);
    int LoadTexture(C3DMaterial* material, MapType type, unsigned int textureName);
    void DestroyMapping(bool keepTextureState);
    /// Whether the material of the element's face is set, with its texture or without. Colours of corners are no change of material.
    bool IsMaterialCurrent();
    /// Enters a material in the transparent ones, or takes it out, by its colours now and its texture.
    void NoteTransparency(const C3DMaterial& material);

    /// Of the clock by which paints and updates are put off; tests have their own.
    virtual unsigned int GetMilliseconds() const;

    unsigned int GetTick() const;
    /// Ambient and diffuse.
    static void SetColor(C3DMaterial& material, const CRGBColor& color);
    /// Size of what is drawn on, pixels.
    CSize GetViewSize() const { return m_viewSize; }
    bool IsSolid() const { return (m_settings.viewFlags & VIEWFLAG_SOLID) != 0; }

    GlViewSettings m_settings;
    _RenderElement m_element;

private:
    /// What holds for all faces of one material of the object that is flushed, so that a face costs no look-up.
    struct FaceMaterial {
        bool known = false;
        unsigned int id = 0;
        C3DMaterial* material = nullptr;
        bool hasTexture = false;
    };
    struct DrawnNode;

    /// Which faces a list culls: what its object says, or what a face says of itself.
    enum FaceCulling { CULL_AS_OBJECT, CULL_ONE_SIDED, CULL_TWO_SIDED };

    /// Names a material among those of the scene and the view's own, whose ids may be the same: an id, and OWN_MATERIAL beside it.
    using MaterialKey = std::uint64_t;
    static constexpr MaterialKey OWN_MATERIAL = MaterialKey{1} << 32;
    MaterialKey GetKey(const C3DMaterial& material) const;
    bool IsOwn(const C3DMaterial& material) const { return GetKey(material) >= OWN_MATERIAL; }

    void InitFaceMaterial(unsigned int id);
    bool ApplyFaceFlags(unsigned int flags, unsigned int& result);
    void InitCulling(const C3DGeomObject& geometry);
    void NoteObjectCulling(const C3DGeomObject& geometry);
    void SwitchFaceCulling(FaceCulling wanted);
    void ReadUVWFace(int face);
    void ReadVCFace(int face);
    void SetFaceMaterial(unsigned int result);
    C3DMaterial* GetWireMaterial();
    void SwitchStipple(bool on);
    bool MayUseMesh() const;
    enum Round { ROUND_ALL, ROUND_OPAQUE, ROUND_TRANSPARENT };
    void DrawSide(C3DGeomObject& geometry, const unsigned int* order, bool front, Round round, bool& hasTransparent);
    void InitTransparentMaterials();
    void InitNormals(C3DGeomObject& geometry);
    void DeleteGeometryLists(unsigned int id);
    bool HasTexture(unsigned int materialID) const;

    void InitProjection();
    void InitModelview();
    std::vector<DrawnNode> CollectNodes(const CHashTable<C3DSceneNode*>* nodes) const;
    /// Fills what is drawn on, and shows what was drawn there.
    void ClearBackground();
    void Present();
    void RenderPass(int pass, const std::vector<DrawnNode>& nodes);
    bool IsNodeDrawn(int pass, const DrawnNode& drawn, unsigned int mode);
    void RenderNode(int pass, const DrawnNode& drawn, unsigned int mode);
    void RenderSurface(int pass, const DrawnNode& drawn);
    void RenderWires(const DrawnNode& drawn);
    void LoadNodeMatrix(const DrawnNode& drawn);
    void DrawTint(const DrawnNode& drawn, _CallListType type);

    bool AreCornersOf(MaterialKey material) const { return m_currentMaterial == GetKey(m_userMaterial) && m_corners.material == material; }
    void InitCornerMaterial(const C3DMaterial& material);
    /// Colour of the vertex at a corner of the element's face; transparent, which changes nothing, for a corner without one.
    CRGBColor GetCornerColor(int corner) const;
    /// Diffuse colour of a corner of that vertex colour.
    CRGBColor GetMixedColor(const CRGBColor& color) const;
    void MixVertexColor(const C3DMaterial& material);
    void SwitchMeshColors(bool on);
    /// What comes next in the open mesh has the material; `type`: one of CALLLIST_MATERIALS.
    void UseMaterialList(C3DMaterial& material, _CallListType type);
    unsigned int CompileMaterial(C3DMaterial& material, _CallListType type, unsigned int name);
    /// The list that GL compiles now, and its end.
    void OpenList(unsigned int name);
    void CloseList();
    /// Drops the list that is being compiled, whatever of it is there.
    void AbandonCallList();
    /// Under the names that meshes know.
    void RecompileMaterial(C3DMaterial& material);
    /// Colours and texture; 0 for none.
    void ApplyMaterial(C3DMaterial& material, unsigned int textureName);
    void SetCornerColor(const CRGBColor& color);
    /// 0 for none.
    unsigned int GetTextureName(unsigned int materialID) const;
    /// Of the material whose texture the element's face has; NO_MATERIAL for none.
    unsigned int GetWantedTexture();
    /// Nodes with polygons whose faces can be picked or lie before others.
    std::vector<DrawnNode> CollectSurfaces() const;
    bool IsFaceShown(unsigned int flags) const;
    bool IsFaceCulled(const C3DGeomObject& geometry, unsigned int flags) const;
    void DrawFaceNumbers(const std::vector<DrawnNode>& surfaces, unsigned int first, bool front);
    void DrawFaceNumbers(const std::vector<DrawnNode>& surfaces, unsigned int first);
    std::vector<std::vector<unsigned int>> FindSeenFaces(const std::vector<DrawnNode>& surfaces, const CRect& area);
    std::vector<std::vector<unsigned int>> FindTouchedFaces(const std::vector<DrawnNode>& surfaces, const double* projection) const;
    void FlushNodes(const std::function<void(C3DSceneNode*)>& flush);
    using MaterialIDs = CHashTable<unsigned int>;
    void FlushNodesOf(const MaterialIDs& materials);
    bool IsCompiled(C3DBaseObject* object) const;
    static std::uint64_t GetRevision(const C3DBaseObject* base, const C3DBaseObject* final);
    bool HasNews(const C3DMaterial& material) const;
    /// Deals with them as far as no object is compiled anew for them; true when those of the material are to be.
    bool TakeNews(C3DMaterial& material);
    /// Those without record get one, and their textures when they are in use.
    void NoteNewMaterials();
    void FlushChangedMaterials();
    /// One of the view's own.
    void ChangeOwnColor(C3DMaterial& material, const CRGBColor& color);
    /// Those of the letters, made when missing (DrawText.cpp): the first of COutlineFont::CHARACTERS, 0 without a font.
    unsigned int GetFontLists();

    C3DScene* m_scene = nullptr;
    IViewHost* m_host = nullptr;

    // Contexts
    IGLPlatform& m_platform = GetGLPlatform();
    std::vector<_GLContext> m_contexts;
    std::vector<std::unique_ptr<CDC>> m_dcs;    ///< of m_contexts, one each
    int m_activations = 0;
    CDC* m_activeDC = nullptr;    ///< what is drawn on between activation and deactivation; null when there is nothing
    bool m_isCurrent = false;     ///< its context is, in between
    GLCurrentState m_former{};    ///< what was current before
    unsigned int m_drawingFlags = 0;
    CSize m_viewSize;
    CSize m_requestedSize;    ///< of memory rendering
    int m_requestedDepth = 0;
    unsigned int m_appliedFlags = 0xFFFFFFFF;
    enum {
        PIXELS_NONE,
        PIXELS_PBUFFER,
        PIXELS_MEMORY
    } m_pixelWindow = PIXELS_NONE;    ///< what the window's picture is drawn on off screen

    // Lists
    CHashTable<CHashID> m_callLists;
    CHashTable<int> m_listedObjects, m_transparentMaterials, m_alphaMaterials, m_transparentObjects;
    int m_listDepth = 0;
    CHashID m_list;    ///< that is being compiled, its mesh and GL's list that is open
    unsigned int m_openList = 0, m_primitive = 0;
    bool m_isListOpen = false, m_isPrimitiveOpen = false;    ///< in GL: between glNewList and glEndList, glBegin and glEnd
    bool m_flushPending = false;
    FaceMaterial m_faceMaterial;
    unsigned int m_boundTexture = 0xFFFFFFFF;      ///< id of the material whose texture the list has bound
    bool m_ownCulling = false;                     ///< of the object, in the open list: the view's is kept on GL's stack
    FaceCulling m_faceCulling = CULL_AS_OBJECT;    ///< in the open list; when it is another, the object's is kept there too
    bool m_stippled = false;                       ///< in the open list
    bool m_meshColors = false;                     ///< in the open list: diffuse colours are those of the mesh's vertices

    // What the view has taken in. Other views clear the flags of news, but not the revisions.
    struct Compiled {
        std::uint64_t revision;    ///< of the node's object and of the one that stands for it, the later one
        unsigned int final;        ///< id of the one that was compiled, NO_OBJECT when its lists are gone
        unsigned int walk;         ///< number of the walk that met it last
    };
    static constexpr unsigned int NO_OBJECT = 0xFFFFFFFF;
    CHashMap<unsigned int, Compiled> m_compiled;                 ///< by id of the node's object
    CHashMap<unsigned int, C3DMaterialRevisions> m_knownNews;    ///< by id of the material
    unsigned int m_walk = 0;
    std::uint64_t m_flushedChanges = 0;    ///< while GetSceneChanges gives it, all is compiled
    std::uint64_t m_restChanges = 0;       ///< and no object has work to do

    // Materials
    C3DMaterial m_selectionMaterial, m_cameraMaterial, m_lightMaterial, m_wireframeMaterial, m_userMaterial;
    MaterialKey m_currentMaterial = 0xFFFFFFFF;
    bool m_texturesLoaded = false, m_lightingInUse = false;
    /// While corners set their colours: the material that they change, and what the last of them had.
    struct {
        MaterialKey material = 0xFFFFFFFF;
        CRGBColor diffuse;    ///< of the material
        CRGBColor color;
        float factor = 0;
    } m_corners;

    // Updates
    int m_lockCount = 0;
    unsigned int m_pendingUpdate = 0;
    static constexpr unsigned int NO_TIME = 0xFFFFFFFF;
    unsigned int m_lastPaint = NO_TIME, m_lastUpdate = NO_TIME;    ///< milliseconds
    int m_cameraID = -1;

    // Rendering
    double m_sceneMatrix[16] = {};    ///< M: scene to eye, in GL's order
    float m_iconScale = 1;            ///< of cameras and lights
    int m_objectOffset = 0;
    glPickInfo* m_pick = nullptr;
    int m_2DModes = 0;
    std::unique_ptr<CGLRenderingMode> m_2DMode;

    // Callbacks
    void* m_callbackData = nullptr;
    DisplayCallback m_displayCallback = nullptr;
    FlushCallback m_flushCallback = nullptr;
    BeginNodeCallback m_beginNodeCallback = nullptr;
    FaceCallback m_faceCallback = nullptr;
    PointMaterialCallback m_pointMaterialCallback = nullptr;
};

/// Makes a view's context current as long as it lives; accepts null.
class ZEL_API CGLActivate {
public:
    explicit CGLActivate(C3DView* view) : m_view(view)
    {
        if (m_view)
            m_view->Activate();
    }
    ~CGLActivate()
    {
        if (m_view)
            m_view->Deactivate();
    }
    CGLActivate(const CGLActivate&) = delete;
    CGLActivate& operator=(const CGLActivate&) = delete;

private:
    C3DView* m_view;
};
