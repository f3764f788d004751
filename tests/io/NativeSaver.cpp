// Saves two scenes natively, for scripts/check-kill.sh. `refs FOLDER`: each once, as FOLDER/a.3dif and b.3dif. `loop FILE`: in turn over
// the same file, until somebody ends it; says "ready" when the first save begins.

#include <cstring>
#include <string>

#include "io/3DIo.h"
#include "scene/3DObject.h"
#include "scene/3DScene.h"
#include "scene/Primitives.h"

static C3DScene* CreateBalls(int rings)
{
    C3DScene* const scene = C3DScene::Create();
    scene->AddNode(nullptr, CreateSphere(C3DTPoint<float>(), 1, rings, rings, true, 0, NO_CHANNEL_ID));
    return scene;
}

static bool Save(C3DScene& scene, const std::string& file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_SILENT, nullptr);
    CSceneExportOptions options(EXPORT_IN_PLACE);
    return io.Save(false, &scene, &options);
}

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    C3DScene* const scenes[] = {CreateBalls(200), CreateBalls(230)};
    const std::string place = argv[2];
    bool good = true;
    if (std::strcmp(argv[1], "refs") == 0)
        good = Save(*scenes[0], place + "/a.3dif") && Save(*scenes[1], place + "/b.3dif");
    else {
        std::puts("ready");
        std::fflush(stdout);
        for (int i = 0; good; i++)
            good = Save(*scenes[i % 2], place);
    }
    for (C3DScene* const scene : scenes)
        DeleteMe(scene);
    return good ? 0 : 1;
}
