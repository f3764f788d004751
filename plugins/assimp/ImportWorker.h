#pragma once

#include <3dzel.h>

/// True with ZEL_IMPORT_IN_PROCESS=1 in the environment: faults of the import library are the host's then.
bool ImportsInProcess();

/// Reads a file in a process of its own, zel-import-worker, which has to keep to limits on time and memory (see io/ImportSettings.h).
///
/// What happens to the worker costs this file alone: crash, hang or flood end in null and one line in the log.
///
/// @return  null also for what ImportFile refuses
C3DScene* ImportInWorker(unsigned int fileClass, const CXTString<wchar_t>& path, CSceneImportOptions& options, CProgress& progress);
