#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <3dzel.h>

#include "UnpackedImages.h"

// What passes between a host and the worker that reads a file for it: a piece of memory for the state, which both have mapped, and a file in
// memory for the result, which the worker writes and the host seals before it looks at it.

/// Written by the worker while the host looks at it.
struct WorkerState {
    std::atomic<std::uint32_t> thousandths;    ///< of the reading
    std::atomic<std::uint32_t> done;           ///< the result stands
};
constexpr std::size_t WORKER_STATE_SIZE = 4096;

/// Descriptors under which the worker finds them.
constexpr int WORKER_STATE_DESCRIPTOR = 3, WORKER_RESULT_DESCRIPTOR = 4;

/// How a worker ends.
enum WorkerExit { WORKER_EXIT_DONE = 0, WORKER_EXIT_ARGUMENTS = 2, WORKER_EXIT_RESULT = 3 };

/// The worker's side. False when the file does not take the result.
bool WriteWorkerResult(int descriptor, const CIoOptions& options, UnpackedImages& images, C3DScene* scene);
/// The host's side: lines go to the log, images to the disk. Throws CXArchiveException when the bytes are no result; the scene is the caller's,
/// or null.
C3DScene* ReadWorkerResult(const void* bytes, std::size_t size, CIoOptions& options);
