#include "Failure.h"

#include <exception>
#include <new>

#include <3dzel.h>

std::string DescribeException()
{
    std::string text;
    try {
        throw;
    } catch (const CXException* error) {
        text = WideToUtf8(error->GetText());
        XDeleteThreadException();
    } catch (const std::bad_alloc&) {
        text = "not enough memory";
    } catch (const std::exception& error) {
        text = error.what();
    } catch (...) {    // a plug-in throws whatever it likes
        text = "an exception without a text";
    }
    return text.empty() ? "failed" : text;
}

ExitCode RunSafely(const Console& console, const std::string& subject, const std::function<ExitCode()>& work)
{
    try {
        return work();
    } catch (...) {
        console.Fail(subject + ": " + DescribeException());
        return EXIT_FAILED;
    }
}
