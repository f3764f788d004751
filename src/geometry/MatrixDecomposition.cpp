#include "geometry/MatrixDecomposition.h"

#include <algorithm>
#include <array>
#include <cmath>

// Polar decomposition of the 3x3 block, after Shoemake: block = F Q S, with F a sign, Q a rotation and S a symmetric
// stretch, which in turn is U K U^T with K diagonal and not negative.
//
//   polar      Q is where Newton's iteration leads the block; a singular block goes through its singular values
//   spectrum   U and K from S by Jacobi rotations
//   snuggle    of the up to 24 orders and signs of K's axes, the one whose U turns least
//
// All of it works on the transposed block, in the usual quaternions for columns: CQuaternion means the transposed rotation.

namespace {
using Vector = std::array<double, 3>;

struct Matrix {
    Vector rows[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    double& operator()(int i, int j) { return rows[i][j]; }
    double operator()(int i, int j) const { return rows[i][j]; }
    Vector GetColumn(int j) const { return {rows[0][j], rows[1][j], rows[2][j]}; }
    void SetColumn(int j, const Vector& column)
    {
        for (int i = 0; i < 3; i++)
            rows[i][j] = column[i];
    }
};

double Dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector Cross(const Vector& a, const Vector& b) { return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]}; }

Vector operator*(const Vector& v, double factor) { return {v[0] * factor, v[1] * factor, v[2] * factor}; }

Matrix Transposed(const Matrix& a)
{
    Matrix result;
    for (int j = 0; j < 3; j++)
        result.SetColumn(j, a.rows[j]);
    return result;
}

Matrix operator*(const Matrix& a, const Matrix& b)
{
    Matrix product;
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            product(i, j) = Dot(a.rows[i], b.GetColumn(j));
    return product;
}

/// The cofactors: determinant times the transposed inverse.
Matrix Cofactors(const Matrix& a) { return {{Cross(a.rows[1], a.rows[2]), Cross(a.rows[2], a.rows[0]), Cross(a.rows[0], a.rows[1])}}; }

double Determinant(const Matrix& a) { return Dot(a.rows[0], Cross(a.rows[1], a.rows[2])); }

/// Largest sum of absolute values in a row.
double RowNorm(const Matrix& a)
{
    double norm = 0;
    for (const Vector& row : a.rows)
        norm = std::max(norm, std::fabs(row[0]) + std::fabs(row[1]) + std::fabs(row[2]));
    return norm;
}

double ColumnNorm(const Matrix& a) { return RowNorm(Transposed(a)); }

// ---- rotations as quaternions

struct Quaternion {
    double x = 0, y = 0, z = 0, w = 1;
};

