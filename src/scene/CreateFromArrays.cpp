#include <climits>

#include "geometry/3DPointList.h"
#include "scene/3DObject.h"

/// True when all `count` indices are points of a list of `points`.
static bool AreInside(const int* indexes, std::size_t count, unsigned int points)
{
    unsigned int largest = 0;    // a negative index is a very large one
    for (std::size_t i = 0; i < count; i++)
        largest = static_cast<unsigned int>(indexes[i]) > largest ? static_cast<unsigned int>(indexes[i]) : largest;
    return count == 0 || largest < points;
}

C3DObject* CreateObjectFromArrays(const float* points, unsigned int pointBytes, const int* triangles, unsigned int triangleBytes,
                                  const int* quads, unsigned int quadBytes)
{
    const unsigned int pointNbr = points ? pointBytes / 12 : 0;
    const unsigned int triangleNbr = triangles ? triangleBytes / 12 : 0;
    const unsigned int quadNbr = quads ? quadBytes / 16 : 0;
    if (!AreInside(triangles, std::size_t{3} * triangleNbr, pointNbr) || !AreInside(quads, std::size_t{4} * quadNbr, pointNbr))
        return nullptr;

    C3DObject* object = new C3DObject;
    object->Init(static_cast<int>(pointNbr), 0, 4, 0, 0, 0);
    C3DTPoint<float>* point = object->GetPointList()->GetFirst();
    for (unsigned int i = 0; i < pointNbr; i++, point++, points += 3) {
        point->x = points[0];
        point->y = points[1];
        point->z = points[2];
    }
    C3DFaceList& faces = *object->GetFaceList();
    faces.AppendFaces(static_cast<int>(triangleNbr), 3, triangles);
    faces.AppendFaces(static_cast<int>(quadNbr), 4, quads);
    faces.FreeExtra();
    return object;
}
