#pragma once

#include "channels/Block.h"
#include "channels/Channel.h"

/// Geometry point -> channel points. The entry of point p are the items from starts[p] up to starts[p + 1].
///
/// An entry that holds anything begins with a header {-1, number of corners that geometry faces have at the point}. Counts
/// have 32 bits: the hub of a large fan holds more corners than 16 bits can count.
struct CChannel::Graph {
    CBlock<unsigned int> starts;
    CBlock<_ChannelConnectionInfo> items;
};
