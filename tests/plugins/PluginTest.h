#pragma once

#include <string>

#include <gtest/gtest.h>

#include <3dzel.h>

#include "support/Owned.h"
#include "support/TempFolder.h"

using Scene = Owned<C3DScene>;

/// Reads files through library and plug-in, as a host does.
class PluginTest : public testing::Test {
protected:
    static void SetUpTestSuite() { Init3DZel(1); }
    static void TearDownTestSuite() { Close3DZel(0); }

    Scene Read(const std::string& path, unsigned int flags = 0)
    {
        C3DIo io(CFileNameSpec(Utf8ToWide(path)), FILEIO_READ | FILEIO_SILENT, nullptr);
        options = CSceneImportOptions(flags);
        Scene scene(io.Read(false, &options));
        result = io.GetLastResult();
        return scene;
    }
    Scene ReadText(const std::string& name, const std::string& text) { return Read(folder.Write(name, text)); }

    TempFolder folder;
    CSceneImportOptions options;
    int result = 0;
};
