#pragma once

#include "tools/FourCC.h"

// Limits of plug-ins that read in a process of their own. Ids of unsigned values in the bag of CSceneImportOptions; 0 is no limit.

constexpr unsigned int IMPORT_SECONDS = FourCC("ILTM");      ///< for one file, as the clock on the wall goes
constexpr unsigned int IMPORT_MEGABYTES = FourCC("ILMB");    ///< address space of the process

constexpr double IMPORT_SECONDS_STANDARD = 600;
constexpr double IMPORT_MEGABYTES_STANDARD = 4096;      ///< for a file of no size
constexpr double IMPORT_MEGABYTES_PER_MEGABYTE = 64;    ///< of the file on top
