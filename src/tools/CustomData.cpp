#include "tools/CustomData.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <variant>
#include <vector>

#include "tools/Exception.h"
#include "tools/FourCC.h"
#include "tools/HashMix.h"
#include "tools/IoFile.h"

ZEL_IMPLEMENT_CREATABLE(CCustomData, CXObject)

namespace {

using Text = CXTString<wchar_t>;
using Bytes = std::vector<unsigned char>;

// A nested bag keeps its address while values move around it.
struct Nested {
    Nested() : bag(std::make_unique<CCustomData>()) {}
    Nested(const Nested& other) : bag(std::make_unique<CCustomData>(*other.bag)) {}
    Nested(Nested&&) noexcept = default;
    Nested& operator=(const Nested& other) { return *this = Nested(other); }
    Nested& operator=(Nested&&) noexcept = default;

    std::unique_ptr<CCustomData> bag;
};

// In the order of _CUSTOM_DATA_TYPE, so that the index gives the type.
using Value = std::variant<std::monostate, bool, int, unsigned int, std::int64_t, std::uint64_t, float, double, Text, CXArray<Text>, Bytes,
                           Nested, void*>;
static_assert(std::variant_size_v<Value> == CUSTOM_POINTER + 1);

// A fresh value of a type that is known at run time only.
template <std::size_t... TYPES> Value MakeValue(unsigned int type, std::index_sequence<TYPES...>)
{
    Value value;
    ((type == TYPES ? void(value.emplace<TYPES>()) : void()), ...);
    return value;
}

// The type under which values of a C++ type are kept.
template <class T, class... TS> constexpr unsigned int IndexOf(const std::variant<TS...>*)
{
    unsigned int index = 0;
    ((std::is_same_v<T, TS> || (index++, false)) || ...);
    return index;
}
template <class T> constexpr unsigned int TypeOf = IndexOf<T>(static_cast<const Value*>(nullptr));

template <class T> constexpr bool IsBits = std::is_arithmetic_v<T>;

unsigned int HashBytes(const void* bytes, std::size_t size, unsigned int hash)
{
    for (std::size_t i = 0; i < size; i++)
        hash = (hash ^ static_cast<const unsigned char*>(bytes)[i]) * 16777619u;
    return hash;
}

unsigned int HashText(const Text& text, unsigned int hash)
{
    const std::string bytes = WideToUtf8(text);
    return HashBytes(bytes.data(), bytes.size() + 1, hash);
}

unsigned int HashValue(const Value& value)
{
    const unsigned char type = static_cast<unsigned char>(value.index());
    const unsigned int start = HashBytes(&type, 1, 2166136261u);
    return std::visit(
        [&](const auto& v) -> unsigned int {
            using T = std::decay_t<decltype(v)>;
            if constexpr (IsBits<T>)
                return HashBytes(&v, sizeof v, start);
            else if constexpr (std::is_same_v<T, Text>)
                return HashText(v, start);
            else if constexpr (std::is_same_v<T, CXArray<Text>>) {
                unsigned int hash = start;
                for (const Text& text : v)
                    hash = HashText(text, hash);
                return hash;
            } else if constexpr (std::is_same_v<T, Bytes>)
                return HashBytes(v.data(), v.size(), start);
            else if constexpr (std::is_same_v<T, Nested>) {
                const unsigned int sum = v.bag->GetChecksum();
                return HashBytes(&sum, sizeof sum, start);
            } else
                return 0;
        },
        value);
}

bool IsEqual(const Value& a, const Value& b)
{
    return a.index() == b.index() && std::visit(
                                         [&](const auto& v) {
                                             using T = std::decay_t<decltype(v)>;
                                             const T& w = std::get<T>(b);
                                             if constexpr (IsBits<T>)
                                                 return std::memcmp(&v, &w, sizeof v) == 0;    // a NaN equals itself, as checksums see it
                                             else if constexpr (std::is_same_v<T, CXArray<Text>>)
                                                 return std::equal(v.begin(), v.end(), w.begin(), w.end());
                                             else if constexpr (std::is_same_v<T, Nested>)
                                                 return *v.bag == *w.bag;
                                             else
                                                 return v == w;
                                         },
                                         a);
}

}

