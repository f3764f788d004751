#include "scene/Keyframable.h"

#include <algorithm>
#include <memory>
#include <new>
#include <set>

#include "tools/Archive.h"

namespace {
bool Matches(const _KeyframeInfo& info, std::uint64_t classId)
{
    return classId == KEY_ANY || (info.tag == KeyTag(classId) && info.key->GetClassID() == classId);
}
}

// The places

void CKeyPlaces::InsertAt(int index, const _KeyframeInfo& info)
{
    _KeyframeInfo* places = &(*this)[0];
    if (m_size == m_capacity) {
        const unsigned int capacity = m_capacity * 2;
        _KeyframeInfo* block = new _KeyframeInfo[capacity];
        std::copy_n(places, m_size, block);
        if (m_capacity > 1)
            delete[] m_block;
        m_block = places = block;
        m_capacity = capacity;
    }
    std::copy_backward(places + index, places + m_size, places + m_size + 1);
    places[index] = info;
    m_size++;
    NotePlaces(index);
}

void CKeyPlaces::RemoveAll()
{
    if (m_capacity > 1)
        delete[] m_block;
    m_size = 0;
    m_capacity = 1;
    m_classPlaces.reset();
}

/// After a key has come in at a place. Without memory for it the list does without: it is walked.
void CKeyPlaces::NotePlaces(int index)
{
    constexpr unsigned int LONG_LIST = 32;    // a shorter one is sooner walked than looked up
    if (m_size < LONG_LIST)
        return;
    try {
        if (!m_classPlaces) {
            m_classPlaces = std::make_unique<ClassPlaces>();
            for (int i = 0; i < GetSize(); i++)
                (*m_classPlaces)[(*this)[i].key->GetClassID()].push_back(i);
            return;
        }
        if (index + 1 < GetSize())
            for (auto& [classId, places] : *m_classPlaces)
                for (std::size_t i = places.size(); i-- > 0 && places[i] >= index;)
                    places[i]++;
        std::vector<int>& places = (*m_classPlaces)[(*this)[index].key->GetClassID()];
        places.insert(std::lower_bound(places.begin(), places.end(), index), index);
    } catch (const std::bad_alloc&) {
        m_classPlaces.reset();
    }
}

/// Null for a class without keys.
const std::vector<int>* CKeyPlaces::GetPlaces(std::uint64_t classId) const
{
    const auto found = m_classPlaces->find(classId);
    return found == m_classPlaces->end() ? nullptr : &found->second;
}

int CKeyPlaces::GetCount(std::uint64_t classId) const
{
    if (classId == KEY_ANY)
        return GetSize();
    if (m_classPlaces) {
        const std::vector<int>* const places = GetPlaces(classId);
        return places ? static_cast<int>(places->size()) : 0;
    }
    return static_cast<int>(std::count_if(begin(), end(), [=](const _KeyframeInfo& info) { return Matches(info, classId); }));
}

int CKeyPlaces::FindByIndex(std::uint64_t classId, unsigned int index) const
{
    if (classId == KEY_ANY)
        return static_cast<int>(std::min(index, m_size));
    if (m_classPlaces) {
        const std::vector<int>* const places = GetPlaces(classId);
        return places && index < places->size() ? (*places)[index] : GetSize();
    }
    int place = FindFrom(0, classId);
    while (index-- > 0 && place < GetSize())
        place = FindFrom(place + 1, classId);
    return place;
}

int CKeyPlaces::FindFrom(int place, std::uint64_t classId) const
{
    if (m_classPlaces && classId != KEY_ANY) {
        const std::vector<int>* const places = GetPlaces(classId);
        if (!places)
            return GetSize();
        const auto next = std::lower_bound(places->begin(), places->end(), place);
        return next == places->end() ? GetSize() : *next;
    }
    while (place < GetSize() && !Matches((*this)[place], classId))
        place++;
    return place;
}

