#pragma once

// File classes: which extensions belong to which format, and what can be done with it. One list for the process, safe to use
// from any thread.

#include <vector>

#include "tools/Api.h"
#include "tools/FourCC.h"
#include "tools/String.h"

/// The kind of a file class: a family, and what this system can do with it.
enum _FILE_KIND : unsigned int {
    FILE_KIND_READ = 0x1,
    FILE_KIND_WRITE = 0x2,
    FILE_KIND_LISTED = 0x10,       ///< file dialogs offer it
    FILE_KIND_FAMILY = 0xFF000,    ///< mask of the family
    FILE_FAMILY_3D = 0x4000,
    FILE_FAMILY_BITMAP = 0x13000,    ///< any of these: an image
};

/// A file class: what fileRegisterFile takes.
class ZEL_API CFileExt {
public:
    CFileExt() = default;
    /// `extensions` are separated by ';', each with or without its point.
    CFileExt(const CXTString<wchar_t>& text, const CXTString<wchar_t>& extensions, unsigned int fileClass, unsigned int fileKind,
             unsigned int creator1 = 0, unsigned int creator2 = 0);

    /// The first extension, with its point; empty when there is none.
    CXTString<wchar_t> GetMainExtension() const;
    /// With or without its point; case makes no difference.
    bool HasExtension(const CXTString<wchar_t>& extension) const;
    unsigned int GetFamily() const { return kind & FILE_KIND_FAMILY; }
    bool CanRead() const { return kind & FILE_KIND_READ; }
    bool CanWrite() const { return kind & FILE_KIND_WRITE; }

    CXTString<wchar_t> description;
    std::vector<CXTString<wchar_t>> extensions;    ///< each with its point
    unsigned int fileClass = 0;
    unsigned int kind = 0;
    unsigned int creator = 0;
    unsigned int secondCreator = 0;
};

/// Adds a class. Several owners may register one class: its extensions and abilities add up, the first description stays.
/// The same owner's second registration of a class replaces the first. False for a class of 0 or without extension.
///
/// @param owner  groups what fileUnregisterOwner takes away again; null for what stays
ZEL_API bool fileRegisterFile(const CFileExt& extension, const void* owner = nullptr);
/// Takes a class away, whoever registered it. False when it is unknown.
ZEL_API bool fileUnregisterFile(unsigned int fileClass);
/// Takes away all that `owner` has registered.
ZEL_API void fileUnregisterOwner(const void* owner);

/// The first class with that extension (with or without point, any case); `family`, when not 0, must share a bit.
/// False when nobody registered it; `out` may be null.
ZEL_API bool fileGetFileExt(const CXTString<wchar_t>& extension, CFileExt* out = nullptr, unsigned int family = 0);
/// All that is known of a class. False when it is unknown; `out` may be null.
ZEL_API bool fileGetExtensionInfo(unsigned int fileClass, CFileExt* out = nullptr);
/// Classes that have the extension, in the order of their registration.
ZEL_API std::vector<unsigned int> fileGetClasses(const CXTString<wchar_t>& extension);
/// All classes whose family shares a bit with `family` (0: all) and whose kind has all of `abilities`, in the order of their
/// registration.
ZEL_API std::vector<CFileExt> fileGetExtensions(unsigned int family, unsigned int abilities = 0);
/// Families of the classes that have the name's extension; 0 for none.
ZEL_API unsigned int fileGetKindOf(const CXTString<wchar_t>& path);
/// Class of the name's extension; 0 for none.
ZEL_API unsigned int fileGetClassOf(const CXTString<wchar_t>& path);
/// Four characters of a class, for messages.
ZEL_API CXTString<wchar_t> fileGetClassText(unsigned int fileClass);
