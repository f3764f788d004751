#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tools/Object.h"
#include "tools/String.h"

class IoFile;

/// Typed binary stream over a file, one direction at a time.
///
/// Bytes: little-endian, fixed width (bool one byte); strings are a count and UTF-8; a class is named once and then
/// told by its number. Every count and size is checked against what the file still holds before anything is allocated.
/// A damaged or short stream throws CXArchiveException.
class ZEL_API CXArchive {
public:
    enum Mode { STORE = 0, LOAD = 1 };

    /// `file` is open in that direction and outlives the archive. Buffers at least `bufferSize` bytes.
    CXArchive(IoFile* file, Mode mode, unsigned int bufferSize = 4096);
    /// Drops what is not flushed; Close reports it.
    ~CXArchive();
    CXArchive(const CXArchive&) = delete;
    CXArchive& operator=(const CXArchive&) = delete;

    bool IsStoring() const { return m_mode == STORE; }
    bool IsLoading() const { return m_mode == LOAD; }
    /// Throws ARCHIVE_WRITE when the file refuses the bytes.
    void Flush();
    /// Flushes, or sets the file back to the first byte that was not taken, and lets go of it.
    void Close();

    /// Context of whoever streams: passed on, not looked at.
    void SetData(void* data) { m_data = data; }
    void* GetData() const { return m_data; }

    void Write(const void* bytes, std::size_t size);
    void Read(void* bytes, std::size_t size);
    /// Bytes that the stream can still give; for a stream of unknown length a very large number.
    std::uint64_t GetRemaining() const;
    /// Throws unless `count` elements of at least `size` bytes each can still come.
    void CheckCount(std::uint64_t count, std::size_t size) const;

    void WriteCount(std::uint64_t count);
    /// A count of elements that take at least `size` bytes each in the stream (0: not checked).
    std::uint64_t ReadCount(std::size_t size = 1);

    void WriteClass(const CXRuntimeClass* type);
    /// Null for no class. Throws for a class that is unknown or, with `base`, does not derive from it.
    const CXRuntimeClass* ReadClass(const CXRuntimeClass* base = nullptr);
    /// Class and contents; null is stored as no class.
    void WriteObject(const CXObject* object);
    /// The caller owns the object. Throws for an abstract class, and for objects nested deeper than 256.
    CXObject* ReadObject(const CXRuntimeClass* base = nullptr);

    /// `count` numbers (1, 2, 4 or 8 bytes each) as one block, in the archive's direction.
    template <class T> void MoveNumbers(T* values, std::size_t count)
    {
        static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>);
        static_assert(std::endian::native == std::endian::little, "blocks move as they stand in memory");
        if (IsStoring())
            Write(values, count * sizeof(T));
        else
            Read(values, count * sizeof(T));
    }

    template <class T>
    requires std::is_arithmetic_v<T> CXArchive& operator<<(T value)
    {
        Write(&value, sizeof(T));
        return *this;
    }
    template <class T>
    requires std::is_arithmetic_v<T> CXArchive& operator>>(T& value)
    {
        if constexpr (std::is_same_v<T, bool>) {
            unsigned char byte;
            Read(&byte, 1);
            value = byte != 0;
        } else
            Read(&value, sizeof(T));
        return *this;
    }
    CXArchive& operator<<(const CXTString<wchar_t>& text);
    CXArchive& operator>>(CXTString<wchar_t>& text);

private:
    void FlushBuffer();
    std::size_t ReadFile(void* bytes, std::size_t size);

    IoFile* m_file;
    Mode m_mode;
    void* m_data = nullptr;
    std::vector<std::byte> m_buffer;
    std::size_t m_position = 0;    ///< next byte of the buffer
    std::size_t m_filled = 0;      ///< bytes of the buffer that were read
    std::uint64_t m_left = 0;      ///< bytes of the file behind the buffer
    int m_depth = 0;               ///< objects being read inside each other
    std::vector<const CXRuntimeClass*> m_classes;
};

/// `value` through the archive, in its direction.
template <class T> void Move(CXArchive& ar, T& value)
{
    if constexpr (std::is_enum_v<T>) {
        auto number = static_cast<std::underlying_type_t<T>>(value);
        Move(ar, number);
        value = static_cast<T>(number);
    } else if (ar.IsStoring())
        ar << value;
    else
        ar >> value;
}
