#pragma once

#include <vector>

#include "files/IoOptions.h"
#include "scene/UpAxis.h"
#include "tools/FourCC.h"
#include "tools/Hash.h"
#include "tools/String.h"

class C3DScene;

/// What is done to a scene after it was read. The order in which it is done is that of C3DScene::CheckoutImport.
enum _IMPORT_FLAGS : unsigned int {
    IMPORT_TRIANGULATE = 0x1,
    IMPORT_WELD = 0x2,    ///< joins equal points; never remembered
    IMPORT_MERGE_COPLANAR = 0x4,
    IMPORT_UNIFY_NORMALS = 0x8,
    IMPORT_CONCATENATE = 0x10,    ///< one object for the scene
    IMPORT_CONCATENATE_BY_MATERIALS = 0x20,
    IMPORT_GLOBAL_COORDINATES = 0x40,
    IMPORT_CLEAN_GROUPS = 0x80,
    IMPORT_GENERATE_UV = 0x100,
    IMPORT_DISCONNECT_FACES = 0x200,    ///< at seams of channels
    IMPORT_REMOVE_HIDDEN = 0x400,
    IMPORT_HOST_OPTION = 0x1000000,    ///< passed on to an exchange partner
    IMPORT_NO_CHECKOUT = 0x2000000,    ///< the scene stays as the parser made it
};

/// What is done to the copy of a scene before it is written.
enum _EXPORT_FLAGS : unsigned int {
    EXPORT_REMOVE_GROUPS = 0x1,
    EXPORT_REMOVE_CURVES = 0x2,
    EXPORT_REMOVE_PATCHES = 0x4,
    EXPORT_REMOVE_POLYMESHES = 0x8,
    EXPORT_IGNORE_UV = 0x10,
    EXPORT_IGNORE_VC = 0x20,
    EXPORT_IGNORE_NORMALS = 0x40,
    EXPORT_HIDDEN_OBJECTS = 0x100,    ///< keep hidden nodes
    EXPORT_CLEAN_GROUPS = 0x200,
    EXPORT_TRIANGULATE = 0x400,
    EXPORT_QUADRANGULATE = 0x800,    ///< triangulate only faces of more than 4 corners
    EXPORT_DISCONNECT_FACES = 0x1000,
    EXPORT_CONCATENATE = 0x2000,
    EXPORT_PATCHES_SUBDIVIDED = 0x4000,
    EXPORT_PATCHES_SOURCE = 0x8000,
    EXPORT_NORMALISE_NAMES = 0x10000,
    EXPORT_GENERATE_UV = 0x20000,
    EXPORT_GLOBALIZE_CHANNELS = 0x40000,
    EXPORT_GLOBAL_COORDINATES = 0x80000,
    EXPORT_MOVE_TEXTURES = 0x100000,
    EXPORT_RENAME_TEXTURES = 0x200000,
    EXPORT_KEEP_UNUSED_MATERIALS = 0x400000,
    EXPORT_KEEP_BACKFACE_MATERIALS = 0x800000,
    EXPORT_IN_PLACE = 0x40000000,           ///< no working copy
    EXPORT_UPDATE_ORIGINAL = 0x80000000,    ///< the parser updates the original file

    /// What a format imposes and a user does not choose: never remembered.
    EXPORT_NOT_SAVED = 0x85227F,
};

/// Options of reading a scene.
class ZEL_API CSceneImportOptions : public CIoOptions {
public:
    explicit CSceneImportOptions(unsigned int flags = 0);
    ~CSceneImportOptions() override;

    /// Takes the remembered settings over; IMPORT_WELD is left out.
    void InitFromSavedPrefs(const CCustomData& prefs);
    /// The settings to remember.
    const CCustomData& SaveToSavedPrefs();

    unsigned int flags;                  ///< _IMPORT_FLAGS
    int swapCoordinates = 0;             ///< for C3DScene::SwapCoordinates
    _UP_AXIS_MODE upAxis = UP_AXIS_Z;    ///< for C3DScene::OrientScene
    unsigned int forcedFlags = 0;        ///< what the parser imposes
    unsigned int defaultFlags = 0;       ///< used when nothing was remembered
};

/// Key in the settings of an export of a string: which of several forms of the format to write. "text" of those that are binary otherwise,
/// "1" for the first version of one, "no-materials" for one without its file of materials. A form that a format does not have is ignored.
constexpr unsigned int EXPORT_FORM = FourCC("FORM");
/// Key in the settings of an export of a bool: cameras, lights and animated nodes make a scene, too, where there is neither polymesh nor curve
/// nor patch. Without it such a scene is not saved.
constexpr unsigned int EXPORT_SHAPELESS = FourCC("NOSH");

/// Options of writing a scene.
class ZEL_API CSceneExportOptions : public CIoOptions {
public:
    explicit CSceneExportOptions(unsigned int flags = 0);
    ~CSceneExportOptions() override;
    /// On the heap, for hosts that keep one.
    static CSceneExportOptions* Create(unsigned int flags);
    void Delete();

    /// Takes the remembered settings over, without EXPORT_NOT_SAVED.
    void InitFromSavedPrefs(const CCustomData& prefs);
    /// The settings to remember.
    const CCustomData& SaveToSavedPrefs();

    CHashTable<CXTString<wchar_t>> textureNames;    ///< in use by the export at work: names made up, files written
    C3DScene* exportScene = nullptr;                ///< the working copy during an export; owned
    unsigned int flags;                             ///< _EXPORT_FLAGS
    int swapCoordinates = 0;
    _UP_AXIS_MODE upAxis = UP_AXIS_Z;
    unsigned int forcedFlags = 0;
    unsigned int defaultFlags = 0;
    unsigned int unit = 0;                  ///< target unit; 0: no scaling
    unsigned int maxPoints = 0xFFFFFFFF;    ///< of an object; 0xFFFFFFFF: no limit
    unsigned int maxFaces = 0xFFFFFFFF;
    /// Low 24 bits: longest name (0 no limit); top byte: 1 no blanks, 2 not empty, 4 letters, digits and '_' only.
    unsigned int objectNameRule = 0;
    unsigned int materialNameRule = 0;
    unsigned int textureNameLimit = 0;            ///< low 24 bits: longest texture file name
    CXTString<wchar_t> filePath;                  ///< complete target name
    CXTString<wchar_t> textureFolder;             ///< where moved textures go
    bool textureFolderFixed = false;              ///< they go to the folder of the scene
    unsigned int textureCodePage = 0xFFFFFFFF;    ///< code page in which a texture's name must survive; 0xFFFFFFFF: none
    /// Extensions of the image files that go into the file, in lower case with their point; the parser sets them.
    std::vector<CXTString<wchar_t>> texturesInside;
    /// Textures are moved, copied and put into the file wherever they lie. Without it only those that CTextureSources opens: names in a file
    /// that somebody else made may lead anywhere.
    bool texturesFromAnywhere = false;
};
