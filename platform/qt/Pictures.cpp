#include "Pictures.h"

#include <algorithm>

QImage ToQt(const Bitmap& picture)
{
    const QImage::Format format = picture.GetType() == BITMAP_RGBA  ? QImage::Format_RGBA8888
                                  : picture.GetType() == BITMAP_RGB ? QImage::Format_RGB888
                                                                    : QImage::Format_Grayscale8;
    QImage image(picture.GetWidth(), picture.GetHeight(), format);
    for (int y = 0; y < image.height(); y++)
        std::copy_n(picture.GetLine(y), picture.GetWidth() * picture.GetBytesPerPixel(), image.scanLine(y));
    return image;
}

Bitmap* FromQt(const QImage& picture)
{
    const QImage image = picture.convertToFormat(QImage::Format_RGB888);
    Bitmap* const copy = image.isNull() ? nullptr : rgbBitmap::Create(image.width(), image.height());
    for (int y = 0; copy && y < image.height(); y++)
        std::copy_n(image.constScanLine(y), image.width() * 3, copy->GetLine(y));
    return copy;
}
