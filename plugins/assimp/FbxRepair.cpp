#include "FbxRepair.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t HEAD_SIZE = 27, VERSION_AT = 23;
constexpr std::uint32_t FIRST_WIDE_VERSION = 7500;
constexpr std::size_t RECORD_HEAD = 25;    // end, number and size of the values: eight bytes each; length of the name
constexpr std::size_t FOOT_ID = 16, FOOT_ZEROS = 4, FOOT_REST = 4 + 120 + 16;    // version, zeros, mark

template <class T> T ReadAt(std::string_view bytes, std::size_t at)
{
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

/// One run of RepairFbx.
class FbxCopy {
public:
    explicit FbxCopy(std::string_view from) : m_from(from) { m_to.reserve(from.size() + from.size() / 8); }

    std::string Run()
    {
        if (m_from.size() < HEAD_SIZE || ReadAt<std::uint32_t>(m_from, VERSION_AT) < FIRST_WIDE_VERSION)
            return {};
        Copy(HEAD_SIZE);
        while (HasNode(m_from.size()))
            if (!CopyNode(m_from.size(), 0))
                return {};
        return CopyFoot() ? std::move(m_to) : std::string();
    }

private:
    static constexpr int DEEPEST = 64;

    void Copy(std::size_t size)
    {
        m_to.append(m_from.substr(m_at, size));
        m_at += size;
    }

    bool HasNode(std::size_t end) const { return m_at + RECORD_HEAD <= end && ReadAt<std::uint64_t>(m_from, m_at) != 0; }

    bool CopyNode(std::size_t limit, int depth)
    {
        const std::size_t end = ReadAt<std::uint64_t>(m_from, m_at), valueSize = ReadAt<std::uint64_t>(m_from, m_at + 16);
        const std::size_t ownSize = RECORD_HEAD + static_cast<unsigned char>(m_from[m_at + RECORD_HEAD - 1]) + valueSize;
        if (end > limit || end < m_at || valueSize > end || ownSize > end - m_at || depth > DEEPEST)
            return false;
        const std::size_t head = m_to.size();
        Copy(ownSize);
        const bool hasChildren = m_at < end;
        while (HasNode(end))
            if (!CopyNode(end, depth + 1))
                return false;
        m_at = end;    // behind an empty record, if there is one
        if (hasChildren)
            m_to.append(RECORD_HEAD, '\0');
        const std::uint64_t newEnd = m_to.size();
        std::memcpy(m_to.data() + head, &newEnd, sizeof newEnd);
        return true;
    }

    // What fills the foot up to a border of 16 bytes depends on where it stands.
    bool CopyFoot()
    {
        if (m_from.size() < m_at + RECORD_HEAD + FOOT_ID + FOOT_REST)
            return false;
        Copy(RECORD_HEAD + FOOT_ID);
        m_to.append(FOOT_ZEROS, '\0');
        m_to.append(16 - m_to.size() % 16, '\0');
        m_to.append(m_from.substr(m_from.size() - FOOT_REST));
        return true;
    }

    const std::string_view m_from;
    std::size_t m_at = 0;
    std::string m_to;
};

}

std::string RepairFbx(std::string_view file) { return FbxCopy(file).Run(); }
