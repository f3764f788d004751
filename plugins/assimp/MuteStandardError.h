#pragma once

#include <iostream>
#include <sstream>

/// Keeps what the import library prints to themselves: their errors come back as texts, and standard error is the host's.
class MuteStandardError {
public:
    MuteStandardError() : m_former(std::cerr.rdbuf(m_swallowed.rdbuf())) {}
    ~MuteStandardError() { std::cerr.rdbuf(m_former); }

private:
    std::ostringstream m_swallowed;
    std::streambuf* m_former;
};
