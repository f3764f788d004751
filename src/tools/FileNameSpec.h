#pragma once

#include "tools/Api.h"
#include "tools/String.h"

/// A file name together with its class.
///
/// A class that is not given follows from the extension, each time it is asked for, so that a format registered later counts.
class ZEL_API CFileNameSpec {
public:
    CFileNameSpec() = default;
    CFileNameSpec(const CXTString<wchar_t>& name, unsigned int fileClass = 0) : m_name(name), m_class(fileClass) {}
    CFileNameSpec(const wchar_t* name, unsigned int fileClass = 0) : m_name(name), m_class(fileClass) {}

    /// The complete name, as it was given.
    const CXTString<wchar_t>& GetFullName() const { return m_name; }
    /// Folder with its last separator.
    CXTString<wchar_t> GetPath() const;
    /// "/", "C:/"... ; empty for a relative name.
    CXTString<wchar_t> GetRoot() const;
    /// File name without folder.
    CXTString<wchar_t> GetFileName() const;
    /// File name without folder and extension.
    CXTString<wchar_t> GetTitle() const;
    /// With its point.
    CXTString<wchar_t> GetExtension() const;
    /// The class given, else the first one registered for the extension; 0 for none. (files/FileExt.cpp)
    unsigned int GetClass() const;
    /// The class given; 0 when it follows from the extension.
    unsigned int GetGivenClass() const { return m_class; }
    bool IsEmpty() const { return m_name.IsEmpty(); }

    void SetFullName(const CXTString<wchar_t>& name) { m_name = name; }
    void SetClass(unsigned int fileClass) { m_class = fileClass; }

    friend bool operator==(const CFileNameSpec& a, const CFileNameSpec& b) { return a.m_name == b.m_name && a.GetClass() == b.GetClass(); }

private:
    CXTString<wchar_t> m_name;
    unsigned int m_class = 0;
};