struct CCustomData::Values {
    struct Entry {
        unsigned int id;
        Value value;

        unsigned int Type() const { return static_cast<unsigned int>(value.index()); }
        bool IsStored() const { return Type() != CUSTOM_POINTER; }
    };

    std::vector<Entry> entries;    // ascending by id, then by type

    static bool IsBefore(const Entry& entry, unsigned int id, unsigned int type)
    {
        return entry.id < id || (entry.id == id && entry.Type() < type);
    }
    std::vector<Entry>::const_iterator Lower(unsigned int id, unsigned int type) const
    {
        return std::partition_point(entries.begin(), entries.end(), [=](const Entry& e) { return IsBefore(e, id, type); });
    }
    const Value* Find(unsigned int id, unsigned int type) const
    {
        const auto found = Lower(id, type);
        return found != entries.end() && found->id == id && found->Type() == type ? &found->value : nullptr;
    }
    Value& Make(unsigned int id, unsigned int type)
    {
        auto found = Lower(id, type);
        if (found == entries.end() || found->id != id || found->Type() != type)
            found = entries.insert(found, {id, MakeValue(type, std::make_index_sequence<CUSTOM_POINTER + 1>())});
        return entries[found - entries.begin()].value;
    }
};

CCustomData::CCustomData() = default;
CCustomData::CCustomData(const CCustomData& other) : CXObject(other)
{
    if (other.m_values)
        m_values = std::make_unique<Values>(*other.m_values);
}
CCustomData::CCustomData(CCustomData&& other) noexcept = default;
CCustomData::~CCustomData() = default;

CCustomData& CCustomData::operator=(const CCustomData& other)
{
    return *this = CCustomData(other);    // copied first: `other` may lie inside
}

CCustomData& CCustomData::operator=(CCustomData&& other) noexcept
{
    std::unique_ptr<Values> taken = std::move(other.m_values);
    m_values.swap(taken);    // the old values go last: `other` may be one of them
    return *this;
}

const CCustomData::Values* CCustomData::ValuesOf(const CCustomData* bag) { return bag ? bag->m_values.get() : nullptr; }

bool CCustomData::operator==(const CCustomData& other) const
{
    static const Values none;
    const Values* const ours = ValuesOf(this);
    const Values* const theirs = ValuesOf(&other);
    const auto& a = ours ? ours->entries : none.entries;
    const auto& b = theirs ? theirs->entries : none.entries;
    const auto stored = [](const std::vector<Values::Entry>& entries, auto from) {
        return std::find_if(from, entries.end(), [](const Values::Entry& e) { return e.IsStored(); });
    };
    auto i = stored(a, a.begin()), j = stored(b, b.begin());
    while (i != a.end() && j != b.end() && i->id == j->id && IsEqual(i->value, j->value)) {
        i = stored(a, i + 1);
        j = stored(b, j + 1);
    }
    return i == a.end() && j == b.end();
}

// Values in and out.

template <class T> bool CCustomData::GetValue(unsigned int id, T& out, const T& def) const
{
    const Values* const values = ValuesOf(this);
    const Value* const found = values ? values->Find(id, TypeOf<T>) : nullptr;
    const T copy = found ? std::get<T>(*found) : def;    // `out` may be `def`
    out = copy;
    return found != nullptr;
}

template <class T> T& CCustomData::Make(unsigned int id)
{
    if (!m_values)
        m_values = std::make_unique<Values>();
    return std::get<T>(m_values->Make(id, TypeOf<T>));
}

