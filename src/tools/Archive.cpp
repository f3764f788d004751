#include "tools/Archive.h"

#include <algorithm>
#include <cstring>

#include "tools/Exception.h"
#include "tools/IoFile.h"

namespace {

constexpr std::uint32_t COUNT_IS_LONG = 0xFFFFFFFF;    // a 64-bit count follows
constexpr std::uint32_t NO_CLASS = 0;                  // class n of the stream is told as n + 1
constexpr std::size_t MOST_CLASS_NAME = 255;
constexpr int MOST_DEPTH = 256;

}

CXArchive::CXArchive(IoFile* file, Mode mode, unsigned int bufferSize) : m_file(file), m_mode(mode), m_buffer(std::max(bufferSize, 64u))
{
    if (IsLoading() && file) {
        const std::uint64_t length = file->GetLength(), position = file->GetPosition();
        m_left = length == IoFile::LENGTH_UNKNOWN ? length : length - std::min(position, length);
    }
}

CXArchive::~CXArchive() = default;

void CXArchive::Flush()
{
    if (IsStoring())
        FlushBuffer();
}

void CXArchive::FlushBuffer()
{
    const std::size_t size = m_position;
    m_position = 0;
    if (size && (!m_file || !m_file->WriteBytes(m_buffer.data(), size)))
        XThrowArchive(CXArchiveException::ARCHIVE_WRITE);
}

void CXArchive::Close()
{
    if (!m_file)
        return;
    Flush();
    if (IsLoading() && m_filled > m_position)
        m_file->SetPosition(m_file->GetPosition() - (m_filled - m_position));
    m_position = m_filled = 0;
    m_left = 0;
    m_file = nullptr;
}

void CXArchive::Write(const void* bytes, std::size_t size)
{
    if (!IsStoring() || !m_file)
        XThrowArchive(CXArchiveException::ARCHIVE_WRITE);
    if (size > m_buffer.size() - m_position)
        FlushBuffer();
    if (size >= m_buffer.size()) {    // large blocks take no detour
        if (!m_file->WriteBytes(bytes, size))
            XThrowArchive(CXArchiveException::ARCHIVE_WRITE);
    } else if (size) {
        std::memcpy(m_buffer.data() + m_position, bytes, size);
        m_position += size;
    }
}

void CXArchive::Read(void* bytes, std::size_t size)
{
    if (!IsLoading())
        XThrowArchive(CXArchiveException::ARCHIVE_GENERIC);
    std::byte* out = static_cast<std::byte*>(bytes);
    const std::size_t ready = std::min(size, m_filled - m_position);
    if (ready) {
        std::memcpy(out, m_buffer.data() + m_position, ready);
        m_position += ready;
        out += ready;
        size -= ready;
    }
    if (size == 0)
        return;
    if (size >= m_buffer.size()) {
        if (ReadFile(out, size) < size)
            XThrowArchive(CXArchiveException::ARCHIVE_END_OF_FILE);
        return;
    }
    m_position = m_filled = 0;
    m_filled = ReadFile(m_buffer.data(), m_buffer.size());
    if (m_filled < size) {
        m_position = m_filled;
        XThrowArchive(CXArchiveException::ARCHIVE_END_OF_FILE);
    }
    std::memcpy(out, m_buffer.data(), size);
    m_position = size;
}

std::size_t CXArchive::ReadFile(void* bytes, std::size_t size)
{
    const std::size_t got = m_file ? m_file->ReadBytes(bytes, size) : 0;
    if (m_left != IoFile::LENGTH_UNKNOWN)
        m_left = got < size ? 0 : m_left - std::min<std::uint64_t>(got, m_left);
    return got;
}

std::uint64_t CXArchive::GetRemaining() const { return m_left == IoFile::LENGTH_UNKNOWN ? m_left : m_left + (m_filled - m_position); }

void CXArchive::CheckCount(std::uint64_t count, std::size_t size) const
{
    if (size && count > GetRemaining() / size)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
}

void CXArchive::WriteCount(std::uint64_t count)
{
    if (count < COUNT_IS_LONG)
        *this << static_cast<std::uint32_t>(count);
    else
        *this << COUNT_IS_LONG << count;
}

std::uint64_t CXArchive::ReadCount(std::size_t size)
{
    std::uint32_t word;
    *this >> word;
    std::uint64_t count = word;
    if (word == COUNT_IS_LONG)
        *this >> count;
    CheckCount(count, size);
    return count;
}

void CXArchive::WriteClass(const CXRuntimeClass* type)
{
    if (!type) {
        *this << NO_CLASS;
        return;
    }
    const auto found = std::find(m_classes.begin(), m_classes.end(), type);
    *this << static_cast<std::uint32_t>(found - m_classes.begin() + 1);
    if (found != m_classes.end())
        return;
    m_classes.push_back(type);
    const std::size_t length = std::strlen(type->GetName());
    WriteCount(length);
    Write(type->GetName(), length);
}

const CXRuntimeClass* CXArchive::ReadClass(const CXRuntimeClass* base)
{
    std::uint32_t number;
    *this >> number;
    if (number == NO_CLASS)
        return nullptr;
    if (number > m_classes.size() + 1)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    if (number == m_classes.size() + 1) {
        const std::uint64_t length = ReadCount();
        if (length > MOST_CLASS_NAME)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
        char name[MOST_CLASS_NAME + 1] = {};
        Read(name, length);
        const CXRuntimeClass* const type = CXRuntimeClass::Find(name);
        if (!type)
            XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
        m_classes.push_back(type);
    }
    const CXRuntimeClass* const type = m_classes[number - 1];
    if (base && !type->IsDerivedFrom(base))
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    return type;
}

void CXArchive::WriteObject(const CXObject* object)
{
    WriteClass(object ? object->GetRuntimeClassDescriptor() : nullptr);
    if (object)
        const_cast<CXObject*>(object)->Serialize(*this);
}

CXObject* CXArchive::ReadObject(const CXRuntimeClass* base)
{
    const CXRuntimeClass* const type = ReadClass(base);
    if (!type)
        return nullptr;
    if (m_depth == MOST_DEPTH)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_VALUE);
    std::unique_ptr<CXObject> object(type->CreateObject());
    if (!object)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_CLASS);
    struct Nesting {
        int& depth;
        explicit Nesting(int& d) : depth(d) { depth++; }
        ~Nesting() { depth--; }
    } const nesting(m_depth);
    object->Serialize(*this);
    return object.release();
}

CXArchive& CXArchive::operator<<(const CXTString<wchar_t>& text)
{
    const std::string bytes = WideToUtf8(text);
    WriteCount(bytes.size());
    Write(bytes.data(), bytes.size());
    return *this;
}

CXArchive& CXArchive::operator>>(CXTString<wchar_t>& text)
{
    const std::uint64_t size = ReadCount();
    if (size > 0x7FFFFFFF)
        XThrowArchive(CXArchiveException::ARCHIVE_BAD_COUNT);
    std::string bytes(size, '\0');
    Read(bytes.data(), size);
    text = Utf8ToWide(bytes);
    return *this;
}
