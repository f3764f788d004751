#pragma once

#include <memory>

#include "geometry/FaceTagger.h"
#include "meshops/SubObjectCutter.h"
#include "tools/Array.h"

class CProgress;

/// Makes an object of each group of faces, unless one group is all there is.
class ZEL_API CIsolateFaceTagger : public CFaceTagger {
public:
    CIsolateFaceTagger(CXArray<C3DGeomObject*, C3DGeomObject*>& parts, C3DGeomObject& object);
    ~CIsolateFaceTagger() override;
    void BeginNewGroup(unsigned int group, unsigned int face) override;
    void ProcessGroup(unsigned int* faces, unsigned int count) override;

private:
    CXArray<C3DGeomObject*, C3DGeomObject*>& m_parts;
    CSubObjectCutter m_cutter;
    unsigned int m_liveFaces;
    std::unique_ptr<CProgress> m_progress;    // cancelled: further groups make nothing
};
