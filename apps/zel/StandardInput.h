#pragma once

#include <string>

#include <3dzel.h>

/// Name that stands for standard input where a file to read is asked for.
constexpr const char* STANDARD_INPUT = "-";

/// What comes on standard input, as a file: readers go back and forth in theirs. The file is the user's alone and goes with this.
class SpooledInput {
public:
    SpooledInput() = default;
    ~SpooledInput();
    SpooledInput(const SpooledInput&) = delete;
    SpooledInput& operator=(const SpooledInput&) = delete;

    /// Takes all that comes into a temporary file with that extension, such as ".obj". Empty, or why that failed.
    std::string Fill(const std::string& extension);
    const std::string& GetPath() const { return m_path; }

private:
    std::string m_path;
};

/// Removes such a file of this process. Safe in a handler.
void RemoveSpooledInput();
