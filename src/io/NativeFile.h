#pragma once

#include "io/3DParser.h"

/// The native scene file, class "3DIF": a header, and behind it the scene as C3DScene::Serialize streams it.
///
/// The header keeps readers away from what they cannot know: magic, the version that wrote the file, and the lowest version that
/// can read it. All little-endian.
class ZEL_API C3DIFIo : public C3DParser {
public:
    static constexpr unsigned int VERSION = 1;          ///< what this build writes
    static constexpr unsigned int LOWEST_READER = 1;    ///< and the oldest one that understands it
    static constexpr unsigned char MAGIC[8] = {0x89, '3', 'D', 'I', 'F', '\r', '\n', 0x1A};

    using C3DParser::C3DParser;
    ~C3DIFIo() override;

    /// A new scene. Null, with the reason in the log, for a file that cannot be opened, is no native scene, or was written for
    /// newer readers. A damaged or short one throws CXArchiveException, with a line in the log; the scene that was begun is
    /// GetScene, and goes with C3DIo. Memory: a small multiple of the file's size, whatever its bytes say.
    C3DScene* Read(const CXTString<wchar_t>& name, CSceneImportOptions& options) override;
    /// Takes the scene's file name away and writes it beside the target, which is replaced at the end. Compacts the pools of the face
    /// lists and drops what can be computed again; otherwise the scene stays as it is. When the file does not take the bytes: false,
    /// or CXArchiveException; the old file and the scene's file name are then as before.
    bool Save(const CXTString<wchar_t>& name, C3DScene* scene, CSceneExportOptions& options) override;
};
