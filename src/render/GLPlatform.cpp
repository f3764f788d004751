#include "render/GLPlatform.h"

#include <atomic>
#include <string_view>

CDC::~CDC() = default;
IGLPlatform::~IGLPlatform() = default;

static std::atomic<IGLPlatform*> g_platform = nullptr;

IGLPlatform& GetGLPlatform()
{
    IGLPlatform* const platform = g_platform;
    return platform ? *platform : GetEglPlatform();
}

void SetGLPlatform(IGLPlatform* platform) { g_platform = platform; }

bool HasExtension(const char* names, const char* name)
{
    std::string_view left = names ? names : "";
    while (!left.empty()) {
        const std::string_view word = left.substr(0, left.find(' '));
        if (word == name)
            return true;
        left.remove_prefix(word.size() < left.size() ? word.size() + 1 : left.size());
    }
    return false;
}
