#pragma once

#include <map>
#include <memory>
#include <vector>

#include "scene/Keyframe.h"

/// Bits of a key lookup. See C3DKeyframable::GetKey.
enum _KEY_LOOKUP : unsigned int {
    KEY_BEFORE = 1,
    KEY_AFTER = 2,
    KEY_EXACT = 4,
};

/// Bits of C3DKeyframable::CreateKey.
enum _KEY_CREATION : unsigned int {
    KEY_ALWAYS_NEW = 1,      ///< replaces a key of that time and class
    KEY_KEEP_DEFAULT = 2,    ///< leaves the class's default value, instead of the animation's value at that time
};

/// Whatever can answer for keys.
class ZEL_API C3DAnimatable {
public:
    virtual ~C3DAnimatable();
    /// From the first key to the last; (0, 0) without keys.
    virtual CTimeRange GetTimeRange(std::uint64_t classId) = 0;
    /// The key that C3DKeyframable::GetKey describes. Its time, or -1 without a key, goes to `keyTime`, which may be null.
    virtual const C3DKeyframe* GetConstKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const = 0;

    /// Time of the key that GetConstKey finds; `time` itself when it finds none.
    int GetKeyTime(int time, unsigned int mode, std::uint64_t classId) const;
};

/// Short form of a class id: another one is another class. Tells classes apart without a look at the keys.
constexpr unsigned int KeyTag(std::uint64_t classId)
{
    return static_cast<unsigned int>(classId >> 32) * 31 + static_cast<unsigned int>(classId);
}

/// One place of a key list.
struct _KeyframeInfo {
    int time;
    unsigned int tag;    ///< of the key's class id
    C3DKeyframe* key;    ///< owned by the list
};

/// The places of a key list. One key, as most nodes have, needs no memory of its own. A long list knows the places of each class, so that a
/// class with few keys, or with none, is not looked for among those of the others.
class CKeyPlaces {
public:
    CKeyPlaces() = default;
    CKeyPlaces(const CKeyPlaces&) = delete;
    ~CKeyPlaces() { RemoveAll(); }

    int GetSize() const { return static_cast<int>(m_size); }
    bool IsEmpty() const { return m_size == 0; }
    const _KeyframeInfo* begin() const { return m_capacity == 1 ? &m_single : m_block; }
    const _KeyframeInfo* end() const { return begin() + m_size; }
    const _KeyframeInfo& operator[](int index) const { return begin()[index]; }
    _KeyframeInfo& operator[](int index) { return const_cast<_KeyframeInfo&>(begin()[index]); }
    void InsertAt(int index, const _KeyframeInfo& info);
    void RemoveAll();

    // Keys of a class; KEY_ANY stands for all of them.

    int GetCount(std::uint64_t classId) const;
    /// Place of the key number `index` of the class; the size when there are fewer.
    int FindByIndex(std::uint64_t classId, unsigned int index) const;
    /// Place of the first one at or behind a place; the size for none.
    int FindFrom(int place, std::uint64_t classId) const;
    /// Place of the last one before a place; -1 for none.
    int FindBefore(int place, std::uint64_t classId) const;
    /// Whether the four above cost a look-up rather than a walk.
    bool HasClassPlaces() const { return m_classPlaces != nullptr; }

private:
    using ClassPlaces = std::map<std::uint64_t, std::vector<int>>;    ///< ascending

    void NotePlaces(int index);
    const std::vector<int>* GetPlaces(std::uint64_t classId) const;

    std::unique_ptr<ClassPlaces> m_classPlaces;    ///< of long lists alone
    unsigned int m_size = 0, m_capacity = 1;
    union {
        _KeyframeInfo m_single;    ///< for a capacity of 1
        _KeyframeInfo* m_block;
    };
};

/// A list of keys, sorted by time. At one time there is at most one key of a class id; keys of different class ids at one
/// time stay in the order in which they were added.
///
/// Times are frames. A class id of 0 stands for every key.
class ZEL_API C3DKeyframable : public C3DAnimatable {
public:
    C3DKeyframable() = default;
    C3DKeyframable(const C3DKeyframable& other);
    ~C3DKeyframable() override;
    CTimeRange GetTimeRange(std::uint64_t classId) override;
    const C3DKeyframe* GetConstKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const override;
    /// Number of keys, then time, class id and contents of each. Loading replaces all keys; a type id that is not known
    /// throws ARCHIVE_UNKNOWN_TYPE, keys out of order ARCHIVE_BAD_VALUE.
    virtual void Serialize(CXArchive& ar);

    /// Takes ownership of the key and puts it in its place, where it replaces a key of the same time and class id.
    /// Returns its index; -1 for null. Cost: a search, and a move of the places behind.
    int AddKey(int time, C3DKeyframe* key);
    /// Adds a copy.
    int AddKey(int time, const C3DKeyframe& key);
    /// The key at that time, made when there is none; the way in which all setters of animated values reach their key.
    /// `flags`: _KEY_CREATION. A new key takes the value that the animation has there, so that nothing changes.
    /// Null for an unknown type id.
    C3DKeyframe* CreateKey(int time, std::uint64_t classId, unsigned int flags);

    /// Finds a key. The list keeps it.
    ///
    /// @param mode     _KEY_LOOKUP bits: 1 the last key before `time`; 4 the one at `time` (the last of several classes);
    ///                 5 the last at or before `time`; 2 or 3 the first after `time`; 6 or 7 that, else the one at `time`
    /// @param keyTime  out: time of the key, -1 when there is none; may be null
    C3DKeyframe* GetKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const;
    /// The same for the class id of `out`, which is assigned the key's value; false when there is none.
    bool GetKey(int time, unsigned int mode, C3DKeyframe& out, int* keyTime) const;
    /// The key number `index` of that class, or null; its time goes to `time`, which may be null.
    C3DKeyframe* GetKeyByIndex(unsigned int index, int* time, std::uint64_t classId) const;
    int GetKeyNbr(std::uint64_t classId) const;
    void DeleteAllKeys();
    /// Removes nothing and returns 0.
    int DeleteKey(int time);

    /// Gives `key` the value of the keys of its class id at a time: interpolated between keys, held before the first and
    /// after the last. False, with `key` unchanged, when there are none. No allocation for keys without a curve.
    bool Evaluate(int time, C3DKeyframe& key) const;

    bool operator=(const C3DKeyframable& other);
    /// The same number of keys, each equal to the other list's key of its time and class.
    bool operator==(const C3DKeyframable& other) const;
    bool operator!=(const C3DKeyframable& other) const { return !(*this == other); }

protected:
    /// Somebody may change keys from here on: one was added or handed out to be written, or all went.
    virtual void KeysMayChange() const {}
    const CKeyPlaces& GetKeyPlaces() const { return m_keys; }
    /// Index of the first key after the time.
    int FindBehind(int time) const;

private:
    int FindFirst(int time) const;
    C3DKeyframe* FindKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const;

    CKeyPlaces m_keys;
};
