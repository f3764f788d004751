// A small IO plug-in in several variants, told apart by what is defined when it is compiled.

#include <atomic>
#include <cstdlib>
#include <stdexcept>

#include "files/IOPlugin.h"
#include "tools/Exception.h"

namespace {

class TestParser : public CFileParser {
public:
    TestParser(CFileIo* fileIo) : CFileParser(fileIo) {}
    IoShowDialog MustShowDialog() override { return static_cast<IoShowDialog>(TEST_ANSWER); }
};

// What may happen while a module registers.

[[maybe_unused]] void Throw() { throw XSetThreadException(new CXInvalidArgException(L"registering went wrong")); }

[[maybe_unused]] void ThrowNumber() { throw 42; }

[[maybe_unused]] void Abort() { std::abort(); }

[[maybe_unused]] void Exit() { std::exit(0); }

[[maybe_unused]] void Loop()
{
    for (std::atomic<bool> ended = false; !ended;) {
    }
}

[[maybe_unused]] CFileParser* CreateParser(unsigned int, CFileIo* fileIo)
{
#ifdef TEST_FACTORY_THROWS
    throw std::runtime_error("no parser today");
#endif
    return new TestParser(fileIo);
}

}

#ifndef TEST_NO_ENTRY
extern "C" ZEL_API unsigned int zelRegisterIoPlugin(unsigned int, IIoPluginRegistrar* registrar)
{
    registrar->RegisterFormat(CFileExt(L"Test files", L".tst;.tst2", FourCC("TEST"), TEST_KIND), &CreateParser);
#ifdef TEST_REGISTER
    TEST_REGISTER();
#endif
    return TEST_VERSION;
}
#endif
