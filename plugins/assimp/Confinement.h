#pragma once

/// Takes from this process, as far as the kernel has the means, what reading a file does not need: the network, writing to files that are not
/// open yet, other programs and processes. Threads may still be started. A kernel that refuses is no error: limits on time and memory stand
/// on their own.
///
/// Call it before the first thread starts.
void ConfineProcess();
