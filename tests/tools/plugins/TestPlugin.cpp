// A small IO plug-in in several variants, told apart by what is defined when it is compiled.

#include <atomic>
#include <stdexcept>

#include "tools/Exception.h"
#include "tools/IOPlugin.h"

namespace {

class TestParser : public CFileParser {
public:
    TestParser(CFileIo* fileIo) : CFileParser(fileIo) {}
    IoShowDialog MustShowDialog() override { return static_cast<IoShowDialog>(TEST_ANSWER); }
};

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
#ifdef TEST_THROWS
    throw XSetThreadException(new CXInvalidArgException(L"registering went wrong"));
#endif
    return TEST_VERSION;
}
#endif
