// A small host program: reads a scene and draws it as a picture, nearest faces in front.
//
//     drawing FILE PICTURE
//
// The name of the picture tells its format: .png, .jpg, .tif ...

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <3dzel.h>

namespace {

constexpr int WIDTH = 1200, HEIGHT = 900, MARGIN = 30;
constexpr unsigned char PAPER[3] = {244, 241, 234};

struct Rgb {
    unsigned char bytes[3];
};

/// A picture with a depth for each pixel. x to the right, y down, smaller depths in front.
class Canvas {
public:
    Canvas() : m_pixels(WIDTH * HEIGHT, Rgb{{PAPER[0], PAPER[1], PAPER[2]}}), m_depths(WIDTH * HEIGHT, HUGE_VAL) {}

    /// Fills a flat polygon of at least three corners, concave ones too: in each row of pixels from the first crossing with its outline to
    /// the second, from the third to the fourth ...
    void Fill(const std::vector<C3DTPoint<double>>& corners, const C3DTVector<double>& normal, Rgb color);
    bool Write(const char* file) const;

private:
    std::vector<Rgb> m_pixels;
    std::vector<double> m_depths;
};

void Canvas::Fill(const std::vector<C3DTPoint<double>>& corners, const C3DTVector<double>& normal, Rgb color)
{
    double top = HEIGHT, bottom = 0;
    for (const auto& corner : corners) {
        top = std::min(top, corner.y);
        bottom = std::max(bottom, corner.y);
    }
    const C3DTPoint<double>& origin = corners.front();
    std::vector<double> crossings;
    for (int y = std::max(0, static_cast<int>(top)); y <= std::min(HEIGHT - 1, static_cast<int>(bottom)); y++) {
        const double row = y + 0.5;
        crossings.clear();
        for (std::size_t i = 0; i < corners.size(); i++) {
            const auto &a = corners[i], &b = corners[(i + 1) % corners.size()];
            if ((a.y <= row) != (b.y <= row))
                crossings.push_back(a.x + (row - a.y) / (b.y - a.y) * (b.x - a.x));
        }
        std::ranges::sort(crossings);
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
            const int first = std::max(0, static_cast<int>(std::ceil(crossings[i] - 0.5)));
            for (int x = first; x < std::min<double>(WIDTH, crossings[i + 1] - 0.5); x++) {
                const double depth = origin.z - (normal.x * (x + 0.5 - origin.x) + normal.y * (row - origin.y)) / normal.z;
                const std::size_t place = static_cast<std::size_t>(y) * WIDTH + static_cast<std::size_t>(x);
                if (depth < m_depths[place]) {
                    m_depths[place] = depth;
                    m_pixels[place] = color;
                }
            }
        }
    }
}

bool Canvas::Write(const char* file) const
{
    const std::unique_ptr<Bitmap> bitmap(rgbBitmap::Create(WIDTH, HEIGHT));
    for (int y = 0; y < HEIGHT; y++)
        std::memcpy(bitmap->GetLine(y), &m_pixels[static_cast<std::size_t>(y) * WIDTH], WIDTH * sizeof(Rgb));
    C2DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_SILENT, nullptr);
    if (io.Save(bitmap.get()) == IORESULT_OK)
        return true;
    std::fprintf(stderr, "%s\n", WideToUtf8(io.GetResultText()).c_str());
    return false;
}

C3DScene* ReadScene(const char* file)
{
    C3DIo io(CFileNameSpec(Utf8ToWide(file)), FILEIO_READ | FILEIO_SILENT, nullptr);
    C3DScene* scene = io.Read(false, nullptr);
    if (!scene)
        std::fprintf(stderr, "%s\n", WideToUtf8(io.GetResultText()).c_str());
    return scene;
}

// From the scene to the paper: seen from the front, right and above, along parallel lines. x to the right, y down, z away.
C4x4TMatrix<float> ViewMatrix()
{
    const float turn = 0.6f, tilt = 0.38f;
    C4x4TMatrix<float> around, look;
    around.m[0][0] = around.m[1][1] = std::cos(turn);
    around.m[0][1] = std::sin(turn);
    around.m[1][0] = -around.m[0][1];
    look.m[1][1] = std::sin(tilt);
    look.m[1][2] = -std::cos(tilt);
    look.m[2][1] = std::cos(tilt);
    look.m[2][2] = -std::sin(tilt);
    look.m[1][1] = -look.m[1][1];
    return look * around;
}

/// A node with faces, and its way to the paper.
struct Shape {
    C3DGeomObject* object;
    C4x4TMatrix<float> matrix;
};

