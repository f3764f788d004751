#pragma once

// Names of files and folders.
//
// A name is text in the interface and UTF-8 on disk. Both '/' and '\' separate folders, whatever program the name comes
// from; what these functions make has '/'. A root is "/", "//server/share/" or a drive, "C:/" or "C:". Functions that touch
// the disk take a name as it stands first and, when nothing is there, with '/' for each '\'. A folder that these functions
// return ends with '/'; one that they take may or may not.

#include <vector>

#include "tools/Api.h"
#include "tools/String.h"

// Parts of a name; the disk is not looked at.

/// Root of the name with its separator, or empty for a relative name.
ZEL_API CXTString<wchar_t> fileGetRoot(const CXTString<wchar_t>& path);
/// Folder part with root and last separator, as it stands in the name; empty when there is none.
ZEL_API CXTString<wchar_t> fileGetPath(const CXTString<wchar_t>& path);
/// File name without folder.
ZEL_API CXTString<wchar_t> fileStripPath(const CXTString<wchar_t>& path);
/// Extension with its point, or empty. A point that begins the file name begins no extension.
ZEL_API CXTString<wchar_t> fileGetExtension(const CXTString<wchar_t>& path);
/// The name without its extension.
ZEL_API CXTString<wchar_t> fileStripExtension(const CXTString<wchar_t>& path);
/// True for a name with a root.
ZEL_API bool fileIsAbsolute(const CXTString<wchar_t>& path);
/// '/' between folders, no ".", no ".." that can be resolved, no empty parts. An empty result is ".".
ZEL_API CXTString<wchar_t> fileNormalize(const CXTString<wchar_t>& path);
/// The folder ending with '/'; empty stays empty.
ZEL_API CXTString<wchar_t> fileAddSlash(const CXTString<wchar_t>& folder);

/// `path` made absolute against the folder `base`, normalised. An absolute path, or an empty base, is only normalised.
ZEL_API CXTString<wchar_t> fileMakeAbsolutePath(const CXTString<wchar_t>& base, const CXTString<wchar_t>& path);
/// `path` as seen from the folder `base`, with ".." where needed. Unchanged when either is relative or the roots differ.
ZEL_API CXTString<wchar_t> fileMakeRelativePath(const CXTString<wchar_t>& base, const CXTString<wchar_t>& path);
/// At most `length` characters for a display: folders in the middle give way to "...", then the end of the file name does.
ZEL_API CXTString<wchar_t> fileCompactPath(const CXTString<wchar_t>& path, int length);
/// The path with a file name of at most `limit` characters: the end of the title goes, the extension stays (and is cut only
/// when it alone is too long). A limit of 0 or less cuts nothing.
ZEL_API CXTString<wchar_t> fileCutName(const CXTString<wchar_t>& path, int limit);
/// True when a file or folder could have that name here: not empty, no control characters, each part at most 255 bytes,
/// 4095 bytes in all.
ZEL_API bool fileIsValidFileName(const CXTString<wchar_t>& path);

// On disk.

/// The name as the system knows it: UTF-8, with '/' for '\' when only that names something.
ZEL_API std::string fileToDisk(const CXTString<wchar_t>& path);
/// True when something is there that is not a folder.
ZEL_API bool fileExists(const CXTString<wchar_t>& path);
ZEL_API bool fileIsDirectory(const CXTString<wchar_t>& path);
/// True when both name the same file: by identity on disk when both exist, else by their normalised absolute names.
ZEL_API bool fileIsSameFile(const CXTString<wchar_t>& a, const CXTString<wchar_t>& b);
/// The same for folders; a last separator makes no difference.
ZEL_API bool fileCompareDirectory(const CXTString<wchar_t>& a, const CXTString<wchar_t>& b);
/// Copies contents and permissions. The target appears whole or not at all. False when source and target are the same file, when the
/// source is no regular file, on any error, and with `failIfExists` when the target is there.
ZEL_API bool fileCopy(const CXTString<wchar_t>& source, const CXTString<wchar_t>& target, bool failIfExists);
/// Removes what this process is writing beside its targets. For the handler of a signal that ends the process: all it does is safe there.
ZEL_API void fileRemoveTemporaries();
ZEL_API bool fileDelete(const CXTString<wchar_t>& path);
/// Makes the folder, with `parents` those above it too. True also when it is there already.
ZEL_API bool fileCreateDirectory(const CXTString<wchar_t>& folder, bool parents);
/// A name that nothing on disk has: the path itself, or its title with 1, 2, 3... behind it.
///
/// @param reserve  an empty file of that name is made at once, so that nobody else takes it
/// @param limit    longest file name, extension included; 0 or less: none
/// @return         empty when no name is free
ZEL_API CXTString<wchar_t> fileCreateUniqueName(const CXTString<wchar_t>& path, bool reserve, int limit = -1);
ZEL_API CXTString<wchar_t> fileGetCurrentDirectory();
/// Names of the files in a folder, without folders, sorted by code point. Empty when it cannot be read.
ZEL_API std::vector<CXTString<wchar_t>> fileList(const CXTString<wchar_t>& folder);

/// Folder of the user's settings, ending with '/': 3dzel below $XDG_CONFIG_HOME or ~/.config.
///
/// @param create  makes it when it is missing
/// @return        false, with `path` empty, when there is no home, or it cannot be made
ZEL_API bool GetUserPreferencesPath(CXTString<wchar_t>& path, bool create);
