// A host as a user would write it: a quad in a scene, built, asked and released.

#include <X11/Xlib.h>    // its macros are common words, and a host may include it first

#include <cstdio>

#include <3dzel.h>

int main()
{
    Init3DZel(0);
    const float points[] = {0, 0, 0, 2, 0, 0, 2, 1, 0, 0, 1, 0};
    const int quad[] = {0, 1, 2, 3};
    C3DObject* object = CreateObjectFromArrays(points, sizeof(points), nullptr, 0, quad, sizeof(quad));
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(object, true);
    C3DScene* scene = C3DScene::Create();
    scene->AddNode(nullptr, node);

    C3DTPoint<float> min, max;
    const bool right = scene->GetFaceNbr() == 1 && node->GetBoundingBox(0, min, max, BOX_FACES, 0, 0) && max.x == 2 && max.y == 1;
    DeleteMe(scene);
    Close3DZel(0);
    std::printf("%s\n", right ? "the installed library works" : "wrong answer from the installed library");
    return right ? 0 : 1;
}
