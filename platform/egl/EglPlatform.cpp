#include <render/GLPlatform.h>

namespace {

class CEglPlatform : public IGLPlatform {
public:
    bool InitExtensions() override { return false; }
    bool HasPBuffers() override { return false; }
    std::unique_ptr<CDC> CreateWindowDC(void*, int) override { return nullptr; }
    std::unique_ptr<CDC> CreatePBuffer(int, int, int) override { return nullptr; }
    std::unique_ptr<CDC> CreateMemoryDC(int, int, int) override { return nullptr; }
    HGLRC CreateContext(CDC&) override { return nullptr; }
    void DeleteContext(HGLRC) override {}
    bool MakeCurrent(CDC&, HGLRC, GLCurrentState&) override { return false; }
    void Restore(CDC&, const GLCurrentState&) override {}
};

}

IGLPlatform& GetEglPlatform()
{
    static CEglPlatform platform;
    return platform;
}
