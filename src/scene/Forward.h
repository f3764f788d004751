#pragma once

// Names of the scene room, for headers that only point at them.

class C3DAnimatable;
class C3DBaseObject;
class C3DCamera;
class C3DCurve;
class C3DDummy;
class C3DFilter;
class C3DFilterByMaterial;
class C3DGeomObject;
class C3DGroup;
class C3DInstanceID;
class C3DKeyframable;
class C3DLight;
class C3DMaterial;
class C3DNodePos;
class C3DObject;
class C3DObjectCreator;
class C3DPatch;
class C3DPreferences;
class C3DScene;
class C3DSceneNode;
class CMaterialMap;
class CMaterials;
class CParserSceneInfo;
