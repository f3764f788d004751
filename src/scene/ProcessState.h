#pragma once

#include <cstdint>

#include "tools/Api.h"

// Process-wide state of the scene model. Several threads may each build scenes of their own.

/// Counters of ids. Each starts at 1.
enum _ID_COUNTER { ID_OBJECT, ID_NODE, ID_MATERIAL, ID_COUNTERS };

/// The next id of that counter; never 0xFFFFFFFF, nor 0: behind the last one it starts anew.
ZEL_API unsigned int CreateSceneID(_ID_COUNTER counter);
/// An id was read from a stream: the counter goes behind it, never back.
ZEL_API void AdvanceSceneID(_ID_COUNTER counter, unsigned int id);

// News. A revision is a number that was never given before: an equal one means an unchanged thing, whatever came between. 0 is none.

ZEL_API std::uint64_t CreateRevision();
/// Something that belongs to some scene has changed, or nodes or materials came or went.
ZEL_API void NoteSceneChange();
/// Grows with each NoteSceneChange: while it stands, nobody needs to look for revisions.
ZEL_API std::uint64_t GetSceneChanges();
