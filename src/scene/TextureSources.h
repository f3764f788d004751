#pragma once

#include "tools/Api.h"
#include "tools/Array.h"
#include "tools/String.h"

class C3DScene;
class IoFile;

/// The folders from which the bytes of a scene's image files may be taken: to move them, to copy them, to put them into another file.
///
/// Nobody can trust the names in a scene file: "../../secret" in one must not carry a secret into what is exported. So a file is taken from
/// the folder of the scene, from the texture paths that hosts gave it and the preferences have, and from GetUnpackedTexturesPath, with all
/// that lies below them. Texture paths that came with a scene file do not count. A scene without file names what its host put there, and
/// anything may be taken.
class ZEL_API CTextureSources {
public:
    enum Answer {
        TEXTURE_OPEN,       ///< may be read
        TEXTURE_MISSING,    ///< no regular file, or one that cannot be opened
        TEXTURE_OUTSIDE,    ///< lies in none of the folders
    };

    /// `anywhere`: files are taken wherever they lie.
    CTextureSources(const C3DScene& scene, bool anywhere);

    /// Opens an image file for reading. What counts is the place of the file that was opened, whatever links lead to it. `file` is closed
    /// unless the answer is TEXTURE_OPEN.
    Answer Open(const CXTString<wchar_t>& path, IoFile& file) const;
    /// A file that is taken wherever it lies, for it was taken before.
    void Allow(const CXTString<wchar_t>& file);
    /// Copies an image file that Open opens. The target appears whole or not at all; false when it does not.
    bool Copy(const CXTString<wchar_t>& path, const CXTString<wchar_t>& target) const;

private:
    bool IsInside(const CXTString<wchar_t>& opened) const;

    CXArray<CXTString<wchar_t>> m_folders;    // as the system knows them, behind links, with a last '/'
    CXArray<CXTString<wchar_t>> m_files;      // the same for single files
    bool m_anywhere;
};

/// Folder of the user's own in which importers put images that they find inside other files, ending with '/': 3dzel/textures below
/// $XDG_CACHE_HOME or ~/.cache. Empty when there is no home. What lies there has an end: whoever writes a scene copies it.
ZEL_API CXTString<wchar_t> GetUnpackedTexturesPath();