bool CCustomData::GetBool(unsigned int id, bool& out, bool def) const { return GetValue(id, out, def); }
bool CCustomData::GetInt(unsigned int id, int& out, int def) const { return GetValue(id, out, def); }
bool CCustomData::GetUnsigned(unsigned int id, unsigned int& out, unsigned int def) const { return GetValue(id, out, def); }
bool CCustomData::GetInt64(unsigned int id, std::int64_t& out, std::int64_t def) const { return GetValue(id, out, def); }
bool CCustomData::GetUnsigned64(unsigned int id, std::uint64_t& out, std::uint64_t def) const { return GetValue(id, out, def); }
bool CCustomData::GetFloat(unsigned int id, float& out, float def) const { return GetValue(id, out, def); }
bool CCustomData::GetDouble(unsigned int id, double& out, double def) const { return GetValue(id, out, def); }
bool CCustomData::GetString(unsigned int id, Text& out, const Text& def) const { return GetValue(id, out, def); }
bool CCustomData::GetStringArray(unsigned int id, CXArray<Text>& out) const { return GetValue(id, out, {}); }
bool CCustomData::GetPointer(unsigned int id, void*& out, void* def) const { return GetValue(id, out, def); }

const void* CCustomData::GetData(unsigned int id, unsigned int& size) const
{
    const Values* const values = ValuesOf(this);
    const Value* const found = values ? values->Find(id, CUSTOM_BINARY) : nullptr;
    size = found ? static_cast<unsigned int>(std::get<Bytes>(*found).size()) : 0;
    return size ? std::get<Bytes>(*found).data() : nullptr;
}

bool CCustomData::GetData(unsigned int id, void* out, unsigned int size) const
{
    unsigned int stored;
    const void* const bytes = GetData(id, stored);
    if (stored != size || !HasData(id, CUSTOM_BINARY))
        return false;
    if (size)
        std::memcpy(out, bytes, size);
    return true;
}

CCustomData* CCustomData::GetCustomData(unsigned int id) const
{
    const Values* const values = ValuesOf(this);
    const Value* const found = values ? values->Find(id, CUSTOM_BAG) : nullptr;
    return found ? std::get<Nested>(*found).bag.get() : nullptr;
}

bool CCustomData::GetColor(unsigned int id, CRGBColor& out, const CRGBColor& def) const
{
    CRGBColor color;
    const bool found = GetData(id, color.ValPtr(), 4);
    out = found ? color : def;
    return found;
}

void CCustomData::SetBool(unsigned int id, bool value) { Make<bool>(id) = value; }
void CCustomData::SetInt(unsigned int id, int value) { Make<int>(id) = value; }
void CCustomData::SetUnsigned(unsigned int id, unsigned int value) { Make<unsigned int>(id) = value; }
void CCustomData::SetInt64(unsigned int id, std::int64_t value) { Make<std::int64_t>(id) = value; }
void CCustomData::SetUnsigned64(unsigned int id, std::uint64_t value) { Make<std::uint64_t>(id) = value; }
void CCustomData::SetFloat(unsigned int id, float value) { Make<float>(id) = value; }
void CCustomData::SetDouble(unsigned int id, double value) { Make<double>(id) = value; }
void CCustomData::SetString(unsigned int id, const Text& value) { Make<Text>(id) = Text(value); }
void CCustomData::SetStringArray(unsigned int id, const CXArray<Text>& value) { Make<CXArray<Text>>(id) = CXArray<Text>(value); }
void CCustomData::SetPointer(unsigned int id, void* value) { Make<void*>(id) = value; }
void CCustomData::SetColor(unsigned int id, const CRGBColor& value) { SetData(id, value.ValPtr(), 4); }

void CCustomData::SetData(unsigned int id, const void* bytes, unsigned int size)
{
    const unsigned char* const first = static_cast<const unsigned char*>(bytes);
    Bytes copy;
    if (first)
        copy.assign(first, first + size);
    Make<Bytes>(id) = std::move(copy);
}

bool CCustomData::SetCustomData(unsigned int id, const CCustomData& value)
{
    if (value.GetNesting() >= CUSTOM_MOST_DEPTH)
        return false;
    CCustomData copy(value);
    *Make<Nested>(id).bag = std::move(copy);
    return true;
}