Quaternion operator*(const Quaternion& a, const Quaternion& b)
{
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

double& Component(Quaternion& q, int axis) { return axis == 0 ? q.x : axis == 1 ? q.y : q.z; }

/// Image of a unit axis.
Vector RotateAxis(const Quaternion& q, int axis)
{
    Quaternion unit{0, 0, 0, 0};
    Component(unit, axis) = 1;
    const Quaternion image = q * unit * Quaternion{-q.x, -q.y, -q.z, q.w};
    return {image.x, image.y, image.z};
}

Quaternion ToQuaternion(const Matrix& r)
{
    Quaternion q;
    if (const double trace = r(0, 0) + r(1, 1) + r(2, 2); trace > 0) {
        const double s = std::sqrt(trace + 1), f = 0.5 / s;
        return {(r(2, 1) - r(1, 2)) * f, (r(0, 2) - r(2, 0)) * f, (r(1, 0) - r(0, 1)) * f, s / 2};
    }
    int i = r(1, 1) > r(0, 0) ? 1 : 0;
    if (r(2, 2) > r(i, i))
        i = 2;
    const int j = (i + 1) % 3, k = (j + 1) % 3;
    const double s = std::sqrt(r(i, i) - r(j, j) - r(k, k) + 1), f = 0.5 / s;
    Component(q, i) = s / 2;
    Component(q, j) = (r(i, j) + r(j, i)) * f;
    Component(q, k) = (r(i, k) + r(k, i)) * f;
    q.w = (r(k, j) - r(j, k)) * f;
    return q;
}

CQuaternion ToFloat(const Quaternion& q)
{
    return {static_cast<float>(q.x), static_cast<float>(q.y), static_cast<float>(q.z), static_cast<float>(q.w)};
}

// ---- polar decomposition

/// Turns columns p and q of `a` against each other so that column p loses tangent `t` of q.
void RotateColumns(Matrix& a, int p, int q, double t)
{
    const double c = 1 / std::sqrt(t * t + 1), s = t * c;
    for (Vector& row : a.rows) {
        const double rp = row[p], rq = row[q];
        row[p] = c * rp - s * rq;
        row[q] = s * rp + c * rq;
    }
}

/// The smaller tangent that brings [pp pq; pq qq] to diagonal form.
double JacobiTangent(double pp, double pq, double qq)
{
    const double theta = (qq - pp) / (2 * pq);
    const double t = 1 / (std::fabs(theta) + std::sqrt(theta * theta + 1));
    return theta < 0 ? -t : t;
}

/// A unit vector at right angles to the unit vector `u`, as near to `wish` as can be.
Vector Perpendicular(const Vector& u, const Vector& wish)
{
    for (const Vector& candidate : {wish, Vector{1, 0, 0}, Vector{0, 1, 0}}) {
        const double along = Dot(u, candidate);
        const Vector rest = {candidate[0] - along * u[0], candidate[1] - along * u[1], candidate[2] - along * u[2]};
        if (const double length = std::sqrt(Dot(rest, rest)); length > 0.1)
            return rest * (1 / length);
    }
    return {0, 0, 1};
}

/// Orthogonal factor of a singular block: its singular vectors, with those of the missing directions made up so that no
/// mirror comes in.
Matrix SingularPolar(const Matrix& block)
{
    Matrix images = block, axes;    // images = block * axes, with columns at right angles in the end
    for (int sweep = 0; sweep < 30; sweep++) {
        bool turned = false;
        for (const auto [p, q] : {std::array{0, 1}, std::array{1, 2}, std::array{2, 0}}) {
            const Vector a = images.GetColumn(p), b = images.GetColumn(q);
            const double pp = Dot(a, a), qq = Dot(b, b), pq = Dot(a, b);
            if (!(std::fabs(pq) > 1e-15 * std::sqrt(pp * qq)))
                continue;
            const double t = JacobiTangent(pp, pq, qq);
            RotateColumns(images, p, q, t);
            RotateColumns(axes, p, q, t);
            turned = true;
        }
        if (!turned)
            break;
    }

    double lengths[3], largest = 0;
    for (int j = 0; j < 3; j++) {
        lengths[j] = std::sqrt(Dot(images.GetColumn(j), images.GetColumn(j)));
        largest = std::max(largest, lengths[j]);
    }
    int rank = 0, present = 0, missing = 0;
    for (int j = 0; j < 3; j++) {
        if (lengths[j] > 1e-12 * largest) {
            images.SetColumn(j, images.GetColumn(j) * (1 / lengths[j]));
            rank++;
            present = j;
        } else
            missing = j;
    }
    if (rank == 0)
        return {};
    if (rank == 1) {
        missing = (present + 2) % 3;
        const int next = (present + 1) % 3;
        images.SetColumn(next, Perpendicular(images.GetColumn(present), axes.GetColumn(next)));
    }
    if (rank < 3)
        images.SetColumn(missing, Cross(images.GetColumn((missing + 1) % 3), images.GetColumn((missing + 2) % 3)));
    return images * Transposed(axes);
}

/// Nearest orthogonal matrix of the block, mirror included.
Matrix Polar(const Matrix& block)
{
    constexpr double TOLERANCE = 1e-6;    // the step is quadratic: what is left lies far below
    Matrix q = block;
    for (int step = 0; step < 100; step++) {
        const Matrix cofactors = Cofactors(q);
        const double determinant = Dot(q.rows[0], cofactors.rows[0]);
        if (determinant == 0)
            return SingularPolar(block);

        // q <- (g q + q^-T / g) / 2; g evens out the norms of both, so that bad scales converge at once.
        const double norm = ColumnNorm(q);
        const double inverseNorms = ColumnNorm(cofactors) * RowNorm(cofactors);
        const double g = std::sqrt(std::sqrt(inverseNorms / (norm * RowNorm(q))) / std::fabs(determinant));
        Matrix change;
        for (int i = 0; i < 3; i++)
            for (int j = 0; j < 3; j++) {
                const double next = 0.5 * (g * q(i, j) + cofactors(i, j) / (g * determinant));
                change(i, j) = next - q(i, j);
                q(i, j) = next;
            }
        if (!(ColumnNorm(change) > norm * TOLERANCE))
            break;
    }
    return q;
}

/// Eigenvectors, as columns, and eigenvalues of a symmetric matrix.
void Spectrum(Matrix s, Matrix& axes, Vector& factors)
{
    axes = Matrix();
    for (int sweep = 0; sweep < 20; sweep++) {
        if (std::fabs(s(0, 1)) + std::fabs(s(1, 2)) + std::fabs(s(2, 0)) == 0)
            break;
        for (const auto [p, q] : {std::array{0, 1}, std::array{2, 0}, std::array{1, 2}}) {
            if (s(p, q) == 0)
                continue;
            const double t = JacobiTangent(s(p, p), s(p, q), s(q, q));
            RotateColumns(s, p, q, t);
            s = Transposed(s);
            RotateColumns(s, p, q, t);
            s(p, q) = s(q, p) = 0;
            RotateColumns(axes, p, q, t);
        }
    }
    for (int i = 0; i < 3; i++)
        factors[i] = s(i, i);
}

// ---- snuggle

/// The 24 rotations that map axes onto axes, no rotation first.
std::array<Quaternion, 24> AxisRotations()
{
    std::array<Quaternion, 24> rotations;
    int count = 1;    // the first one is no rotation
    const auto add = [&](double x, double y, double z, double w) {
        const double length = std::sqrt(x * x + y * y + z * z + w * w);
        rotations[count++] = {x / length, y / length, z / length, w / length};
    };
    for (int axis = 0; axis < 3; axis++) {
        const double x = axis == 0, y = axis == 1, z = axis == 2;
        add(x, y, z, 0);    // half a turn
        add(x, y, z, 1);    // quarter turns
        add(-x, -y, -z, 1);
        add(1 - x, 1 - y, 1 - z, 0);    // half a turn about the middle of two axes
        add((1 - x) * (axis == 2 ? -1 : 1), (1 - y) * (axis == 0 ? -1 : 1), (1 - z) * (axis == 1 ? -1 : 1), 0);
    }
    for (int signs = 0; signs < 8; signs++)    // thirds of a turn about the diagonals
        add(signs & 1 ? -1 : 1, signs & 2 ? -1 : 1, signs & 4 ? -1 : 1, 1);
    return rotations;
}

/// The axis whose factor differs from the other two, which are equal; -1 when all differ, 3 when all are equal.
/// Compared as they are stored, in float.
int GetOddAxis(const Vector& k)
{
    const float x = static_cast<float>(k[0]), y = static_cast<float>(k[1]), z = static_cast<float>(k[2]);
    if (x == y)
        return x == z ? 3 : 2;
    return x == z ? 1 : y == z ? 0 : -1;
}

/// Axis of `to` that the axis rotation `p` makes of each axis.
std::array<int, 3> GetTargets(const Quaternion& p)
{
    std::array<int, 3> targets{};
    for (int j = 0; j < 3; j++) {
        const Vector image = RotateAxis(p, j);
        for (int i = 0; i < 3; i++)
            if (std::fabs(image[i]) > 0.5)
                targets[j] = i;
    }
    return targets;
}

/// Replaces stretch rotation `u` by the least one that expresses the same stretch, and reorders the factors with it.
void Snuggle(Quaternion& u, Vector& factors)
{
    static const std::array<Quaternion, 24> rotations = AxisRotations();
    const int odd = GetOddAxis(factors);
    if (odd == 3) {
        u = {};    // the same stretch in all directions
        return;
    }

    double best = -1;
    Quaternion bestU = u;
    Vector bestFactors = factors;
    for (const Quaternion& p : rotations) {
        const std::array<int, 3> targets = GetTargets(p);
        Quaternion candidate = u * p;
        double nearness = std::fabs(candidate.w);
        if (odd != -1) {
            // Turning about the odd axis changes nothing: turn so that no part about that axis is left.
            const int axis = static_cast<int>(std::find(targets.begin(), targets.end(), odd) - targets.begin());
            const double part = Component(candidate, axis), w = candidate.w;
            nearness = std::sqrt(w * w + part * part);
            if (nearness == 0)
                continue;
            Quaternion twist{0, 0, 0, w / nearness};
            Component(twist, axis) = -part / nearness;
            candidate = candidate * twist;
        }
        if (nearness <= best + 1e-9)
            continue;    // of equals, the first one
        best = nearness;
        bestU = candidate;
        for (int j = 0; j < 3; j++)
            bestFactors[j] = factors[targets[j]];
    }
    u = bestU.w < 0 ? Quaternion{-bestU.x, -bestU.y, -bestU.z, -bestU.w} : bestU;
    factors = bestFactors;
}
}

