#pragma once

#include <memory>

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"

struct aiScene;

/// A prepared scene as the library wants it, with all that the format takes: the node tree with names, order, matrices and keys; meshes, which
/// nodes of one object share; materials with maps; cameras and lights.
///
/// @param target  complete name of the file: image files are named relative to its folder
/// @param losses  counts what the format does not take
std::unique_ptr<aiScene> ExportScene(C3DScene& scene, const ExportFormat& format, const CXTString<wchar_t>& target, LossLog& losses);
