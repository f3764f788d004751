#include "tools/Exception.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <vector>

namespace {

// A handler may throw and catch anew while it still reads the first exception, so a thread keeps all that it registered.
std::vector<std::unique_ptr<CXException>>& GetThreadExceptions()
{
    static thread_local std::vector<std::unique_ptr<CXException>> exceptions;
    return exceptions;
}

}

CXException::~CXException() = default;

CXInvalidArgException::CXInvalidArgException(const CXTString<wchar_t>& text) : CXException(text) {}
CXInvalidArgException::~CXInvalidArgException() = default;

CXArchiveException::CXArchiveException(int type, const CXTString<wchar_t>& text) : CXException(text), m_type(type) {}
CXArchiveException::~CXArchiveException() = default;

void XRegisterThreadException(CXException* exception)
{
    auto& exceptions = GetThreadExceptions();
    const bool known = std::any_of(exceptions.begin(), exceptions.end(), [=](const auto& e) { return e.get() == exception; });
    if (exception && !known)
        exceptions.emplace_back(exception);
}

CXException* XGetThreadException()
{
    const auto& exceptions = GetThreadExceptions();
    return exceptions.empty() ? nullptr : exceptions.back().get();
}

void XDeleteThreadException()
{
    // A destructor that runs on the way to a handler may catch something of its own. What that handler awaits stays
    // alive, until the next call.
    if (std::uncaught_exceptions() == 0)
        GetThreadExceptions().clear();
}

void XDeleteThreadException(const CXException* exception)
{
    std::erase_if(GetThreadExceptions(), [=](const auto& e) { return e.get() == exception; });
}

void XThrowInvalidIndex() { throw XSetThreadException(new CXInvalidArgException); }

void XThrowArchive(int type, const wchar_t* text) { throw XSetThreadException(new CXArchiveException(type, text)); }
