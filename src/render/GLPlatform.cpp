#include "render/GLPlatform.h"

CDC::~CDC() = default;
IGLPlatform::~IGLPlatform() = default;

static IGLPlatform* g_platform = nullptr;

IGLPlatform& GetGLPlatform() { return g_platform ? *g_platform : GetEglPlatform(); }
void SetGLPlatform(IGLPlatform* platform) { g_platform = platform; }
