#pragma once

#include "files/FileParser.h"

/// True for a class that this library handles itself.
bool IsBuiltInClass(unsigned int fileClass);
/// A parser of a built-in class; null for other classes, and for those whose parser is not part of this build.
CFileParser* CreateBuiltInParser(unsigned int fileClass, CFileIo* fileIo);
/// Makes the extensions of the built-in classes known and keeps the classes that have a parser here from plug-ins. Once a process; later calls do nothing.
void RegisterBuiltInFormats();