int CKeyPlaces::FindBefore(int place, std::uint64_t classId) const
{
    if (m_classPlaces && classId != KEY_ANY) {
        const std::vector<int>* const places = GetPlaces(classId);
        if (!places)
            return -1;
        const auto next = std::lower_bound(places->begin(), places->end(), place);
        return next == places->begin() ? -1 : *(next - 1);
    }
    while (--place >= 0 && !Matches((*this)[place], classId)) {
    }
    return place;
}

// The list

C3DAnimatable::~C3DAnimatable() = default;

int C3DAnimatable::GetKeyTime(int time, unsigned int mode, std::uint64_t classId) const
{
    int keyTime;
    return GetConstKey(time, mode, classId, &keyTime) ? keyTime : time;
}

C3DKeyframable::C3DKeyframable(const C3DKeyframable& other) : C3DAnimatable(other) { *this = other; }

C3DKeyframable::~C3DKeyframable() { DeleteAllKeys(); }

CTimeRange C3DKeyframable::GetTimeRange(std::uint64_t classId)
{
    const int first = m_keys.FindFrom(0, classId);
    if (first == m_keys.GetSize())
        return {};
    return {m_keys[first].time, m_keys[m_keys.FindBefore(m_keys.GetSize(), classId)].time};
}

const C3DKeyframe* C3DKeyframable::GetConstKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const
{
    return FindKey(time, mode, classId, keyTime);
}

void C3DKeyframable::Serialize(CXArchive& ar)
{
    if (ar.IsLoading())
        DeleteAllKeys();
    unsigned int count = m_keys.GetSize();
    Move(ar, count);
    if (ar.IsStoring()) {
        for (const _KeyframeInfo& info : m_keys) {
            ar << info.time << info.key->GetClassID();
            info.key->Serialize(ar);
        }
        return;
    }

    ar.CheckCount(count, sizeof(int) + 2 * sizeof(std::uint64_t) + sizeof(unsigned int));
    std::set<std::uint64_t> classesAtTime;
    for (unsigned int i = 0; i < count; i++) {
        int time;
        std::uint64_t classId;
        ar >> time >> classId;
        std::unique_ptr<C3DKeyframe> key(C3DKeyframe::CreateKey(classId, 0));
        if (!key)
            XThrowArchive(CXArchiveException::ARCHIVE_UNKNOWN_TYPE);
        // In the order of a list, so that each key goes behind the others.
        const int last = m_keys.GetSize() - 1;
        if (last >= 0 && time < m_keys[last].time)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        if (last >= 0 && time > m_keys[last].time)
            classesAtTime.clear();
        if (!classesAtTime.insert(classId).second)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        key->Serialize(ar);
        m_keys.InsertAt(m_keys.GetSize(), {time, KeyTag(classId), key.release()});
    }
}

int C3DKeyframable::AddKey(int time, C3DKeyframe* key)
{
    if (!key)
        return -1;
    KeysMayChange();
    const int behind = FindBehind(time);
    for (int i = behind; i-- > 0 && m_keys[i].time == time;) {
        C3DKeyframe*& place = m_keys[i].key;
        if (place->GetClassID() == key->GetClassID()) {
            if (place != key)
                delete place;
            place = key;
            return i;
        }
    }
    m_keys.InsertAt(behind, {time, KeyTag(key->GetClassID()), key});
    return behind;
}

int C3DKeyframable::AddKey(int time, const C3DKeyframe& key) { return AddKey(time, key.Copy()); }

C3DKeyframe* C3DKeyframable::CreateKey(int time, std::uint64_t classId, unsigned int flags)
{
    if (!(flags & KEY_ALWAYS_NEW))
        if (C3DKeyframe* key = GetKey(time, KEY_EXACT, classId, nullptr))
            return key;
    C3DKeyframe* key = C3DKeyframe::CreateKey(classId, 0);
    if (!key)
        return nullptr;
    if (!(flags & KEY_KEEP_DEFAULT))
        Evaluate(time, *key);
    AddKey(time, key);
    return key;
}

C3DKeyframe* C3DKeyframable::GetKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const
{
    KeysMayChange();
    return FindKey(time, mode, classId, keyTime);
}

