#pragma once

#include "tools/Array.h"
#include "tools/FileNameSpec.h"

class CWnd;

constexpr unsigned int FILTER_ALL = 0x414C4C46;    ///< 'ALLF': all formats together come first

/// Lets the user choose a file to read of the families in `kind`; `name` is the present one, and receives the choice.
/// `filter` is the class that the dialog starts with, or FILTER_ALL. False when cancelled.
ZEL_API bool fileOpenFile(CWnd* parent, CXTString<wchar_t>& name, unsigned int kind, unsigned int filter);
/// The same for several files; false and an empty list when cancelled.
ZEL_API bool fileOpenFiles(CWnd* parent, CXArray<CXTString<wchar_t>>& names, unsigned int kind, unsigned int filter);
/// Lets the user choose a name to write. `name` and its class are the present ones, and receive the choice.
ZEL_API bool fileSaveFile(CWnd* parent, CFileNameSpec& name, unsigned int kind, unsigned int filter);
