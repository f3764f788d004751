#include "geometry/FaceTagger.h"

CFaceTagger::~CFaceTagger() = default;
bool CFaceTagger::InitProcess(CGeomInfo*) { return true; }
void CFaceTagger::EndProcess(unsigned int) {}
void CFaceTagger::BeginNewGroup(unsigned int, unsigned int) {}
bool CFaceTagger::BelongToGroup(unsigned int, unsigned int, int*, unsigned int) { return true; }
bool CFaceTagger::BelongToGroup(unsigned int, C3DEdge&, int*, unsigned int) { return true; }