CCustomData& CCustomData::MakeCustomData(unsigned int id) { return *Make<Nested>(id).bag; }

// Levels of bags, this one included.
unsigned int CCustomData::GetNesting() const
{
    unsigned int inner = 0;
    if (m_values)
        for (const Values::Entry& entry : m_values->entries)
            if (const Nested* const nested = std::get_if<Nested>(&entry.value))
                inner = std::max(inner, nested->bag->GetNesting());
    return inner + 1;
}

// What is there.

bool CCustomData::HasData(unsigned int id) const
{
    const Values* const values = ValuesOf(this);
    if (!values)
        return false;
    const auto found = values->Lower(id, CUSTOM_NONE);
    return found != values->entries.end() && found->id == id;
}

bool CCustomData::HasData(unsigned int id, _CUSTOM_DATA_TYPE type) const
{
    const Values* const values = ValuesOf(this);
    return values && values->Find(id, type);
}

unsigned int CCustomData::GetCount() const
{
    const Values* const values = ValuesOf(this);
    return values ? static_cast<unsigned int>(values->entries.size()) : 0;
}

bool CCustomData::GetIDByIndex(unsigned int index, unsigned int& id, unsigned int& type) const
{
    if (index >= GetCount())
        return false;
    id = m_values->entries[index].id;
    type = m_values->entries[index].Type();
    return true;
}

bool CCustomData::Remove(unsigned int id)
{
    if (!HasData(id))
        return false;
    std::erase_if(m_values->entries, [=](const Values::Entry& e) { return e.id == id; });
    if (m_values->entries.empty())
        RemoveAll();
    return true;
}

bool CCustomData::Remove(unsigned int id, _CUSTOM_DATA_TYPE type)
{
    if (!HasData(id, type))
        return false;
    m_values->entries.erase(m_values->Lower(id, type));
    if (m_values->entries.empty())
        RemoveAll();
    return true;
}

void CCustomData::RemoveAll() { m_values.reset(); }

unsigned int CCustomData::GetChecksum(unsigned int id) const
{
    unsigned int sum = 0;
    if (const Values* const values = ValuesOf(this))
        for (const Values::Entry& entry : values->entries) {
            if (!entry.IsStored() || (id != 0xFFFFFFFF && entry.id != id))
                continue;
            sum += HashValue(entry.value);
            if (id == 0xFFFFFFFF)
                sum += static_cast<unsigned int>(HashMix64(std::uint64_t{entry.id} << 32 | HashValue(entry.value)));
        }
    return sum;
}

// Streams.

namespace {

constexpr std::size_t LEAST_STORED = 6;    // id, type and one byte

void MoveValue(CXArchive& ar, Bytes& bytes)
{
    if (ar.IsStoring())
        ar.WriteCount(bytes.size());
    else {
        const std::uint64_t size = ar.ReadCount();
        if (size > 0xFFFFFFFF)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
        bytes.resize(size);
    }
    ar.MoveNumbers(bytes.data(), bytes.size());
}
void MoveValue(CXArchive& ar, CXArray<Text>& texts) { texts.Serialize(ar); }
template <class T> void MoveValue(CXArchive& ar, T& value) { Move(ar, value); }

void CheckDepth(unsigned int depth)
{
    if (depth > CUSTOM_MOST_DEPTH)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE, L"bags nested too deep");
}

}

void CCustomData::Serialize(CXArchive& ar)
{
    if (ar.IsStoring())
        Store(ar, 1);
    else {
        CCustomData loaded;
        loaded.Load(ar, 1);
        *this = std::move(loaded);
    }
}

void CCustomData::Store(CXArchive& ar, unsigned int depth) const
{
    CheckDepth(depth);
    if (!m_values) {
        ar.WriteCount(0);
        return;
    }
    auto& entries = m_values->entries;
    ar.WriteCount(
        static_cast<std::uint64_t>(std::count_if(entries.begin(), entries.end(), [](const Values::Entry& e) { return e.IsStored(); })));
    for (Values::Entry& entry : entries) {
        if (!entry.IsStored())
            continue;
        ar << entry.id << static_cast<unsigned char>(entry.Type());
        std::visit(
            [&](auto& value) {
                using T = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<T, Nested>)
                    value.bag->Store(ar, depth + 1);
                else if constexpr (!std::is_same_v<T, std::monostate> && !std::is_same_v<T, void*>)
                    MoveValue(ar, value);
            },
            entry.value);
    }
}

