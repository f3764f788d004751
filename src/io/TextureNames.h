#pragma once

#include <map>
#include <string>

#include "io/SceneOptions.h"

class C3DScene;

/// The names of the image files of a working copy on their way into the file that is written: of maps, their alpha images, and the images
/// that materials name beside their maps.
///
/// A name from the scene's folder says something else in another folder. So names are made absolute as long as files are moved, and in the
/// end relative to the file. A name that leads to no file stays as it is.
class CTextureNames {
public:
    CTextureNames(C3DScene& scene, CSceneExportOptions& options);

    /// Each name becomes that of the file that it leads to from the scene.
    void MakeAbsolute();
    /// Images that an importer took out of other files are copied beside the file, unless they go into it: their folder has an end. Told.
    void CopyUnpacked();
    /// Names become relative to the folder of the file. A name that leads elsewhere from there, for the folder is a link, stays absolute.
    void MakeRelative();

private:
    using Text = CXTString<wchar_t>;

    template <class CHANGE> void ForNames(CHANGE change);
    Text Find(const Text& name) const;
    Text CopyHere(const Text& file);
    bool GoesInside(const Text& file) const;

    C3DScene& m_scene;
    CSceneExportOptions& m_options;
    Text m_folder;    // of the file that is written
};
