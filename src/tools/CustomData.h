#pragma once

#include <cstdint>
#include <memory>

#include "tools/Array.h"
#include "tools/Color.h"
#include "tools/Hash.h"
#include "tools/Object.h"
#include "tools/String.h"

/// Types of a value in a bag.
enum _CUSTOM_DATA_TYPE {
    CUSTOM_NONE = 0,
    CUSTOM_BOOL = 1,
    CUSTOM_INT = 2,
    CUSTOM_UNSIGNED = 3,
    CUSTOM_INT64 = 4,
    CUSTOM_UNSIGNED64 = 5,
    CUSTOM_FLOAT = 6,
    CUSTOM_DOUBLE = 7,
    CUSTOM_STRING = 8,
    CUSTOM_STRING_ARRAY = 9,
    CUSTOM_BINARY = 10,
    CUSTOM_BAG = 11,
    CUSTOM_POINTER = 12,    ///< never stored, not part of checksums
};

/// Levels of bags in bags, the outermost counted.
constexpr unsigned int CUSTOM_MOST_DEPTH = 64;

/// Bag of typed values under 32-bit ids. One id can hold one value of each type, side by side.
///
/// A getter finds only a value of its own type; without one it gives the default and returns false. Null `this` reads as an
/// empty bag. An empty bag costs one pointer. Finding is a binary search; values entered in ascending order are appended.
///
/// Bags nest up to CUSTOM_MOST_DEPTH deep.
class ZEL_API CCustomData : public CXObject {
    ZEL_DECLARE_CREATABLE(CCustomData)
public:
    CCustomData();
    CCustomData(const CCustomData& other);
    CCustomData(CCustomData&& other) noexcept;
    ~CCustomData() override;
    CCustomData& operator=(const CCustomData& other);    // deep
    CCustomData& operator=(CCustomData&& other) noexcept;
    bool operator==(const CCustomData& other) const;    // pointers left out
    /// Number of values, then id, type and value of each, by id and type. Pointer values are left out. A damaged stream
    /// leaves the bag as it was. Throws ARCHIVE_BAD_VALUE, either way, for bags nested too deep.
    void Serialize(CXArchive& ar) override;

    bool GetBool(unsigned int id, bool& out, bool def = false) const;
    bool GetInt(unsigned int id, int& out, int def = 0) const;
    bool GetUnsigned(unsigned int id, unsigned int& out, unsigned int def = 0) const;
    bool GetInt64(unsigned int id, std::int64_t& out, std::int64_t def = 0) const;
    bool GetUnsigned64(unsigned int id, std::uint64_t& out, std::uint64_t def = 0) const;
    bool GetFloat(unsigned int id, float& out, float def = 0) const;
    bool GetDouble(unsigned int id, double& out, double def = 0) const;
    bool GetString(unsigned int id, CXTString<wchar_t>& out, const CXTString<wchar_t>& def = {}) const;
    bool GetStringArray(unsigned int id, CXArray<CXTString<wchar_t>>& out) const;
    /// The bytes in place, and their number; null and 0 when absent. Valid until the value changes.
    const void* GetData(unsigned int id, unsigned int& size) const;
    /// Copies exactly `size` bytes; false, with nothing copied, when the value has another size.
    bool GetData(unsigned int id, void* out, unsigned int size) const;
    /// The nested bag in place, or null.
    CCustomData* GetCustomData(unsigned int id) const;
    bool GetPointer(unsigned int id, void*& out, void* def = nullptr) const;
    /// Four bytes stored as binary.
    bool GetColor(unsigned int id, CRGBColor& out, const CRGBColor& def = {}) const;

    void SetBool(unsigned int id, bool value);
    void SetInt(unsigned int id, int value);
    void SetUnsigned(unsigned int id, unsigned int value);
    void SetInt64(unsigned int id, std::int64_t value);
    void SetUnsigned64(unsigned int id, std::uint64_t value);
    void SetFloat(unsigned int id, float value);
    void SetDouble(unsigned int id, double value);
    void SetString(unsigned int id, const CXTString<wchar_t>& value);
    void SetStringArray(unsigned int id, const CXArray<CXTString<wchar_t>>& value);
    void SetData(unsigned int id, const void* bytes, unsigned int size);
    /// Stores a copy, `this` included. False, with nothing changed, when that would nest too deep.
    bool SetCustomData(unsigned int id, const CCustomData& value);
    /// The nested bag in place, made empty when absent.
    CCustomData& MakeCustomData(unsigned int id);
    void SetPointer(unsigned int id, void* value);
    void SetColor(unsigned int id, const CRGBColor& value);

    bool HasData(unsigned int id) const;    // of any type
    bool HasData(unsigned int id, _CUSTOM_DATA_TYPE type) const;
    bool IsEmpty() const { return GetCount() == 0; }
    /// Number of values; an id with values of two types counts twice.
    unsigned int GetCount() const;
    /// Id and type of value `index`, in ascending order of id and type; false when there is none.
    bool GetIDByIndex(unsigned int index, unsigned int& id, unsigned int& type) const;
    bool Remove(unsigned int id);    // all types
    bool Remove(unsigned int id, _CUSTOM_DATA_TYPE type);
    void RemoveAll();

    /// Checksum of the values of one id, without the id itself; 0xFFFFFFFF as id means all, ids included. 0 for nothing. Equal
    /// bags give equal sums in every run.
    unsigned int GetChecksum(unsigned int id = 0xFFFFFFFF) const;
    /// Appends a line for each value, "'ABCD' type value"; the lines of a bag follow its own, indented by `indent` levels of four
    /// blanks more. With `html` the text is escaped for the help mark-up, and lines end with <br>.
    void DumpCustomData(CXTString<wchar_t>& out, unsigned int indent, bool html) const;

    /// Reads a preferences file written under the same two identifiers. False, with the bag unchanged, when it is missing,
    /// damaged or of another identity.
    bool LoadFromPrefs(const CXTString<wchar_t>& path, unsigned int fileID, unsigned int kindID);
    /// Writes beside the target and renames over it.
    bool SaveToPrefs(const CXTString<wchar_t>& path, unsigned int fileID, unsigned int kindID) const;

private:
    struct Values;
    struct Dump;

    static const Values* ValuesOf(const CCustomData* bag);
    template <class T> bool GetValue(unsigned int id, T& out, const T& def) const;
    template <class T> T& Make(unsigned int id);
    unsigned int GetNesting() const;
    void Store(CXArchive& ar, unsigned int depth) const;
    void Load(CXArchive& ar, unsigned int depth);

    std::unique_ptr<Values> m_values;    ///< null when empty
};
