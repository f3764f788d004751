#pragma once

#include <QImage>

#include <images/Bitmap.h>

/// A copy of a picture.
QImage ToQt(const Bitmap& picture);
/// The caller's; null for an empty one.
Bitmap* FromQt(const QImage& picture);
