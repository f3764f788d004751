#pragma once

#include "tools/SimpleCollection.h"

class C4DPoint;
class CFaceList;
class CGeomInfo;

/// Bits of the first word of a face's main data. A face with FACE_INVALID or FACE_EMPTY is dead: loops skip it.
enum _FACE_PROPERTIES : unsigned int {
    FACE_INVALID = 0x1,        ///< Clean removes it
    FACE_EMPTY = 0x2,          ///< keeps its place without a value: in a channel, a geometry face without data
    FACE_BORDER = 0x1000,      ///< has an edge that no other face shares
    FACE_TO_SPLIT = 0x8000,    ///< has too many corners: C3DGeomObject::Quadrangulate is at work
};
constexpr unsigned int FACE_DEAD = FACE_INVALID | FACE_EMPTY;

/// How many of a set have a property.
enum FLAGRESULT : int {
    FLAG_NONE = 0,
    FLAG_SOME = 1,
    FLAG_ALL = 2,
};

/// View of one face of a list: its corners (signed positions in the point list that the face list is used with) and its
/// flags. Holds no storage; a few words on the stack, filled by CFaceList::GetFace.
///
/// The corners are valid until another face of the list grows, the flags until the list is resized. Edits through a
/// view do not mark the list changed: whoever edits does, once, with SetFlag(FACELIST_CHANGED, true).
///
/// A view that was never filled has no corners and FACE_INVALID; edits of it are ignored. Derived views add no fields.
class ZEL_API CFace : public CCollectionElement<int, unsigned short> {
public:
    static constexpr int MAX_CORNERS = 65535;

    CFaceList* GetFaceList() const { return m_list; }
    unsigned int GetFaceIndex() const { return m_entry; }

    unsigned int GetFlags() const { return m_words ? *m_words : FACE_INVALID; }
    void SetFlags(unsigned int flags)
    {
        if (m_words)
            *m_words = flags;
    }
    /// Sets or clears every bit of the mask.
    void SetFlags(unsigned int mask, bool set) { SetFlags(set ? GetFlags() | mask : GetFlags() & ~mask); }
    void SetFlag(_FACE_PROPERTIES mask, bool set) { SetFlags(static_cast<unsigned int>(mask), set); }
    /// Every bit of the mask.
    bool IsFlagSet(_FACE_PROPERTIES mask) const { return (GetFlags() & mask) == mask; }
    /// Any bit of the mask.
    bool IsOneFlagSet(int mask) const { return (GetFlags() & static_cast<unsigned int>(mask)) != 0; }
    bool IsDead() const { return (GetFlags() & FACE_DEAD) != 0; }

    // --- Corners ----------------------------------------------------------------------------------------------------

    /// Corner value behind and before corner `corner`, around the face. -1 for a face without corners.
    int GetNextIndex(int corner) const
    {
        const int size = GetSize();
        return size ? m_items[corner + 1 < size ? corner + 1 : (corner + 1) % size] : -1;
    }
    int GetPrevIndex(int corner) const
    {
        const int size = GetSize();
        return size ? m_items[corner > 0 && corner <= size ? corner - 1 : (corner - 1 + size) % size] : -1;
    }

    /// Resizes to `size` corners; the first ones stay, new ones are 0. Sets FACE_INVALID below 3 corners and clears it
    /// otherwise. False, with nothing changed, above MAX_CORNERS and below 0.
    bool SetSize(int size);
    /// Three corners, FACE_INVALID cleared.
    void SetTriangle(int a, int b, int c);
    void SetQuadrangle(int a, int b, int c, int d);
    /// Appends a corner and gives the new size. Sets FACE_INVALID below 2 corners and clears it otherwise. A full face
    /// (MAX_CORNERS) stays as it is.
    int AddIndex(int index);
    /// Removes the last corner with that point; FACE_INVALID when fewer than 3 corners remain. False when there is
    /// none.
    bool RemoveIndex(int value);
    /// 0 when `from` is not there or equals `to`; 1 when one corner was replaced, 5 when several were.
    int ReplaceIndex(int from, int to);
    /// Position of the first corner with that point, or -1.
    int IsFacePoint(int point) const;
    /// Position of the first edge from a to b, or unless `directed` between them either way; -1 without one.
    int IsFaceEdge(int a, int b, bool directed) const;
    /// The same corners. With `rotate` the other face may start elsewhere: it is read around from its first corner that
    /// has this face's first point. A reversed face is not equal.
    bool CompareIndexes(const CFace& other, bool rotate) const;
    /// Reverses the corners; the first becomes the last.
    void Flip();
    /// No corners, FACE_INVALID.
    void RemoveAll();

    // --- Copies -----------------------------------------------------------------------------------------------------

    /// Corners and chunk data of another face, of any list.
    void Copy(const CFace& other);
    /// The same from a face of this list; ignored out of range.
    void Copy(unsigned int face);
    /// Chunk data only.
    void Inherit(const CFace& other);
    using CCollectionElement::GetData;
    /// This face's element of a chunk, or null.
    void* GetData(unsigned int id) const;
    /// Size of that element; 0 without the chunk.
    unsigned int GetSizeOfData(unsigned int id) const;

    // --- With the source points of `info` (FacePoints.cpp); corners beyond them count as points without flags -------

    /// Mean of the corners' points, in doubles. Leaves `center` for a face without corners.
    void GetCenter(const CGeomInfo* info, C4DPoint& center) const;
    /// How many corners' points have (flags & mask) != 0 equal to `wanted`: FLAG_NONE for a dead face, FLAG_ALL for a
    /// live one without corners.
    FLAGRESULT IsPointFlagSet(const CGeomInfo* info, unsigned int mask, bool wanted) const;
    /// Whether some corner's point meets that test; false for a dead face.
    bool IsOnePointFlagSet(const CGeomInfo* info, unsigned int mask, bool wanted) const;
    /// Sets or clears the mask on the points of all corners.
    void SetPointFlag(const CGeomInfo* info, unsigned int mask, bool set) const;

protected:
    friend class CFaceList;
    // Makes `size` corners of undefined value and clears FACE_INVALID.
    int* Resize(int size);

    CFaceList* m_list = nullptr;
    unsigned int* m_words = nullptr;    // main chunk element: flags, then what the list's own face class adds
};
