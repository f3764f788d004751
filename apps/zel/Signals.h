#pragma once

/// From here on a signal that ends the program leaves none of the files that are being written. The program ends with EXIT_INTERRUPTED, or
/// by the signal itself where that tells of a fault. Signals that are ignored stay so, and a file that outgrows its limit is an error of the
/// writing.
void EndCleanlyOnSignals();
