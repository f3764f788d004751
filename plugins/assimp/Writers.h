#pragma once

#include <3dzel.h>

#include "ExportFormats.h"
#include "LossLog.h"
#include "OutputFiles.h"

/// What a writer gets.
struct WriterTask {
    C3DScene& scene;
    const ExportFormat& format;
    const CXTString<wchar_t>& target;
    const CSceneExportOptions& options;
    OutputFiles& files;
    LossLog& losses;
};

/// Any format, by the library's exporter of that name. What went wrong; empty for nothing.
CXTString<wchar_t> WriteThroughLibrary(const WriterTask& task);

// Writers of our own: in large blocks and without the library's copies. Each counts what the format does not take. Failures are noted by the
// files. Formats without a tree get objects in scene space.

/// glTF 2, text with a file of data beside it, or binary. Coordinates of textures and colours as they are; normals have the length 1.
void WriteGltf(const WriterTask& task);
/// Wavefront OBJ with its material file: corners share points, coordinates and normals each by an index of its own.
void WriteObj(const WriterTask& task);
/// Stanford PLY, text or binary: points are split where corners differ, by specified normals alone: worked out ones would tear the mesh.
void WritePly(const WriterTask& task);
/// STL, text or binary, with the normals of the triangles.
void WriteStl(const WriterTask& task);
