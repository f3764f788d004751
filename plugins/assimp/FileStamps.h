#pragma once

#include <string>
#include <string_view>

/// Bytes at the beginning of a file of the library's that may hold the time at which it was written.
constexpr std::size_t STAMPS_END = 4096;

/// The beginning of a file with the first moment of 1970 for the time at which it was written: one scene gives the same file at any time.
/// Of FBX files the text form; its length may change, that of others does not.
std::string ClearStamps(std::string_view head);
/// The same in a binary FBX file.
void ClearFbxStamps(std::string& file);
/// The same for the files of an archive, whose time begins with 1980.
void ClearArchiveStamps(std::string& archive);
