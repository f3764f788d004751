// An IO plug-in that fails a batch: one format ends the process as if all were well, the other never comes back.

#include <unistd.h>

#include <3dzel.h>

namespace {

CFileParser* CreateParser(unsigned int fileClass, CFileIo*)
{
    if (fileClass == FourCC("QUIT"))
        _exit(0);
    for (;;)
        pause();
}

}

extern "C" ZEL_API unsigned int zelRegisterIoPlugin(unsigned int, IIoPluginRegistrar* registrar)
{
    constexpr unsigned int SCENES_READ_AND_WRITTEN = 0x4013;
    registrar->RegisterFormat(CFileExt(L"Ends the process", L".quit", FourCC("QUIT"), SCENES_READ_AND_WRITTEN), &CreateParser);
    registrar->RegisterFormat(CFileExt(L"Never ends", L".hang", FourCC("HANG"), SCENES_READ_AND_WRITTEN), &CreateParser);
    return ZEL_IO_PLUGIN_API;
}
