#pragma once

#include <functional>
#include <string>

#include "Console.h"
#include "ExitCode.h"

/// What the exception says that is being handled. To be called in a handler.
std::string DescribeException();

/// Runs work on `subject`. An exception of it, such as that of memory that has run out, is one line of the console and EXIT_FAILED.
ExitCode RunSafely(const Console& console, const std::string& subject, const std::function<ExitCode()>& work);
