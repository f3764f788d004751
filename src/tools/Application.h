#pragma once

#include "tools/Api.h"
#include "tools/String.h"

/// The program that hosts the library, as far as the library asks: its profile, numbers that outlive it, by section and key.
class ZEL_API IApplication {
public:
    virtual ~IApplication();

    /// `standard` when the profile has no such number.
    virtual unsigned int GetProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int standard) = 0;
    /// False when it could not be kept.
    virtual bool WriteProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int value) = 0;
};

/// The program's object: null unless it gave one, and then nothing of a profile is read or written.
ZEL_API IApplication* GetApplication();
/// Stays the caller's and must outlive its use; null takes it away. Returns the former one.
ZEL_API IApplication* SetApplication(IApplication* application);
