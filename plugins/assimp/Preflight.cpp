#include "Preflight.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <3dzel.h>

namespace {

constexpr double TEXT_VALUE = 2;    // bytes of the shortest value: a digit and what separates it from the next

// Least size of the content of an OFF file: three values a point.
double LeastOffContent(std::istream& file)
{
    std::string magic;
    double points = 0;
    return file >> magic >> points ? points * 3 * TEXT_VALUE : 0;
}

double PlyTypeSize(const std::string& type)
{
    if (type == "char" || type == "uchar" || type == "int8" || type == "uint8")
        return 1;
    if (type == "short" || type == "ushort" || type == "int16" || type == "uint16")
        return 2;
    return type == "double" || type == "float64" ? 8 : 4;
}

// Least size of the content behind the head of a PLY file: every element has all its properties, a list at least its count.
double LeastPlyContent(std::istream& file)
{
    bool text = false;
    double total = 0, count = 0;
    for (std::string line; std::getline(file, line) && !line.starts_with("end_header");) {
        std::istringstream words(line);
        std::string keyword, type;
        words >> keyword >> type;
        if (keyword == "format")
            text = type == "ascii";
        else if (keyword == "element")
            words >> count;
        else if (keyword == "property") {
            if (type == "list")
                words >> type;
            total += count * (text ? TEXT_VALUE : PlyTypeSize(type));
        }
    }
    return total;
}

}

bool EndsBeforeItsContent(unsigned int fileClass, const std::string& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file || (fileClass != FourCC("OFF ") && fileClass != FourCC("PLY ")))
        return false;
    const double least = fileClass == FourCC("OFF ") ? LeastOffContent(file) : LeastPlyContent(file);
    if (!file)
        return false;    // no end of the head: the importer says what is wrong
    const double left = static_cast<double>(size) - static_cast<double>(file.tellg());
    return least > left + 1;    // the last value may go without a separator
}
