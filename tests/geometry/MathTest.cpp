#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "geometry/4DVector.h"
#include "geometry/MatrixDecomposition.h"
#include "geometry/NoisyWave.h"
#include "geometry/Quaternion.h"
#include "geometry/Swap.h"
#include "geometry/Triangle.h"

namespace {
constexpr double PI = std::numbers::pi;
using FMatrix = C4x4TMatrix<float>;
using FPoint = C3DTPoint<float>;
using FVector = C3DTVector<float>;

FMatrix MakeMatrix(const std::array<float, 12>& rows)
{
    FMatrix m;
    for (int i = 0; i < 12; i++)
        m.m[i / 4][i % 4] = rows[i];
    return m;
}

void ExpectNear(const FMatrix& a, const FMatrix& b, double tolerance)
{
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            EXPECT_NEAR(a.m[i][j], b.m[i][j], tolerance) << "element " << i << ", " << j;
}

void ExpectNear(const C3DTCoordinates<float>& a, double x, double y, double z, double tolerance)
{
    EXPECT_NEAR(a.x, x, tolerance);
    EXPECT_NEAR(a.y, y, tolerance);
    EXPECT_NEAR(a.z, z, tolerance);
}

/// Rotation of a column vector about a unit axis, in double.
std::array<double, 3> Turn(const std::array<double, 3>& v, const std::array<double, 3>& axis, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle);
    const double along = (v[0] * axis[0] + v[1] * axis[1] + v[2] * axis[2]) * (1 - c);
    return {v[0] * c + (axis[1] * v[2] - axis[2] * v[1]) * s + axis[0] * along,
            v[1] * c + (axis[2] * v[0] - axis[0] * v[2]) * s + axis[1] * along,
            v[2] * c + (axis[0] * v[1] - axis[1] * v[0]) * s + axis[2] * along};
}

/// Image of v under a quaternion, through q v q*.
FVector Image(const CQuaternion& q, const FVector& v)
{
    CQuaternion pure;
    pure = v;
    const CQuaternion image = q * pure * CQuaternion(-q.x, -q.y, -q.z, q.w);
    return {image.x, image.y, image.z};
}

class Random {
public:
    double Get(double low, double high) { return std::uniform_real_distribution<double>(low, high)(m_engine); }
    CQuaternion GetRotation()
    {
        std::normal_distribution<float> normal;
        CQuaternion q(normal(m_engine), normal(m_engine), normal(m_engine), normal(m_engine));
        q.Normalize();
        return q;
    }
    FMatrix GetAffine()
    {
        FMatrix m;
        for (int i = 0; i < 3; i++)
            for (int j = 0; j < 4; j++)
                m.m[i][j] = static_cast<float>(Get(-2, 2));
        return m;
    }

private:
    std::mt19937 m_engine{20240611};
};
}

TEST(Points, FlagsGoWithAssignmentAndNotThroughArithmeticOrNeutralForm)
{
    FPoint p(1, 2, 3);
    p.SetFlags(POINT_BORDER | POINT_SLICED);
    EXPECT_EQ((p - FPoint(1, 1, 1)).flags, 0u);
    EXPECT_EQ((FMatrix() * p).flags, 0u);
    FPoint q;
    q.flags = POINT_UNSET;
    C4DPoint neutral;
    p.To4DPoint(neutral);
    static_cast<CPt&>(q) = neutral;
    EXPECT_EQ(q, p);
    EXPECT_EQ(q.flags, POINT_UNSET);
    static_cast<CPt&>(q) = static_cast<const CPt&>(p);
    EXPECT_EQ(q.flags, p.flags);

    // Through the base also between kinds: by coordinates, and what is missing is 0.
    C2DTPoint<float> flat(7, 8);
    flat.flags = POINT_UV_SEAM;
    static_cast<CPt&>(q) = flat;
    EXPECT_EQ(q, FPoint(7, 8, 0));
    EXPECT_EQ(q.flags, POINT_UV_SEAM);
}

TEST(Planes, ThroughThreePoints)
{
    C4DVector plane;
    plane.GetPlaneVector(FPoint(5, 6, 7), FPoint(5, 6, 7), FPoint(5, 6, 7));
    EXPECT_EQ(plane.x, 1);
    EXPECT_EQ(plane.w, -5);

    const FPoint a(1, 2, 3), b(4, 0, -1), c(-2, 5, 2);
    plane.GetPlaneVector(a, b, c);
    EXPECT_NEAR(plane.Length(), 1, 1e-15);
    for (const FPoint& p : {a, b, c})
        EXPECT_NEAR(plane * C4DVector(p.x, p.y, p.z, 1), 0, 1e-12);
    EXPECT_GT(plane.x, 0) << "(b - a) cross (c - a) is (14, 9, 6)-like: right handed";
}

