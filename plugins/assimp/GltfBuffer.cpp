#include "GltfBuffer.h"

#include <algorithm>

GltfBuffer::GltfBuffer()
{
    m_accessors.Open('[');
    m_views.Open('[');
}

int GltfBuffer::AddView(std::size_t size, Target target)
{
    const std::size_t start = (m_bytes.size() + 3) & ~std::size_t{3};
    if (start + size > m_bytes.capacity())
        m_bytes.reserve(std::max(2 * m_bytes.capacity(), start + size));
    m_bytes.resize(start + size);
    m_views.Open('{').Member("buffer", 0).Member("byteOffset", start).Member("byteLength", size);
    if (target != NO_TARGET)
        m_views.Member("target", static_cast<int>(target));
    m_views.Close('}');
    return m_viewCount++;
}

int GltfBuffer::AddAccessor(int view, Component component, int components, std::size_t count)
{
    const char* const types[] = {"", "SCALAR", "VEC2", "VEC3", "VEC4"};
    EndAccessor();
    m_accessors.Open('{').Member("bufferView", view).Member("componentType", static_cast<int>(component)).Member("count", count);
    m_accessors.Member("type", components == 16 ? "MAT4" : types[components]);
    if (component == BYTES && components == 4)
        m_accessors.Member("normalized", true);
    m_isAccessorOpen = true;
    return m_accessorCount++;
}

void GltfBuffer::EndAccessor()
{
    if (m_isAccessorOpen)
        m_accessors.Close('}');
    m_isAccessorOpen = false;
}

void GltfBuffer::SetLimits(const float* data, int components, std::size_t count)
{
    double least[3] = {}, most[3] = {};    // as doubles: all digits, as the numbers are compared
    const auto width = static_cast<std::size_t>(components);
    for (std::size_t c = 0; c < width; c++) {
        float low = data[c], high = data[c];
        for (std::size_t i = 0; i < count; i++) {
            low = std::min(low, data[i * width + c]);
            high = std::max(high, data[i * width + c]);
        }
        least[c] = low, most[c] = high;
    }
    m_accessors.Key("min").Numbers(least, width).Key("max").Numbers(most, width);
}

int GltfBuffer::AddBytes(std::span<const unsigned char> bytes)
{
    const int view = AddView(bytes.size(), NO_TARGET);
    std::ranges::copy(bytes, m_bytes.end() - static_cast<std::ptrdiff_t>(bytes.size()));
    return view;
}

std::string GltfBuffer::TakeAccessors()
{
    EndAccessor();
    return m_accessorCount > 0 ? m_accessors.Close(']').GetText() : std::string();
}

std::string GltfBuffer::TakeViews() { return m_viewCount > 0 ? m_views.Close(']').GetText() : std::string(); }
