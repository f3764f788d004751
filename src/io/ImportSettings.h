#pragma once

#include "tools/FourCC.h"

// Settings of a reading: ids of values in the bag of CSceneImportOptions.

/// Unsigned, an _UP_AXIS_MODE: the axis that points up in files that don't tell. Formats whose files or standards tell it leave it aside.
constexpr unsigned int IMPORT_UP_AXIS = FourCC("UPAX");

/// Bool: cameras, lights and animated nodes make a scene, too, where there is neither polymesh nor curve nor patch. Without it such a file is
/// refused.
constexpr unsigned int IMPORT_SHAPELESS = FourCC("NOSH");

// Limits of plug-ins that read in a process of their own. Unsigned; 0 is no limit.

constexpr unsigned int IMPORT_SECONDS = FourCC("ILTM");      ///< for one file, as the clock on the wall goes
constexpr unsigned int IMPORT_MEGABYTES = FourCC("ILMB");    ///< memory, on top of what the process takes before it reads

constexpr double IMPORT_SECONDS_STANDARD = 600;
// Without a limit of the user's, memory grows with the file and those that are read with it.
constexpr unsigned int IMPORT_MEGABYTES_STANDARD = 64;    ///< for a file of no size
constexpr unsigned int IMPORT_BYTES_PER_BYTE = 40;        ///< for each byte of the files on top