void CCustomData::Load(CXArchive& ar, unsigned int depth)
{
    CheckDepth(depth);
    const std::uint64_t count = ar.ReadCount(LEAST_STORED);
    if (count == 0)
        return;
    m_values = std::make_unique<Values>();
    auto& entries = m_values->entries;
    entries.reserve(count);
    for (std::uint64_t i = 0; i < count; i++) {
        unsigned int id;
        unsigned char type;
        ar >> id >> type;
        if (type == CUSTOM_NONE || type >= CUSTOM_POINTER)
            XThrowArchive(CXArchiveException::ARCHIVE_UNKNOWN_TYPE);
        if (!entries.empty() && !Values::IsBefore(entries.back(), id, type))
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
        entries.push_back({id, MakeValue(type, std::make_index_sequence<CUSTOM_POINTER + 1>())});
        std::visit(
            [&](auto& value) {
                using T = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<T, Nested>)
                    value.bag->Load(ar, depth + 1);
                else if constexpr (!std::is_same_v<T, std::monostate> && !std::is_same_v<T, void*>)
                    MoveValue(ar, value);
            },
            entries.back().value);
    }
}

// Preferences file: header, then the bag's stream.

namespace {

struct PrefsHeader {
    std::uint32_t magic, version, fileID, kindID;
    std::uint64_t size, sum;    // of the stream behind
};
static_assert(sizeof(PrefsHeader) == 32);

constexpr std::uint32_t PREFS_MAGIC = FourCC("ZPRF"), PREFS_VERSION = 1;
constexpr std::uint64_t MOST_PREFS = std::uint64_t{256} << 20;

std::uint64_t SumOfPrefs(const void* bytes, std::size_t size)
{
    std::uint64_t hash = 14695981039346656037u;
    for (std::size_t i = 0; i < size; i++)
        hash = (hash ^ static_cast<const unsigned char*>(bytes)[i]) * 1099511628211u;
    return hash;
}

}

bool CCustomData::LoadFromPrefs(const Text& path, unsigned int fileID, unsigned int kindID)
{
    IoFile file;
    PrefsHeader header;
    if (!file.OpenFile(path, 1, nullptr) || file.ReadBytes(&header, sizeof header) < sizeof header)
        return false;
    if (header.magic != PREFS_MAGIC || header.version != PREFS_VERSION || header.fileID != fileID || header.kindID != kindID)
        return false;
    if (header.size > MOST_PREFS || header.size != file.GetLength() - sizeof header)
        return false;
    Bytes bytes(header.size);
    if (file.ReadBytes(bytes.data(), bytes.size()) < bytes.size() || SumOfPrefs(bytes.data(), bytes.size()) != header.sum)
        return false;
    try {
        CCustomMemFile memory(bytes.data(), bytes.size());
        CXArchive ar(&memory, CXArchive::LOAD);
        Serialize(ar);
        return true;
    } catch (CXException* exception) {
        XDeleteThreadException(exception);
        return false;
    }
}

bool CCustomData::SaveToPrefs(const Text& path, unsigned int fileID, unsigned int kindID) const
{
    try {
        CCustomMemFile memory;
        CXArchive ar(&memory, CXArchive::STORE);
        if (const Values* const values = ValuesOf(this); values)
            Store(ar, 1);
        else
            ar.WriteCount(0);
        ar.Close();
        const std::size_t size = memory.GetLength();
        const PrefsHeader header = {PREFS_MAGIC, PREFS_VERSION, fileID, kindID, size, SumOfPrefs(memory.GetBytes(), size)};
        IoFile file;
        return file.OpenFile(path, 0, nullptr) && file.WriteBytes(&header, sizeof header) && file.WriteBytes(memory.GetBytes(), size) &&
               file.CloseFile(true);
    } catch (CXException* exception) {
        XDeleteThreadException(exception);
        return false;
    }
}