void Decompose(const C4x4TMatrix<float>& matrix, _MatrixDecomposition& parts)
{
    Matrix block;
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            block(i, j) = matrix.m[j][i];

    Matrix rotation = Polar(block);
    parts.sign = Determinant(rotation) < 0 ? -1 : 1;
    if (parts.sign < 0)
        for (Vector& row : rotation.rows)
            row = row * -1;

    Matrix stretch = Transposed(rotation) * block, axes;
    for (int i = 0; i < 3; i++)
        for (int j = 0; j <= i; j++)
            stretch(i, j) = stretch(j, i) = parts.sign * 0.5 * (stretch(i, j) + stretch(j, i));
    Vector factors;
    Spectrum(stretch, axes, factors);
    Quaternion u = ToQuaternion(axes);
    Snuggle(u, factors);

    parts.translation = matrix.GetTranslation();
    for (int i = 0; i < 3; i++)
        parts.stretch[i] = static_cast<float>(factors[i]);
    parts.rotation = ToFloat(ToQuaternion(rotation));
    parts.stretchRotation = ToFloat(u);
}

C4x4TMatrix<float> Recompose(const _MatrixDecomposition& parts)
{
    C4x4TMatrix<float> u, inverse, q, result;
    u.FromQuaternion(parts.stretchRotation);
    q.FromQuaternion(parts.rotation);
    if (!C4x4TMatrix<float>::GetInverse(u, inverse))
        return result;
    result.SetTranslation(parts.translation.x, parts.translation.y, parts.translation.z);
    result *= inverse;
    result.Scale(parts.stretch.x, parts.stretch.y, parts.stretch.z);
    result *= u;
    result *= q;
    result.Scale(parts.sign, parts.sign, parts.sign);
    return result;
}
