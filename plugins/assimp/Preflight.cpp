#include "Preflight.h"

#include <filesystem>
#include <fstream>

#include <3dzel.h>

#include "PlyHead.h"

namespace {

constexpr const char* TOO_SHORT = "the file ends before what it announces";

bool IsShort(double content, double left) { return content > left + 1; }    // the last value may go without a separator

// Three values a point, each a digit and what separates it from the next.
bool IsShortOff(const std::string& path, double size)
{
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    double points = 0;
    return file >> magic >> points && IsShort(points * 3 * 2, size - static_cast<double>(file.tellg()));
}

// Without a whole head the importer says what is wrong.
const char* FaultOfPly(const std::string& path, double size)
{
    const std::optional<PlyHead> head = PlyHead::Read(path);
    if (!head)
        return nullptr;
    if (IsShort(head->GetLeastContent(), size - static_cast<double>(head->GetSize())))
        return TOO_SHORT;
    return head->MisleadsLibrary() && !head->CanBeMended()
               ? "it has several kinds of elements that the importer does not know, before those that it reads"
               : nullptr;
}

}

const char* FindFault(unsigned int fileClass, const std::string& path)
{
    std::error_code error;
    const auto size = static_cast<double>(std::filesystem::file_size(path, error));
    if (error)
        return nullptr;
    if (fileClass == FourCC("OFF "))
        return IsShortOff(path, size) ? TOO_SHORT : nullptr;
    return fileClass == FourCC("PLY ") ? FaultOfPly(path, size) : nullptr;
}
