# What pictures are drawn with: OpenGL without a window system, and fonts.
find_package(OpenGL REQUIRED COMPONENTS OpenGL EGL)
find_package(Freetype REQUIRED)
find_package(Fontconfig REQUIRED)
