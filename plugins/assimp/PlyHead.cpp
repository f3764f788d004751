#include "PlyHead.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

constexpr std::size_t MOST_TEXT = 1 << 20;    // comments are part of it
constexpr double TEXT_VALUE = 2;              // bytes of the shortest value: a digit and what separates it from the next

double SizeOfType(const std::string& type)
{
    if (type == "char" || type == "uchar" || type == "int8" || type == "uint8")
        return 1;
    if (type == "short" || type == "ushort" || type == "int16" || type == "uint16")
        return 2;
    return type == "double" || type == "float64" ? 8 : 4;
}

// Takes the next line, without its end, off the bytes. False when there is no whole line left.
bool TakeLine(const std::string& bytes, std::size_t& position, std::string& line, std::string& lineEnd)
{
    const std::size_t end = bytes.find_first_of("\r\n", position);
    if (end == std::string::npos)
        return false;
    if (lineEnd.empty())
        lineEnd = bytes[end] == '\n' ? "\n" : bytes.compare(end, 2, "\r\n") == 0 ? "\r\n" : "\r";
    line = bytes.substr(position, end - position);
    position = end + (bytes.compare(end, lineEnd.size(), lineEnd) == 0 ? lineEnd.size() : 1);
    return true;
}

bool IsShape(const std::string& name) { return name == "vertex" || name == "face" || name == "tristrips"; }
bool IsKnown(const std::string& name) { return IsShape(name) || name == "edge" || name == "material" || name == "TextureFile"; }

std::string ReadStart(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string bytes(MOST_TEXT, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return bytes;
}

}

std::optional<PlyHead> PlyHead::Read(const std::string& path)
{
    const std::string bytes = ReadStart(path);
    PlyHead head;
    std::size_t position = 0;
    for (std::string line; !line.starts_with("end_header");) {
        const std::size_t start = position;
        if (!TakeLine(bytes, position, line, head.m_lineEnd) || (start == 0 && !line.starts_with("ply") && !line.starts_with("PLY")))
            return std::nullopt;
        head.AddLine(start, line);
    }
    head.m_text = bytes.substr(0, position);
    if (position < bytes.size())
        head.m_firstByte = bytes[position];
    return head;
}

void PlyHead::AddLine(std::size_t start, const std::string& line)
{
    std::istringstream words(line);
    std::string keyword, word;
    words >> keyword >> word;
    if (keyword == "format")
        m_isText = word == "ascii";
    if (keyword == "element") {
        double count = 0;
        words >> count;
        m_elements.push_back({word, start, start + line.size(), count, 0});
    }
    if (keyword == "property" && !m_elements.empty()) {
        if (word == "list")
            words >> word;    // the type of its count, which is all that an empty one has
        m_elements.back().size += m_isText ? TEXT_VALUE : SizeOfType(word);
    }
}

// An element without properties still takes a byte, the end of its line; readers would count to its number for nothing.
double PlyHead::GetLeastContent() const
{
    double total = 0;
    for (const Element& element : m_elements)
        total += element.count * std::max(element.size, 1.0);
    return total;
}

// Those behind the last shape do no harm.
std::vector<PlyHead::Element> PlyHead::FindUnknown() const
{
    const auto last = std::ranges::find_if(m_elements.rbegin(), m_elements.rend(), IsShape, &Element::name).base();
    std::vector<Element> unknown;
    std::copy_if(m_elements.begin(), last, std::back_inserter(unknown),
                 [](const Element& element) { return element.count > 0 && !IsKnown(element.name); });
    return unknown;
}

bool PlyHead::CanBeMended() const { return CountStrangers() == 1 && std::ranges::count(m_elements, "edge", &Element::name) == 0; }

std::string PlyHead::Mend() const
{
    if (BeginsWithLineFeed()) {    // an element of one byte in front of all others
        const std::size_t place = m_elements.empty() ? 0 : m_elements.front().line;
        const std::string element = "element edge 1" + m_lineEnd + "property uchar none" + m_lineEnd;
        return m_text.substr(0, place) + element + m_text.substr(place) + "-";
    }
    const Element stranger = FindUnknown().front();
    std::ostringstream line;
    line << "element edge " << static_cast<unsigned long long>(stranger.count);
    return m_text.substr(0, stranger.line) + line.str() + m_text.substr(stranger.lineEnd);
}
