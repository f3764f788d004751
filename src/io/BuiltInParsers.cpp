#include "io/BuiltInParsers.h"

#include <algorithm>

#include "files/FileExt.h"
#include "files/IOPlugin.h"
#include "io/NativeFile.h"

namespace {

template <class PARSER> CFileParser* Create(unsigned int, CFileIo* fileIo) { return new PARSER(fileIo); }

struct BuiltIn {
    unsigned int fileClass;
    CParserFactory factory;       ///< null: the class is known, but its parser is not part of this build
    const wchar_t* extensions;    ///< with a parser
    const wchar_t* description;
};

constexpr BuiltIn BUILT_IN[] = {
    {FourCC("3DIF"), &Create<C3DIFIo>, L".3dif", L"3D scenes"},
    {FourCC("3MAX"), nullptr, nullptr, nullptr},
    {FourCC("MAYA"), nullptr, nullptr, nullptr},
};

const BuiltIn* Find(unsigned int fileClass)
{
    const auto found =
        std::find_if(std::begin(BUILT_IN), std::end(BUILT_IN), [&](const BuiltIn& row) { return row.fileClass == fileClass; });
    return found != std::end(BUILT_IN) ? found : nullptr;
}

}

bool IsBuiltInClass(unsigned int fileClass) { return Find(fileClass) != nullptr; }

CFileParser* CreateBuiltInParser(unsigned int fileClass, CFileIo* fileIo)
{
    const BuiltIn* const row = Find(fileClass);
    return row && row->factory ? row->factory(fileClass, fileIo) : nullptr;
}

void RegisterBuiltInFormats()
{
    static const bool registered = [] {
        constexpr unsigned int KIND = FILE_FAMILY_3D | FILE_KIND_LISTED | FILE_KIND_READ | FILE_KIND_WRITE;
        for (const BuiltIn& row : BUILT_IN)
            if (row.factory) {
                ReserveIOClass(row.fileClass);
                fileRegisterFile(CFileExt(row.description, row.extensions, row.fileClass, KIND));
            }
        return true;
    }();
    (void)registered;
}
