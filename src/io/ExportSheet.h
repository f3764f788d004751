#pragma once

class C3DParser;
class CSceneExportOptions;

/// The sheet of export options; true on OK.
bool ShowExportSheet(C3DParser& parser, CSceneExportOptions& options);
