#pragma once

#include <map>
#include <mutex>

#include "tools/Application.h"

/// The application as long as it lives, with a profile of numbers alone. Any thread.
class CMemoryProfile : public IApplication {
public:
    CMemoryProfile() { SetApplication(this); }
    ~CMemoryProfile() override { SetApplication(nullptr); }

    unsigned int GetProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int standard) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto found = values.find((section + L"/" + key).Str());
        return found != values.end() ? found->second : standard;
    }
    bool WriteProfileInt(const CXTString<wchar_t>& section, const CXTString<wchar_t>& key, unsigned int value) override
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        values[(section + L"/" + key).Str()] = value;
        return true;
    }

    /// By "section/key".
    std::map<std::wstring, unsigned int> values;

private:
    std::mutex m_lock;
};