TEST(Matrix, IdentityHasATolerance)
{
    struct {
        int i, j;
        float value;
        bool identity;
    } const rows[] = {
        {2, 2, 1.004f, true},
        {2, 2, 1.006f, false},
        {0, 3, -0.006f, false},
        {0, 0, std::numeric_limits<float>::quiet_NaN(), false},
    };
    for (const auto& row : rows) {
        FMatrix m;
        m.m[row.i][row.j] = row.value;
        EXPECT_EQ(m.IsIdentity(), row.identity) << row.i << row.j << " " << row.value;
    }
}

TEST(Matrix, RightOperandActsFirst)
{
    FMatrix move, grow;
    move.SetTranslation(10, 0, 0);
    grow.Scale(2, 3, 4);
    EXPECT_EQ((move * grow) * FPoint(1, 1, 1), FPoint(12, 3, 4));
    EXPECT_EQ((grow * move) * FPoint(1, 1, 1), FPoint(22, 3, 4));
    EXPECT_EQ((grow * move) * FVector(1, 1, 1), FVector(2, 3, 4)) << "vectors do not move";
    FMatrix both = grow;
    both *= move;
    EXPECT_EQ(both, grow * move);

    FMatrix scaled = move;
    scaled.Scale(2, 3, 4);
    EXPECT_EQ(scaled, move * grow);
}

