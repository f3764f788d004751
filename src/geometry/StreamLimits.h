#pragma once

// Limits of the native stream. Its writer refuses what its reader would.

/// Chunks of a list. They are found one by one, for every element that is copied.
constexpr unsigned int MOST_STORED_CHUNKS = 4096;
/// Channels of an object: a weight channel for each joint of a large figure, and room. They are found one by one, for every node that
/// shares the object.
constexpr unsigned int MOST_STORED_CHANNELS = 16384;