// All shapes, scaled and moved so that they fill the picture.
std::vector<Shape> PlaceShapes(const C3DScene& scene)
{
    const C4x4TMatrix<float> view = ViewMatrix();
    std::vector<Shape> shapes;
    C3DTPoint<float> min(HUGE_VALF, HUGE_VALF, 0), max(-HUGE_VALF, -HUGE_VALF, 0);
    C3DNodePos pos = scene.GetFirstNode(OBJECT_POLYGONAL);
    C3DGeomObject* object;
    while (pos) {
        const C3DSceneNode* node = scene.GetNextNode(object, pos);
        if (object->GetFaceNbr() == 0)
            continue;
        C4x4TMatrix<float> matrix;
        node->GetNodeTM(0, matrix, true);
        Shape shape{object, view * matrix};
        C3DTPoint<float> from, to;
        if (!object->GetPointList()->GetBoundingBox(from, to, 0, true, &shape.matrix))
            continue;
        for (int i = 0; i < 2; i++) {
            min[i] = std::min(min[i], from[i]);
            max[i] = std::max(max[i], to[i]);
        }
        shapes.push_back(shape);
    }
    const float scale =
        std::min((WIDTH - 2 * MARGIN) / std::max(max.x - min.x, 1e-9f), (HEIGHT - 2 * MARGIN) / std::max(max.y - min.y, 1e-9f));
    C4x4TMatrix<float> fit;
    for (int i = 0; i < 3; i++)
        fit.m[i][i] = scale;
    fit.m[0][3] = (WIDTH - scale * (min.x + max.x)) / 2;
    fit.m[1][3] = (HEIGHT - scale * (min.y + max.y)) / 2;
    for (Shape& shape : shapes)
        shape.matrix = fit * shape.matrix;
    return shapes;
}

// Light comes from above and a little from the left. Materials next to one another differ.
Rgb Shade(const C3DTVector<double>& normal, double length, unsigned int material)
{
    const double light = std::clamp(0.55 + (-0.2 * normal.x - 0.3 * normal.y - 0.15 * normal.z) / length, 0.0, 1.0);
    Rgb color;
    for (int i = 0; i < 3; i++) {
        const double tint = material == 0 ? 0.9 : 0.8 + 0.2 * std::sin(2.4 * material + 2.1 * i);
        color.bytes[i] = static_cast<unsigned char>(255 * light * tint);
    }
    return color;
}

// Newell's normal of the placed polygon, turned towards the viewer.
C3DTVector<double> NormalOf(const std::vector<C3DTPoint<double>>& corners)
{
    C3DTVector<double> normal;
    for (std::size_t i = 0; i < corners.size(); i++) {
        const auto &a = corners[i], &b = corners[(i + 1) % corners.size()];
        normal.x += (a.y - b.y) * (a.z + b.z);
        normal.y += (a.z - b.z) * (a.x + b.x);
        normal.z += (a.x - b.x) * (a.y + b.y);
    }
    if (normal.z > 0)
        normal = C3DTVector<double>(-normal.x, -normal.y, -normal.z);
    return normal;
}

void DrawShape(const Shape& shape, Canvas& canvas)
{
    const C3DFaceList& faces = *shape.object->GetFaceList();
    const C3DPointList& points = *shape.object->GetPointList();
    std::vector<C3DTPoint<double>> corners;
    for (unsigned int i = 0; i < static_cast<unsigned int>(faces.GetSize()); i++) {
        int count;
        const int* indexes = faces.GetIndexes(i, count);
        if (count < 3 || faces.IsFaceOneFlagSet(i, FACE_INVALID | FACE_EMPTY))
            continue;
        corners.clear();
        for (int k = 0; k < count; k++) {
            const C3DTPoint<float> p = shape.matrix * *points.ElementAt(indexes[k]);
            corners.emplace_back(p.x, p.y, p.z);
        }
        const C3DTVector<double> normal = NormalOf(corners);
        const double length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
        if (std::fabs(normal.z) > 1e-9 * length)    // not seen edge on
            canvas.Fill(corners, normal, Shade(normal, length, faces.GetFaceMaterial(i)));
    }
}

int Draw(const char* file, const char* picture)
{
    C3DScene* scene = ReadScene(file);
    if (!scene)
        return 3;
    Canvas canvas;
    for (const Shape& shape : PlaceShapes(*scene))
        DrawShape(shape, canvas);
    DeleteMe(scene);
    return canvas.Write(picture) ? 0 : 1;
}

}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: drawing FILE PICTURE\n");
        return 2;
    }
    Init3DZel(1);    // no viewer commands
    const int result = Draw(argv[1], argv[2]);
    Close3DZel(0);
    return result;
}
