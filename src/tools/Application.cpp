#include "tools/Application.h"

#include <utility>

static IApplication* g_application = nullptr;

IApplication::~IApplication() = default;

IApplication* GetApplication() { return g_application; }

IApplication* SetApplication(IApplication* application) { return std::exchange(g_application, application); }
