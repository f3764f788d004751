// A small host program: puts pictures of one size beside and below one another.
//
//     sheet OUT COLUMNS PICTURE...

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <3dzel.h>

using Picture = std::unique_ptr<Bitmap>;

static Picture ReadPicture(const char* file)
{
    C2DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_READ | FILEIO_SILENT, nullptr);
    const std::unique_ptr<CLayerBitmap> layers(io.Read(0));
    if (layers)
        return Picture(layers->GetStandardLayer()->ConvertToType(BITMAP_RGB));
    std::fprintf(stderr, "%s\n", WideToUtf8(io.GetResultText()).c_str());
    return nullptr;
}

static void Put(Bitmap& sheet, const Bitmap& tile, int left, int top)
{
    for (int y = 0; y < tile.GetHeight(); y++)
        std::memcpy(sheet.GetLine(top + y) + left * 3, tile.GetLine(y), static_cast<std::size_t>(tile.GetWidth()) * 3);
}

int main(int argc, char** argv)
{
    const int columns = argc > 3 ? std::atoi(argv[2]) : 0;
    if (columns < 1) {
        std::fprintf(stderr, "usage: sheet OUT COLUMNS PICTURE...\n");
        return 2;
    }
    std::vector<Picture> tiles;
    for (int i = 3; i < argc; i++) {
        tiles.push_back(ReadPicture(argv[i]));
        if (!tiles.back())
            return 3;
        tiles.back()->Resize(tiles[0]->GetWidth(), tiles[0]->GetHeight(), 1);
    }
    const int width = tiles[0]->GetWidth(), height = tiles[0]->GetHeight(), count = static_cast<int>(tiles.size());
    const Picture sheet(rgbBitmap::Create(width * columns, height * ((count + columns - 1) / columns)));
    if (!sheet)
        return 1;
    for (int i = 0; i < count; i++)
        Put(*sheet, *tiles[static_cast<std::size_t>(i)], i % columns * width, i / columns * height);
    C2DIo io(CFileNameSpec(Utf8ToWide(argv[1])), FILEIO_SILENT, nullptr);
    io.GetOptions().jpegQuality = 80;
    if (io.Save(sheet.get()) == IORESULT_OK)
        return 0;
    std::fprintf(stderr, "%s\n", WideToUtf8(io.GetResultText()).c_str());
    return 1;
}
