#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <3dzel.h>

// What passes between a host and the worker that reads a file for it: one piece of memory that both have. First the state, then, once
// the worker is done, the log and the scene.

/// Written by the worker while the host looks at it.
struct WorkerState {
    std::atomic<std::uint32_t> thousandths;    ///< of the reading
    std::atomic<std::uint32_t> done;           ///< the result stands
};
constexpr std::size_t WORKER_RESULT = 4096;    ///< where the result begins

/// Descriptor under which the worker finds the memory.
constexpr int WORKER_DESCRIPTOR = 3;

/// The worker's side: behind WORKER_RESULT. False when the memory does not take it.
bool WriteWorkerResult(int descriptor, const CIoOptions& options, C3DScene* scene);
/// The host's side: lines go to the log. Throws CXArchiveException when the bytes are no result; the scene is the caller's, or null.
C3DScene* ReadWorkerResult(const void* bytes, std::size_t size, CIoOptions& options);
