// zel-io-manifest MODULE...: writes the manifest of each IO plug-in beside it. Part of a plug-in's build.

#include <cstdio>

#include "files/IOPlugin.h"

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: zel-io-manifest zel-io-NAME.so...\n");
        return 2;
    }
    bool good = true;
    for (int i = 1; i < argc; i++) {
        ClearIOPluginLog();
        if (WriteIOPluginManifest(Utf8ToWide(argv[i])))
            continue;
        good = false;
        std::fprintf(stderr, "zel-io-manifest: no manifest for %s\n", argv[i]);
        for (const CXTString<wchar_t>& line : GetIOPluginLog())
            std::fprintf(stderr, "    %s\n", WideToUtf8(line).c_str());
    }
    return good ? 0 : 1;
}
