#pragma once

// What stands between a parser's scene and everybody else's: the import checkout after reading, the export preparation before
// writing. C3DIo calls these and nothing else.

#include "io/SceneOptions.h"

class C3DParser;
class C3DScene;

/// Brings what a parser delivered into the state that the rest of the system counts on. With IMPORT_NO_CHECKOUT nothing happens.
/// The scene's up axis becomes z.
void CheckoutImport(C3DScene& scene, CSceneImportOptions& options);

/// The scene to write; null when there is none. A working copy stands in CSceneExportOptions::exportScene; today the scene itself is
/// handed on unchanged.
C3DScene* InitExport(C3DScene& scene, CSceneExportOptions& options);
/// Releases the working copy, if there is one.
void ReleaseExport(CSceneExportOptions& options);

/// The sheet of export options; true on OK.
bool ShowExportSheet(C3DParser& parser, CSceneExportOptions& options);
