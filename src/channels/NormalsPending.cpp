// Stands in until the computations of normals are here; weak, so that the real body takes over by itself.

#include "channels/SpecNormalChannel.h"

__attribute__((weak)) void CSpecNormalChannel::InitNormalBreakFlag(const CGeomInfo*, double, bool, _NormalSmoothMode) {}