TEST(Matrix, InverseUndoesAndRefusesTheSingular)
{
    Random random;
    for (int n = 0; n < 300; n++) {
        const FMatrix m = random.GetAffine();
        FMatrix inverse;
        ASSERT_TRUE(FMatrix::GetInverse(m, inverse));
        double size = 1;
        for (int i = 0; i < 12; i++)
            size = std::max(size, std::fabs(static_cast<double>(inverse.ValPtr()[i])));
        ExpectNear(m * inverse, FMatrix(), 1e-6 * size);
        ExpectNear(inverse * m, FMatrix(), 1e-6 * size * 4);
    }
    struct {
        const char* name;
        std::array<float, 12> rows;
        bool invertible;
    } const cases[] = {
        {"sum of rows", {0.1f, 0.7f, 0.3f, 0, 0.9f, 0.2f, 0.4f, 0, 1.0f, 0.9f, 0.7f, 0}, true},
        {"not a number", {std::numeric_limits<float>::quiet_NaN(), 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0}, false},
        {"one part in 1e7", {1, 1, 0, 0, 1, 1.0000001f, 0, 0, 0, 0, 1, 0}, true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const FMatrix m = MakeMatrix(row.rows), before = MakeMatrix({1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2, 3});
        FMatrix result = before;
        EXPECT_EQ(FMatrix::GetInverse(m, result), row.invertible);
        if (!row.invertible) {
            EXPECT_EQ(result, before);
        }
    }
    FMatrix m = MakeMatrix({2, 0, 0, 4, 0, 4, 0, 8, 0, 0, 8, 16});
    m.m[3][1] = 9;    // a broken last row plays no part
    EXPECT_TRUE(FMatrix::GetInverse(m, m));
    EXPECT_EQ(m, MakeMatrix({0.5f, 0, 0, -2, 0, 0.25f, 0, -2, 0, 0, 0.125f, -2})) << "onto itself";
}

TEST(Quaternion, ProductAndAxesAreRightHanded)
{
    const CQuaternion i(1, 0, 0, 0), j(0, 1, 0, 0), k(0, 0, 1, 0);
    EXPECT_EQ(i * j, k);
    EXPECT_EQ(j * i, k * -1.0);

    Random random;
    for (int n = 0; n < 200; n++) {
        const double angle = random.Get(-3 * PI, 3 * PI);
        FVector axis(static_cast<float>(random.Get(-5, 5)), static_cast<float>(random.Get(-5, 5)), 1);
        const FVector v(1, -2, 3);
        const double length = axis.Length();
        const auto expected = Turn({1, -2, 3}, {axis.x / length, axis.y / length, axis.z / length}, angle);
        const CQuaternion q(axis, angle);
        ExpectNear(Image(q, v), expected[0], expected[1], expected[2], 1e-5);

        // The matrix of a quaternion turns the other way: it is the transpose.
        FMatrix m;
        m.FromQuaternion(q * 3.0);    // of any length
        const auto back = Turn({1, -2, 3}, {axis.x / length, axis.y / length, axis.z / length}, -angle);
        ExpectNear(m * v, back[0], back[1], back[2], 1e-5);
    }
}

TEST(Quaternion, MatrixAndBackIsTheSameRotation)
{
    Random random;
    std::vector<CQuaternion> rotations = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    for (int n = 0; n < 500; n++)
        rotations.push_back(random.GetRotation());
    for (CQuaternion q : rotations) {
        q.Normalize();
        FMatrix m;
        m.FromQuaternion(q);
        m.Scale(2, 0.25, 7);    // the scale comes off, the translation does not matter
        m.SetTranslation(4, 5, 6);
        CQuaternion back;
        back = m;
        EXPECT_NEAR(back.Magnitude(), 1, 1e-5);
        EXPECT_NEAR(std::fabs(q.x * back.x + q.y * back.y + q.z * back.z + q.w * back.w), 1, 1e-6);
    }

    // Matrices multiply in the other order than their quaternions.
    const CQuaternion a = random.GetRotation(), b = random.GetRotation();
    FMatrix ma, mb, mab;
    ma.FromQuaternion(a);
    mb.FromQuaternion(b);
    mab.FromQuaternion(a * b);
    ExpectNear(mab, mb * ma, 1e-6);
}

TEST(Quaternion, HeadingPitchBank)
{
    double h, p, b;
    // Heading about Y applies first, then pitch about X, then bank about Z.
    const FVector v(1, 2, 3);
    const auto turned = Turn(Turn(Turn({1, 2, 3}, {0, 1, 0}, 0.3), {1, 0, 0}, 0.5), {0, 0, 1}, -0.7);
    ExpectNear(Image(CQuaternion(0.3, 0.5, -0.7), v), turned[0], turned[1], turned[2], 1e-5);

    for (double heading = -3; heading <= 3; heading += 0.5)
        for (double pitch = -1.4; pitch <= 1.4; pitch += 0.35)
            for (double bank = -3; bank <= 3; bank += 0.75) {
                (CQuaternion(heading, pitch, bank) * 2.0).GetHPBAngles(h, p, b);
                EXPECT_NEAR(h, heading, 1e-4);
                EXPECT_NEAR(p, pitch, 1e-4);
                EXPECT_NEAR(b, bank, 1e-4);
            }
    // Straight up and down heading and bank turn about the same axis: all of it goes to the heading.
    for (const double side : {1.0, -1.0}) {
        const CQuaternion q(0.8, side * PI / 2, 0.3);
        q.GetHPBAngles(h, p, b);
        EXPECT_EQ(b, 0);
        EXPECT_EQ(p, side * PI / 2);
        const FVector expected = Image(q, v), image = Image(CQuaternion(h, p, b), v);
        ExpectNear(image, expected.x, expected.y, expected.z, 1e-3);
    }
}

TEST(Quaternion, AxisAndAngleAndTheirLack)
{
    FVector axis;
    double angle;
    struct {
        const char* name;
        CQuaternion q;
    } const none[] = {
        {"a whole turn", {0, 0, 0, -2}},
        {"below float's sine", {1e-8f, 0, 0, 1}},
        {"zero", {0, 0, 0, 0}},
        {"w rounds above 1", {1e-6f, 0, 0, 1.0000001f}},
    };
    for (const auto& row : none) {
        SCOPED_TRACE(row.name);
        EXPECT_FALSE(row.q.GetAxisAngle(axis, angle));
        EXPECT_FALSE(row.q.IsValid());
        EXPECT_EQ(angle, 0);
        EXPECT_EQ(axis, FVector(1, 0, 0));
    }
    for (const double given : {0.1, 1.0, 3.0, 3.1415, 5.0}) {
        EXPECT_TRUE((CQuaternion(FVector(2, -3, 6), given) * 5.0).GetAxisAngle(axis, angle));
        EXPECT_NEAR(angle, given, 1e-4);
        ExpectNear(axis, 2.0 / 7, -3.0 / 7, 6.0 / 7, 1e-4);
    }
    CQuaternion q;
    q.SetAxisAngle(FVector(1e-16f, 0, 0), 2);    // too short to normalise
    EXPECT_NEAR(q.w, std::cos(1.0), 1e-7);

    // Equality: each component by itself.
    EXPECT_EQ(CQuaternion(0, 0, 0, 1), CQuaternion(9e-7f, -9e-7f, 9e-7f, 1));
    EXPECT_FALSE(CQuaternion(0, 0, 0, 1) == CQuaternion(0, 0, 2e-6f, 1));
    EXPECT_FALSE(CQuaternion(0, 0, 0, 1) == CQuaternion(0, 0, 0, -1));
}

TEST(Quaternion, SlerpTakesTheShortWayAtConstantSpeed)
{
    const FVector axis(1, 2, -2);
    const CQuaternion a(axis, 0.2), b(axis, 1.4);
    for (float t = 0; t <= 1; t += 0.125f) {
        const CQuaternion expected(axis, 0.2 + 1.2 * t);
        EXPECT_EQ(CQuaternion::Slerp(a, b, t), expected) << t;
        EXPECT_EQ(CQuaternion::Slerp(a, b * -1.0, t), expected) << t << ": the same rotation with the other sign";
    }
    // Nearly equal: linear, without a division by a vanished sine.
    EXPECT_EQ(CQuaternion::Slerp(a, a, 0.5f), a);
    EXPECT_NEAR(CQuaternion::Slerp({}, {0, 0, 0, 3}, 0.5f).w, 2, 1e-6) << "not normalised";
}

TEST(Swap, MatricesFollowTheirPoints)
{
    // C is the change of coordinates that the code means. Adjusting gives C m C^-1: what m does, seen in the new axes.
    // Swapping changes the translation by C, and the block on its right side alone.
    const FMatrix m = MakeMatrix({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const auto change = [](FPoint p, unsigned int code) {
        int a, b, mirror;
        if (GetXYZSwap(code, a, b, mirror)) {
            if (a != -1)
                std::swap(p[a], p[b]);
            if (mirror != -1)
                p[mirror] = -p[mirror];
        }
        return p;
    };
    const FPoint p(1, -2, 4);
    for (const unsigned int pair : {0u, 1u, 2u, 4u})
        for (const unsigned int mirror : {0u, 0x10u, 0x20u, 0x40u}) {
            const unsigned int code = pair | mirror;
            SCOPED_TRACE(code);
            EXPECT_EQ(AdjustMatrix(code, m) * change(p, code), change(m * p, code));

            FMatrix block = m;
            block.SetTranslation(0, 0, 0);
            const FMatrix swapped = SwapMatrix(code, m);
            // Right factor: exchange, then mirror, so the mirror acts on the point first.
            EXPECT_EQ(swapped * FVector(p), block * FVector(change(change(p, mirror), pair)));
            const FPoint moved = change(FPoint(4, 8, 12), code);
            EXPECT_EQ(FPoint(swapped.GetTranslation()), moved);
        }
    // Unusable halves.
    EXPECT_EQ(AdjustMatrix(0x13, m), AdjustMatrix(0x10, m));
    EXPECT_EQ(SwapMatrix(0x31, m), SwapMatrix(0x1, m));
}

TEST(NoisyWave, RotatesTheAxes)
{
    // dir (0, 2, 0): y goes to x, the height is |dir| times the amplitude. (1.5 - 1) * 1 / 2 + 0.5 = 0.75 turns.
    const FPoint other = NoisyWaveFunc(FPoint(9, 1.5f, 9), FPoint(0, 1, 0), FVector(0, 2, 0), 3, 1, 0.5);
    EXPECT_NEAR(other.x, -6, 1e-5);
    EXPECT_EQ(other.y, 0);
    EXPECT_EQ(other.z, 0);
}

TEST(Decomposition, RecomposesEverything)
{
    struct {
        const char* name;
        std::array<float, 12> rows;
    } const rows[] = {
        {"mirror", {-1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3}},
        {"point mirror", {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}},
        {"two equal factors", {2, 0, 0, 0, 0, 5, 0, 0, 0, 0, 5, 0}},
        {"bad scales", {1e-4f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1e4f, 0}},
        {"flat and turned", {1, 2, 3, 0, 2, 4, 6.5f, 0, 3, 6, 1, 0}},
        {"point", {0, 0, 0, 4, 0, 0, 0, 5, 0, 0, 0, 6}},
        {"nearly flat", {1, 2, 3, 0, 2, 4, 6.5f, 0, 3, 6.00001f, 1, 0}},
    };
    const auto check = [](const FMatrix& m) {
        _MatrixDecomposition parts;
        Decompose(m, parts);
        double size = 0;
        for (int i = 0; i < 12; i++)
            size = std::max(size, std::fabs(static_cast<double>(m.ValPtr()[i])));
        ExpectNear(Recompose(parts), m, 4e-6 * size);
        EXPECT_NEAR(parts.rotation.Magnitude(), 1, 1e-6);
        EXPECT_NEAR(parts.stretchRotation.Magnitude(), 1, 1e-6);
        for (int i = 0; i < 3; i++)
            EXPECT_GE(parts.stretch[i], -1e-6 * size);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        check(MakeMatrix(row.rows));
    }
    Random random;
    for (int n = 0; n < 500; n++) {
        SCOPED_TRACE(n);
        check(random.GetAffine());
    }
}
