#pragma once

#include <cstdint>
#include <memory>

#include "render/GLPlatform.h"
#include "tools/Hash.h"

class CMeshBuffer;

/// What a call list holds. One bit each, so that kinds join into masks.
enum _CallListType : unsigned int {
    CALLLIST_WIREFRAME = 1,
    CALLLIST_SOLID = 2,          ///< faces of opaque materials
    CALLLIST_TRANSPARENT = 4,    ///< faces of transparent materials
    CALLLIST_CURVE = 8,
    CALLLIST_TEXTURE = 0x1000,              ///< the name is that of a texture, the key a material's id
    CALLLIST_FONT = 0x2000,                 ///< the key is a font's, the count the number of glyphs
    CALLLIST_MATERIAL = 0x4000,             ///< what a material is to GL without texture; the key is its id
    CALLLIST_TEXTURED_MATERIAL = 0x8000,    ///< and with its texture
    CALLLIST_LINE_COLOR = 0x10000,          ///< and for wires
    CALLLIST_MATERIALS = 0x1C000,
    CALLLIST_GEOMETRY = 0xFFF,
    CALLLIST_FLUSHED = CALLLIST_GEOMETRY | CALLLIST_MATERIALS,    ///< all that a flush compiles
};

/// Key of a call list with its GL name. Slots of a table begin at ((low 32 bits of key + type * 8) << 4) % size.
class CHashID {
public:
    std::uint64_t key = 0;    ///< id of an object or material, or a font
    HGLRC context = nullptr;
    _CallListType type = {};
    mutable unsigned int name = 0;     ///< of the first list; not part of the key
    mutable unsigned int count = 1;    ///< of lists
    mutable std::shared_ptr<CMeshBuffer>
        mesh{};    ///< what is drawn in place of the list, which is its first part; null for a list on its own

    std::uint64_t GetHash() const { return static_cast<std::uint32_t>((static_cast<std::uint32_t>(key) + type * 8) << 4); }
    friend bool operator==(const CHashID& a, const CHashID& b) { return a.key == b.key && a.context == b.context && a.type == b.type; }
};
