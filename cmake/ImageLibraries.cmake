# What src/images reads and writes files with. Found here, so that every program that links the rooms knows them.

find_package(PNG REQUIRED)
find_package(JPEG REQUIRED)
find_package(TIFF REQUIRED)
find_package(GIF REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(WEBP REQUIRED IMPORTED_TARGET libwebp libwebpdemux libwebpmux)
find_path(STB_INCLUDE_DIR stb/stb_image.h REQUIRED)
set(ZEL_IMAGE_LIBRARIES PNG::PNG JPEG::JPEG TIFF::TIFF GIF::GIF PkgConfig::WEBP)
