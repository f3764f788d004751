// A small host program: builds a carousel from primitives and keys, and tells where everything is while it turns.
//
//     turning

#include <cmath>
#include <cstdio>
#include <numbers>

#include <3dzel.h>

namespace {

constexpr int FRAMES = 80;    // for one turn
constexpr double PI = std::numbers::pi;
const C3DTPoint<float> ORIGIN;
const C3DTVector<float> UP(0, 0, 1);

unsigned int AddMaterial(C3DScene& scene, const wchar_t* name, const CRGBColor& color)
{
    C3DMaterial* material = scene.CreateNewMaterial(0xFFFFFFFF);    // under the next free id
    material->SetName(name);
    material->SetDiffuseColor(0, color);
    return material->GetMaterialID();
}

C3DSceneNode* Place(C3DScene& scene, C3DSceneNode* parent, const wchar_t* name, C3DSceneNode* node)
{
    node->SetName(name);
    scene.AddNode(parent, node);
    return node;
}

C3DSceneNode* CreateNode(_OBJECT_KINDOF kind)
{
    C3DSceneNode* node = C3DSceneNode::Create();
    node->SetObject(C3DBaseObject::Create(kind), true);
    return node;
}

C3DTranslateKey TranslateKey(float x, float y, float z)
{
    C3DTranslateKey key;
    key.SetVector({x, y, z});
    return key;
}

/// Round primitives stand along y; here they stand along z.
void StandUp(C3DSceneNode* node) { node->AddKey(0, C3DRotateKey(static_cast<float>(-PI / 2), {1, 0, 0})); }

/// Once around. A rotation goes the short way from key to key, so that a turn takes more than two of them.
void Turn(C3DSceneNode* node)
{
    for (int quarter = 0; quarter <= 4; quarter++)
        node->AddKey(quarter * FRAMES / 4, C3DRotateKey(static_cast<float>(-quarter * PI / 2), UP));
}

/// Up and down at a distance from the axis.
void Ride(C3DSceneNode* node, double direction, bool upFirst)
{
    const float x = static_cast<float>(3 * std::cos(direction)), y = static_cast<float>(3 * std::sin(direction));
    for (int half = 0; half <= 2; half++) {
        C3DTranslateKey key = TranslateKey(x, y, (half == 1) == upFirst ? 1.5f : 0.5f);
        C3DTCBCurve rounding;    // carried along for whoever draws the curve
        rounding.values[0] = 0.5f;
        key.SetKeyCurve(rounding);
        node->AddKey(half * FRAMES / 2, key);
    }
}

/// Grows from its size to twice that, and back.
void Breathe(C3DSceneNode* node)
{
    for (int half = 0; half <= 2; half++) {
        C3DScaleKey key;
        const float factor = half == 1 ? 2 : 1;
        key.SetVector({factor, factor, factor});
        node->AddKey(half * FRAMES / 2, key);
    }
}

C3DScene* BuildCarousel()
{
    C3DScene* scene = C3DScene::Create();
    const unsigned int wood = AddMaterial(*scene, L"Wood", CRGBColor(150, 100, 60)),
                       red = AddMaterial(*scene, L"Red", CRGBColor(200, 40, 30)),
                       blue = AddMaterial(*scene, L"Blue", CRGBColor(40, 70, 190)),
                       grass = AddMaterial(*scene, L"Grass", CRGBColor(90, 150, 70));

    Place(*scene, nullptr, L"Meadow", CreatePlane(ORIGIN, UP, 20, 20, 4, 4, true, grass, 0xFFFFFFFF));
    C3DSceneNode* carousel = Place(*scene, nullptr, L"Carousel", CreateNode(OBJECT_GROUP));
    Turn(carousel);

    C3DSceneNode* floor = Place(*scene, carousel, L"Floor", CreateCylinder(ORIGIN, 4, 0.2, 48, 1, true, false, wood, 0));
    StandUp(floor);
    C3DSceneNode* roof = Place(*scene, carousel, L"Roof", CreateCone(ORIGIN, 4.5, 1.5, 48, 1, false, red, 0));
    roof->AddKey(0, TranslateKey(0, 0, 4));
    StandUp(roof);
    C3DSceneNode* ball = Place(*scene, roof, L"Ball", CreateSphere(ORIGIN, 0.3, 12, 24, false, blue, 0));
    ball->AddKey(0, TranslateKey(0, 1.8f, 0));    // along the roof's own axis
    Breathe(ball);

    static constexpr const wchar_t* NAMES[] = {L"Duck", L"Horse", L"Swan", L"Pig"};
    for (int i = 0; i < 4; i++) {
        C3DSceneNode* seat = i % 2 ? CreateCapsule(ORIGIN, 0.4f, 1.6f, 16, 4, 2, AXIS_X, 0, i == 1 ? red : blue, 0)
                                   : CreateCube(ORIGIN, 0.8, 0.5, 0.6, false, i ? wood : red, 0);
        Ride(Place(*scene, carousel, NAMES[i], seat), i * PI / 2, i % 2);
    }

    C3DSceneNode* lamp = Place(*scene, nullptr, L"Lamp", CreateNode(OBJECT_LIGHT));
    lamp->AddKey(0, TranslateKey(5, -5, 10));
    C3DLight* light = *lamp->GetBaseObject();
    light->SetLightKind(LIGHT_OMNI);
    light->SetColor(CRGBColor(255, 240, 220));
    C3DSceneNode* eye = Place(*scene, nullptr, L"Eye", CreateNode(OBJECT_CAMERA));
    eye->AddKey(0, TranslateKey(0, -15, 3));
    C3DCamera* camera = *eye->GetBaseObject();
    camera->SetTarget(static_cast<int>(carousel->GetNodeID()));
    return scene;
}

void PrintFrame(const C3DScene& scene, int time)
{
    std::printf("frame %d\n", time);
    CNodeWalkTM walk(time, true);
    for (C3DNodePos pos = scene.GetFirstNode(OBJECT_ANY); pos;) {
        const C3DSceneNode* node = scene.GetNextNode(pos);
        C4x4TMatrix<float> matrix;
        walk.Get(node, matrix);
        const C3DTVector<float> place = matrix.GetTranslation();
        C3DTVector<float> scale;
        matrix.GetScale(scale);
        std::printf("%*s%-*s", 2 + 2 * static_cast<int>(scene.GetChildDepth(node)), "",
                    12 - 2 * static_cast<int>(scene.GetChildDepth(node)), WideToUtf8(node->GetName()).c_str());
        for (int i = 0; i < 3; i++)
            std::printf(" %7.2f", std::round(place[i] * 100) / 100 + 0.0);    // no negative zeros
        if (std::fabs(scale.x - 1) > 0.01f)
            std::printf("  %.1f times as large", scale.x);
        std::printf("\n");
    }
}

}

int main()
{
    Init3DZel(INIT_NO_COMMANDS | INIT_NO_PLUGINS);
    C3DScene* scene = BuildCarousel();
    for (const int time : {0, FRAMES / 8, FRAMES / 4, FRAMES / 2})
        PrintFrame(*scene, time);
    std::printf("%d nodes, %d points, %d faces, %u materials\n", scene->GetChildCount(nullptr, OBJECT_ANY), scene->GetPointNbr(),
                scene->GetFaceNbr(), scene->GetMaterialNumber());
    DeleteMe(scene);
    Close3DZel(INIT_NO_PLUGINS);
}
