#pragma once

#include <memory>
#include <vector>

#include <assimp/anim.h>

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"

/// The keys of the nodes as animations of the library, at the scene's frame rate (30 a second when it has none), one for each clip that the
/// scene names, else one. A clip holds all keys before the next one begins; each but the first counts from its beginning, and so does the
/// first when it begins before 0.
///
/// A node whose keys are not all (NodePlace::IsPlain), and any node under KEYS_TOGETHER, gets a key of each kind at every key time.
std::vector<std::unique_ptr<aiAnimation>> ExportAnimations(const C3DScene& scene, const ExportFormat& format, LossLog& losses);
