#pragma once

#include "tools/Api.h"
#include "tools/String.h"

/// Base of what this system throws. Thrown as a pointer, after XSetThreadException, which owns it.
class ZEL_API CXException {
public:
    virtual ~CXException();
    const CXTString<wchar_t>& GetText() const { return m_text; }

protected:
    explicit CXException(const CXTString<wchar_t>& text) : m_text(text) {}

private:
    CXTString<wchar_t> m_text;
};

/// An index or argument outside its bounds.
class ZEL_API CXInvalidArgException : public CXException {
public:
    explicit CXInvalidArgException(const CXTString<wchar_t>& text = {});
    ~CXInvalidArgException() override;
};

/// A stream that is damaged, cut short or cannot be written.
class ZEL_API CXArchiveException : public CXException {
public:
    enum Type {
        ARCHIVE_GENERIC = 0,
        ARCHIVE_END_OF_FILE = 1,     ///< the stream ends inside a value
        ARCHIVE_BAD_COUNT = 2,       ///< a count or size exceeds what the stream can still hold
        ARCHIVE_BAD_CLASS = 3,       ///< an unknown class, or one of the wrong kind
        ARCHIVE_BAD_VALUE = 4,       ///< an index, offset, string or flag that cannot be
        ARCHIVE_UNKNOWN_TYPE = 5,    ///< a type id that this version does not know
        ARCHIVE_WRITE = 6,           ///< the file refuses what is written
    };

    explicit CXArchiveException(int type, const CXTString<wchar_t>& text = {});
    ~CXArchiveException() override;
    int GetType() const { return m_type; }

private:
    int m_type;
};

/// Registers an exception with the thread, which owns it until XDeleteThreadException or its own end.
/// Returns the exception, so that `throw XSetThreadException(e)` keeps the static type.
ZEL_API void XRegisterThreadException(CXException* exception);
template <class E> E* XSetThreadException(E* exception)
{
    XRegisterThreadException(exception);
    return exception;
}

/// The exception registered last, or null.
ZEL_API CXException* XGetThreadException();

/// Destroys what the thread has registered. Whoever catches for good calls it.
ZEL_API void XDeleteThreadException();
/// Destroys that one alone: for a function that catches inside itself and may be called while another one is handled.
ZEL_API void XDeleteThreadException(const CXException* exception);

/// Throws the CXInvalidArgException of an index outside its bounds. Out of line, to keep checks small.
[[noreturn]] ZEL_API void XThrowInvalidIndex();
/// Throws a CXArchiveException of that type.
[[noreturn]] ZEL_API void XThrowArchive(int type, const wchar_t* text = L"");
