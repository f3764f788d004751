#pragma once

#include <cmath>

#include <3dzel.h>

/// How far what a scene shows reaches in a picture, seen along one or more directions in perspective.
class SceneExtent {
public:
    /// Of the picture's half width and half height: what they are at a distance of 1.
    SceneExtent(double halfWidth, double halfHeight) : m_slopes{halfWidth, halfHeight} {}

    /// Adds what a scene shows at its time, or what is selected of it, turned about `center` by the upper rows of `view`. Hidden nodes have no
    /// part in it. Linear in points.
    void Add(const C3DScene& scene, bool selectedOnly, const C4x4TMatrix<float>& view, const C3DTPoint<float>& center);
    /// Adds the corners of a box of the scene.
    void AddBox(const C3DTPoint<float>& min, const C3DTPoint<float>& max, const C4x4TMatrix<float>& view, const C3DTPoint<float>& center);
    /// Whether anything was added that has a place.
    bool IsEmpty() const { return !(m_most[TOWARDS] >= -HUGE_VAL && m_most[TOWARDS] < HUGE_VAL); }
    /// The translation from turned scene to eye, which looks along -z, that just fills the picture.
    ///
    /// @param clearance  part of the distance by which all must stay before the eye, and
    /// @param reach      length that counts to the distance for that
    C3DTVector<float> GetTranslation(double clearance, double reach) const;

private:
    class Gauges;
    enum Measure { RIGHT, LEFT, TOP, BOTTOM, TOWARDS, MEASURES };

    double m_slopes[2];
    double m_most[MEASURES] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
};
