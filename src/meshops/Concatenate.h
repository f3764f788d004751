#pragma once

#include "scene/Forward.h"
#include "tools/Api.h"
#include "tools/Array.h"
#include "tools/String.h"

class C3DFilterByMaterial;

/// What C3DGeomObject::Concatenate does, for sources that may go on standing in the scene. The user can stop it when the destination is
/// empty.
///
/// @param sourcesStay   the materials that they share with the destination keep naming their channels
/// @param droppedFaces  grows by the number of faces that came in and that the final clean took out again; may be null
bool Concatenate(C3DGeomObject& destination, C3DScene* scene, const CXArray<C3DGeomObject*, C3DGeomObject*>& sources,
                 const C3DFilter* filter, bool sourcesStay, int* droppedFaces);

/// C3DScene::Concatenate of the whole scene, in place of what it held, and the like for C3DScene::ConcatenateByMaterials.
///
/// @param droppedFaces  out: faces without an area to span (fewer than 3 different corners) that the result lacks
ZEL_API bool ConcatenateScene(C3DScene& scene, const CXTString<wchar_t>& name, int& droppedFaces);
ZEL_API int ConcatenateSceneByMaterials(C3DScene& scene, int& droppedFaces);
