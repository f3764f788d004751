// IO plug-in over the Open Asset Import Library: reads and writes every format which that library reads or writes.

#include "AssimpParser.h"
#include "Formats.h"

namespace {

CFileParser* CreateParser(unsigned int fileClass, CFileIo* fileIo) { return new CAssimpParser(fileClass, fileIo); }

}

extern "C" ZEL_API unsigned int zelRegisterIoPlugin(unsigned int apiVersion, IIoPluginRegistrar* registrar)
{
    if (apiVersion == ZEL_IO_PLUGIN_API)
        for (const Format& format : ListFormats())
            registrar->RegisterFormat(CFileExt(Utf8ToWide(format.description), Utf8ToWide("." + format.extension), format.fileClass,
                                               FILE_FAMILY_3D | FILE_KIND_LISTED | format.abilities),
                                      &CreateParser);
    return ZEL_IO_PLUGIN_API;
}
