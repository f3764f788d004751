#pragma once

#include "scene/Forward.h"
#include "tools/String.h"

/// What there is to know of a node, a line each: name, type, counts, size, place, materials; of the whole scene for null.
CXTString<wchar_t> GetNodeReport(C3DScene& scene, const C3DSceneNode* node);
/// Name, colours, factors and maps of a material, and how many nodes use it; empty for none of the id.
CXTString<wchar_t> GetMaterialReport(C3DScene& scene, unsigned int material);
