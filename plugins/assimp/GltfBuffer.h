#pragma once

#include <span>
#include <string>

#include "JsonText.h"
#include "PointJoin.h"

/// The one buffer of a glTF file, and the descriptions of what lies in it.
class GltfBuffer {
public:
    enum Component { BYTES = 5121, SHORTS = 5123, INTS = 5125, FLOATS = 5126 };
    enum Target { NO_TARGET = 0, VERTICES = 34962, INDICES = 34963 };

    GltfBuffer();

    /// Room for `count` elements of `components` numbers each, from a border of four bytes on, and its description; `index` is that of the
    /// accessor. The room is valid until the next call.
    template <class T> T* AddArray(Component component, int components, std::size_t count, Target target, int& index)
    {
        const std::size_t size = count * static_cast<std::size_t>(components) * sizeof(T);
        const int view = AddView(size, target);
        index = AddAccessor(view, component, components, count);
        return reinterpret_cast<T*>(m_bytes.data() + m_bytes.size() - size);
    }
    /// The smallest and largest numbers of the accessor made last, which is of floats.
    void SetLimits(const float* data, int components, std::size_t count);
    /// Bytes as they are, such as a file; the index of their view.
    int AddBytes(std::span<const unsigned char> bytes);

    const BlockVector<unsigned char>& GetBytes() const { return m_bytes; }
    /// The sections of the file; empty for none.
    std::string TakeAccessors();
    std::string TakeViews();

private:
    int AddView(std::size_t size, Target target);
    int AddAccessor(int view, Component component, int components, std::size_t count);
    void EndAccessor();

    BlockVector<unsigned char> m_bytes;
    JsonText m_accessors, m_views;
    int m_accessorCount = 0, m_viewCount = 0;
    bool m_isAccessorOpen = false;
};