C3DKeyframe* C3DKeyframable::FindKey(int time, unsigned int mode, std::uint64_t classId, int* keyTime) const
{
    // [first, behind) are the keys at `time`. Whatever lies after it wins where mode asks for it; then comes what lies at
    // it, and then what lies before.
    int found = -1;
    if (!m_keys.IsEmpty()) {
        const int count = m_keys.GetSize(), first = FindFirst(time), behind = FindBehind(time);
        if (mode & KEY_AFTER)
            if (const int after = m_keys.FindFrom(behind, classId); after < count)
                found = after;
        if (found == -1 && (mode & KEY_EXACT) && behind > first)
            if (const int exact = m_keys.FindBefore(behind, classId); exact >= first)
                found = exact;
        if (found == -1 && (mode & KEY_BEFORE) && !(mode & KEY_AFTER))
            found = m_keys.FindBefore(first, classId);
    }
    if (keyTime)
        *keyTime = found == -1 ? -1 : m_keys[found].time;
    return found == -1 ? nullptr : m_keys[found].key;
}

bool C3DKeyframable::GetKey(int time, unsigned int mode, C3DKeyframe& out, int* keyTime) const
{
    const C3DKeyframe* key = GetConstKey(time, mode, out.GetClassID(), keyTime);
    if (key)
        out = *key;
    return key != nullptr;
}

C3DKeyframe* C3DKeyframable::GetKeyByIndex(unsigned int index, int* time, std::uint64_t classId) const
{
    const int place = m_keys.FindByIndex(classId, index);
    if (place == m_keys.GetSize())
        return nullptr;
    KeysMayChange();
    const _KeyframeInfo& info = m_keys[place];
    if (time)
        *time = info.time;
    return info.key;
}

int C3DKeyframable::GetKeyNbr(std::uint64_t classId) const { return m_keys.GetCount(classId); }

void C3DKeyframable::DeleteAllKeys()
{
    KeysMayChange();
    for (const _KeyframeInfo& info : m_keys)
        delete info.key;
    m_keys.RemoveAll();
}

int C3DKeyframable::DeleteKey(int) { return 0; }

bool C3DKeyframable::Evaluate(int time, C3DKeyframe& key) const
{
    if (m_keys.IsEmpty())
        return false;
    int timeBefore, timeAfter;
    const C3DKeyframe* before = GetConstKey(time, KEY_EXACT | KEY_BEFORE, key.GetClassID(), &timeBefore);
    const C3DKeyframe* after = GetConstKey(time, KEY_AFTER, key.GetClassID(), &timeAfter);
    if (before && after)
        return key.Evaluate(*before, *after, time, CTimeRange(timeBefore, timeAfter));
    if (const C3DKeyframe* only = before ? before : after) {
        key = *only;
        return true;
    }
    return false;
}

bool C3DKeyframable::operator=(const C3DKeyframable& other)
{
    if (this == &other)
        return true;
    DeleteAllKeys();
    bool complete = true;
    for (const _KeyframeInfo& info : other.m_keys)
        complete &= AddKey(info.time, *info.key) != -1;
    return complete;
}

bool C3DKeyframable::operator==(const C3DKeyframable& other) const
{
    if (m_keys.GetSize() != other.m_keys.GetSize())
        return false;
    for (const _KeyframeInfo& info : m_keys) {
        const C3DKeyframe* key = other.GetConstKey(info.time, KEY_EXACT, info.key->GetClassID(), nullptr);
        if (!key || *info.key != *key)
            return false;
    }
    return true;
}

/// Index of the first key at or after the time.
int C3DKeyframable::FindFirst(int time) const
{
    const auto place = std::lower_bound(m_keys.begin(), m_keys.end(), time, [](const _KeyframeInfo& info, int t) { return info.time < t; });
    return static_cast<int>(place - m_keys.begin());
}

int C3DKeyframable::FindBehind(int time) const
{
    const auto place = std::upper_bound(m_keys.begin(), m_keys.end(), time, [](int t, const _KeyframeInfo& info) { return t < info.time; });
    return static_cast<int>(place - m_keys.begin());
}