// Text.

namespace {

constexpr std::size_t MOST_SHOWN = 16;    // bytes of a binary value

constexpr const wchar_t* TYPE_NAMES[] = {L"none",   L"bool",   L"int",     L"unsigned", L"int64", L"unsigned64", L"float",
                                         L"double", L"string", L"strings", L"binary",   L"bag",   L"pointer"};

Text NameOfID(unsigned int id)
{
    Text name(L"'");
    for (int shift = 24; shift >= 0; shift -= 8) {
        const wchar_t character = static_cast<wchar_t>(id >> shift & 0xFF);
        if (character < 32 || character > 126) {
            name.FormatString(L"0x%08X", id);
            return name;
        }
        name += character;
    }
    return name + L'\'';
}

template <class T> Text NumberText(T number)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;    // the shortest that reads back the same
    return Utf8ToWide(std::string_view(digits, end - digits));
}

Text Quoted(Text text)
{
    text.Replace(L"\\", L"\\\\");
    text.Replace(L"\"", L"\\\"");
    text.Replace(L"\n", L"\\n");
    text.Replace(L"\r", L"\\r");
    text.Replace(L"\t", L"\\t");
    return L"\"" + text + L"\"";
}

Text BytesText(const Bytes& bytes)
{
    Text text = NumberText(bytes.size()) + (bytes.size() == 1 ? L" byte" : L" bytes");
    for (std::size_t i = 0; i < std::min(bytes.size(), MOST_SHOWN); i++) {
        Text byte;
        byte.FormatString(L"%s%02X", i ? L" " : L": ", bytes[i]);
        text += byte;
    }
    return bytes.size() > MOST_SHOWN ? text + L" ..." : text;
}

Text ValueText(const Value& value)
{
    return std::visit(
        [](const auto& v) -> Text {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, bool>)
                return v ? L"true" : L"false";
            else if constexpr (std::is_arithmetic_v<T>)
                return NumberText(v);
            else if constexpr (std::is_same_v<T, Text>)
                return Quoted(v);
            else if constexpr (std::is_same_v<T, CXArray<Text>>) {
                Text list;
                for (const Text& text : v)
                    list += (list.IsEmpty() ? L"" : L", ") + Quoted(text);
                return list;
            } else if constexpr (std::is_same_v<T, Bytes>)
                return BytesText(v);
            else if constexpr (std::is_same_v<T, Nested>)
                return NumberText(v.bag->GetCount()) + (v.bag->GetCount() == 1 ? L" value" : L" values");
            else if constexpr (std::is_same_v<T, void*>)
                return v ? L"set" : L"null";
            else
                return {};
        },
        value);
}

}

struct CCustomData::Dump {
    Text& out;
    unsigned int indent;
    bool html;

    void Lines(const CCustomData* bag, unsigned int depth)
    {
        const Values* const values = ValuesOf(bag);
        if (!values || depth == CUSTOM_MOST_DEPTH)
            return;
        for (const Values::Entry& entry : values->entries) {
            Text line = NameOfID(entry.id) + L' ' + TYPE_NAMES[entry.Type()] + L' ' + ValueText(entry.value);
            line.Trim();
            if (html) {
                line.Replace(L"&", L"&amp;");
                line.Replace(L"<", L"&lt;");
                line.Replace(L">", L"&gt;");
            }
            out += Text(L' ', static_cast<int>(4 * indent * depth)) + line + (html ? L"<br>" : L"\n");
            if (const Nested* const nested = std::get_if<Nested>(&entry.value))
                Lines(nested->bag.get(), depth + 1);
        }
    }
};

void CCustomData::DumpCustomData(Text& out, unsigned int indent, bool html) const { Dump{out, std::min(indent, 8u), html}.Lines(this, 0); }
