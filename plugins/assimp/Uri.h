#pragma once

#include <string>

/// The text with each %XX, two hexadecimal digits, as the byte that it stands for. Others, and %00, stay.
std::string DecodeUri(const std::string& uri);
