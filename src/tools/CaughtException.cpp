#include "tools/CaughtException.h"

#include <exception>

#include "tools/Exception.h"

// The text of what is being handled; destroys what this system threw, if told to.
static CXTString<wchar_t> GetText(bool destroy)
{
    CXTString<wchar_t> text;
    try {
        throw;
    } catch (const CXException* exception) {
        text = exception->GetText();
        if (destroy)
            XDeleteThreadException(exception);
    } catch (const std::exception& exception) {
        text = Utf8ToWide(exception.what());
    } catch (...) {    // an exception of a type of its own
    }
    return text.IsEmpty() ? CXTString<wchar_t>(L"an exception without a text") : text;
}

CXTString<wchar_t> GetCaughtText() { return GetText(false); }

CXTString<wchar_t> TakeCaughtText() { return GetText(true); }
