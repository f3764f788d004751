#pragma once

/// What zel ends with, the same for all verbs.
enum ExitCode {
    EXIT_DONE = 0,
    EXIT_FAILED = 1,
    EXIT_USAGE = 2,
    EXIT_UNREADABLE = 3,    ///< input unreadable or refused
    EXIT_LOSSES = 4,        ///< written, but with losses under --strict
    EXIT_NO_GL = 5,
    EXIT_BATCH = 6,    ///< some files of a batch failed
    EXIT_INTERRUPTED = 130,
};
