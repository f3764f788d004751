// A small host program: reads a scene and draws it off screen, without window, display or GPU.
//
//     drawing FILE PICTURE
//
// The name of the picture tells its format: .png, .jpg, .tif ...

#include <cstdio>
#include <memory>

#include <3dzel.h>

static int Draw(C3DScene* scene, const char* picture)
{
    C3DView view;
    if (!view.CreateMemoryRendering(1200, 900, 24)) {
        std::fprintf(stderr, "no OpenGL driver\n");
        return 5;
    }
    GlViewSettings settings;
    settings.changeMask = GLSET_VIEW_FLAGS | GLSET_VIEW_NUMBER | GLSET_BACKGROUND;
    settings.viewFlags = VIEWFLAG_DEFAULT;
    settings.viewNumber = RVIEW_RIGHT_TOP_FRONT;
    settings.background = CRGBColor(255, 255, 255);
    view.SetViewSettings(&settings);
    view.SetScene(scene, GLSET_FIT);
    view.UpdateView(0);    // what is in the scene goes to GL

    const std::unique_ptr<Bitmap> bitmap(view.CreateBitmapFromScene());
    C2DIo io(CFileNameSpec(Utf8ToWide(picture)), FILEIO_SILENT, nullptr);
    return bitmap && io.Save(bitmap.get()) == IORESULT_OK ? 0 : 1;
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: drawing FILE PICTURE\n");
        return 2;
    }
    Init3DZel(0);
    C3DIo io(CFileNameSpec(Utf8ToWide(argv[1])), FILEIO_READ | FILEIO_SILENT, nullptr);
    C3DScene* scene = io.Read(false, nullptr);
    const int result = scene ? Draw(scene, argv[2]) : 3;
    DeleteMe(scene);
    Close3DZel(0);
    return result;
}
