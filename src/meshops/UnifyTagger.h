#pragma once

#include <memory>

#include "geometry/FaceTagger.h"
#include "tools/BitArray.h"

/// Gives each group of faces one orientation, and turns the group outward.
///
/// A group hangs together through points. Its sheets, which hang together through edges, are turned after their first face each; a sheet
/// that touches another one at a point alone follows that one where both lie in one plane and side by side.
class ZEL_API CUnifyTagger final : public CFaceTagger {
public:
    /// `flipped` has a bit for each face of the list: set for those that end up reversed.
    explicit CUnifyTagger(CBitArray& flipped);
    ~CUnifyTagger() override;
    bool InitProcess(CGeomInfo* info) override;
    void EndProcess(unsigned int groupCount) override;
    void ProcessGroup(unsigned int* faces, unsigned int count) override;
    /// Afterwards: the user stopped it, and faces are turned only in part.
    bool IsCancelled() const { return m_cancelled; }

private:
    class Run;

    CBitArray& m_flipped;
    std::unique_ptr<Run> m_run;    // from InitProcess to EndProcess
    bool m_cancelled = false;
};
