#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// The head of a PLY file: the lines up to and with "end_header".
///
/// The import library misreads two kinds of file. It takes a line feed that begins binary content for the end of the last line, so that all that
/// follows is one byte off; and it does not pass over elements whose names it does not know. "edge" it knows, and makes nothing of: under that
/// name other elements can go, but only one.
class PlyHead {
public:
    /// Null for a file without a whole head.
    static std::optional<PlyHead> Read(const std::string& path);

    std::size_t GetSize() const { return m_text.size(); }
    /// Bytes that the content takes at least.
    double GetLeastContent() const;

    bool MisleadsLibrary() const { return CountStrangers() > 0; }
    bool CanBeMended() const;
    /// What the library can read in place of the head.
    std::string Mend() const;

private:
    struct Element {
        std::string name;
        std::size_t line, lineEnd;    ///< where it is announced
        double count;
        double size;    ///< bytes that one takes at least
    };

    void AddLine(std::size_t start, const std::string& line);
    bool BeginsWithLineFeed() const { return !m_isText && m_firstByte == '\n' && m_lineEnd != "\r\n"; }
    std::vector<Element> FindUnknown() const;
    std::size_t CountStrangers() const { return FindUnknown().size() + (BeginsWithLineFeed() ? 1 : 0); }

    std::string m_text, m_lineEnd;    ///< the end of the first line
    bool m_isText = false;            ///< content of digits
    std::vector<Element> m_elements;
    std::optional<char> m_firstByte;    ///< of the content
};
