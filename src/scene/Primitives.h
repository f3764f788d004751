#pragma once

#include "geometry/AxisInfo.h"
#include "geometry/Point.h"
#include "scene/Forward.h"
#include "tools/Api.h"

// Solids by their parameters. Each function gives a node with one polygon object, in no scene yet: C3DScene::AddNode takes it over. The
// centre stands in the points. `materialID` goes on every face. With `hasUVW` there is a channel of texture coordinates under
// `channelID`. Steps, rings, segments and stacks are at least 1.

/// Eight points, six quads; the whole texture on each side.
ZEL_API C3DSceneNode* CreateCube(const C3DTPoint<float>& centre, double sizeX, double sizeY, double sizeZ, bool hasUVW,
                                 unsigned int materialID, unsigned int channelID);
/// Quads in stepsX by stepsY. Of the size given only when the normal is perpendicular to the x axis (to the y axis when it runs along x).
ZEL_API C3DSceneNode* CreatePlane(const C3DTPoint<float>& centre, const C3DTVector<float>& normal, double width, double height,
                                  unsigned int stepsX, unsigned int stepsY, bool hasUVW, unsigned int materialID, unsigned int channelID);
/// Triangles; poles on the y axis; a seam where the first and last column of points lie on each other.
ZEL_API C3DSceneNode* CreateSphere(const C3DTPoint<float>& centre, double radius, int rings, int segments, bool hasUVW,
                                   unsigned int materialID, unsigned int channelID);
/// Along the y axis.
ZEL_API C3DSceneNode* CreateCylinder(const C3DTPoint<float>& centre, double radius, double height, unsigned int segments,
                                     unsigned int stacks, bool caps, bool hasUVW, unsigned int materialID, unsigned int channelID);
/// Base at the centre, tip at `height` above it along the y axis.
ZEL_API C3DSceneNode* CreateCone(const C3DTPoint<float>& centre, double radius, double height, unsigned int segments, unsigned int stacks,
                                 bool hasUVW, unsigned int materialID, unsigned int channelID);
/// A tube with half balls at its ends, `length` over all, along an axis; the pivot is at its centre. Fans of triangles, bands of quads.
/// Null for a length of 0. `bodyRings` below 2 join the caps directly. The arguments without name are not used.
ZEL_API C3DSceneNode* CreateCapsule(const C3DTPoint<float>& centre, float radius, float length, unsigned int segments,
                                    unsigned int capRings, unsigned int bodyRings, _AXIS_INFO axis, int, unsigned int materialID,
                                    unsigned int);
