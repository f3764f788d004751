#pragma once

#include <string>

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

/// The text with everything escaped that a terminal would act on: control characters, marks that turn the direction of writing, bytes that
/// are no UTF-8. It is one line. Names come from files, and a file can name a node as it likes.
std::string Printable(const std::string& text);

/// Prints a document on standard output. Characters of that kind are escaped in its texts.
void PrintJson(const Json& document);
