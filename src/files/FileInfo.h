#pragma once

#include <vector>

#include "tools/FileNameSpec.h"

/// A file name and the parsers that may understand it, tried one after the other.
///
/// Candidates are, for each class of the name (the class given, or all classes of the extension in the order of their
/// registration), the plug-ins that handle it; a class without plug-in counts once, for what is built in. The list is made when it is
/// first needed.
class ZEL_API CFileInfo : public CFileNameSpec {
public:
    CFileInfo() = default;
    /// `ability`: FILE_KIND_READ or FILE_KIND_WRITE, what a plug-in must be able to do.
    CFileInfo(const CFileNameSpec& name, unsigned int ability);

    /// Class of the parser that is being tried, else of the name.
    unsigned int GetClass() const;
    /// True when another candidate follows.
    bool CanTryAnotherParser() const;
    /// Goes on to the next candidate; false when there is none.
    bool TryNextParser();
    /// Goes back to the first candidate, and looks for candidates anew.
    void ResetParsers();
    /// Plug-in of the present candidate, as a position among the plug-ins of its class; -1 for what is built in.
    int GetPlugin() const;

    /// True for "scheme://…". With `check` it must also be reachable: that is so for a file URL of an existing file; other
    /// schemes are never fetched by this system.
    bool IsURL(bool check) const;
    /// The name on disk: a file URL decoded to its path, other names as fileToDisk knows them; other URLs as they are.
    CXTString<wchar_t> GetDiskName() const;

protected:
    struct Candidate {
        unsigned int fileClass;
        int plugin;
    };
    const std::vector<Candidate>& GetCandidates() const;

private:
    unsigned int m_ability = 0;
    mutable bool m_listed = false;
    mutable std::vector<Candidate> m_candidates;
    unsigned int m_current = 0;
};
