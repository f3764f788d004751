#pragma once

#include "channels/NormalFaceList.h"
#include "channels/UVWFaceList.h"
#include "channels/VCFaceList.h"
#include "geometry/3DFace.h"
#include "scene/Forward.h"
#include "tools/Color.h"

class C3DFaceList;
class C3DPointList;
class C3DVectorList;
class C3DView;
class CDependentChannels;
class CFaceNormalChannel;
class CPointNormalChannel;
class CSpecNormalChannel;
class CUVWChannel;
class CUVWPointList;
class CVCChannel;
class CVCPointList;

/// What a face callback says of a face. Bits.
enum _FACE_RESULT : unsigned int {
    FACE_RESULT_NORMAL = 1,           ///< hidden, marked and sided faces are handled as the view says
    FACE_RESULT_KEEP_MATERIAL = 2,    ///< the material that is set stays
    FACE_RESULT_SKIP = 4,
    FACE_RESULT_SELECTION = 8,           ///< drawn in the selection material
    FACE_RESULT_POINT_MATERIALS = 16,    ///< each corner sets its own material
    FACE_RESULT_STIPPLED = 64,
};

/// Bits of a face's flags that a view looks at, and of a curve's point: set by hosts.
enum _VIEW_FACE_FLAGS : unsigned int {
    VIEW_FACE_HIDDEN = 0x4,
    VIEW_FACE_ONE_SIDED = 0x10,
    VIEW_FACE_TWO_SIDED = 0x20,
    VIEW_FACE_MARKED = 0x40,    ///< selected
    VIEW_FACE_ALL = 0x74,
    VIEW_POINT_SELECTED = 0x1,    ///< of a curve
    VIEW_POINT_HIDDEN = 0x2,      ///< has no label
};

/// What is being drawn: the view's own record, which its callbacks may read all of.
class ZEL_API _RenderElement {
public:
    virtual ~_RenderElement();

    C3DScene* scene = nullptr;
    C3DSceneNode* node = nullptr;
    C3DBaseObject* baseObject = nullptr;
    C3DBaseObject* finalObject = nullptr;    ///< whose lists are compiled
    C3DFaceList* faceList = nullptr;
    C3DPointList* pointList = nullptr;
    CSpecNormalChannel* specNormals = nullptr;      ///< with VIEWFLAG_SPEC_NORMALS alone
    CPointNormalChannel* pointNormals = nullptr;    ///< these and their lists: not for wires
    CFaceNormalChannel* faceNormals = nullptr;
    C3DVectorList* faceNormalList = nullptr;
    C3DVectorList* pointNormalList = nullptr;
    CNormalFaceList* normalFaceList = nullptr;
    CDependentChannels* channels = nullptr;
    unsigned int viewFlags = 0;    ///< working copy
    unsigned int nodeMode = 0;     ///< 1 wires, 2 flat, 4 smooth
    unsigned int faceState = FACE_RESULT_NORMAL;
    C3DView* view = nullptr;
    CRGBColor pointColor;    ///< for point material callbacks that answer 3
    void* callbackData = nullptr;
    int inFlushCallback = 0;
    int cornerNumber = 0, pointNumber = 0, faceNumber = 0;
    C3DMaterial* material = nullptr;
    bool front = true;    ///< front faces are being drawn
    bool hasBackMaterials = false;
    C3DFace face;
    C3DTPoint<float>* point = nullptr;

    CUVWChannel* uvwChannel = nullptr;
    CUVWFace uvwFace;
    CUVWFaceList* uvwFaceList = nullptr;
    CUVWPointList* uvwPointList = nullptr;
    bool uvwInUse = false;    ///< for this face

    CVCChannel* vcChannel = nullptr;
    CVCFace vcFace;
    CVCFaceList* vcFaceList = nullptr;
    CVCPointList* vcPointList = nullptr;
    float vcFactor = 0;    ///< how much of the colour is the vertex colour's, before its own alpha
    bool vcInUse = false;
};
