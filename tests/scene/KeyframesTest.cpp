#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "scene/Keyframable.h"
#include "support/Checksum.h"
#include "support/Streams.h"

namespace {
constexpr double PI = std::numbers::pi;
using FVector = C3DTVector<float>;
using FMatrix = C4x4TMatrix<float>;
constexpr std::uint64_t NUMBER = KeyClassID(KEY_TYPE_INT, FourCC("NUMB"));
constexpr std::uint64_t OTHER = KeyClassID(KEY_TYPE_INT, FourCC("OTHR"));
constexpr std::uint64_t REAL = KeyClassID(KEY_TYPE_FLOAT, 0);

C3DTypeKey<int> Number(int value, std::uint64_t classId = NUMBER) { return C3DTypeKey<int>(classId, value); }

C3DTranslateKey Translation(float x, float y, float z)
{
    C3DTranslateKey key;
    key.SetVector({x, y, z});
    return key;
}

FMatrix RotationMatrix(const FVector& axis, double angle)
{
    FMatrix m;
    m.FromQuaternion(CQuaternion(axis, angle));
    return m;
}

void ExpectNear(const FMatrix& a, const FMatrix& b, double tolerance)
{
    for (int i = 0; i < 16; i++)
        EXPECT_NEAR(a.ValPtr()[i], b.ValPtr()[i], tolerance) << "element " << i / 4 << ", " << i % 4;
}

struct Entry {
    int time;
    std::uint64_t classId;
    int value;
};

/// The keys in order, all of them numbers.
std::vector<Entry> Entries(const C3DKeyframable& list)
{
    std::vector<Entry> entries;
    int time;
    for (unsigned int i = 0; const C3DKeyframe* key = list.GetKeyByIndex(i, &time, KEY_ANY); i++)
        entries.push_back({time, key->GetClassID(), static_cast<const C3DTypeKey<int>*>(key)->value});
    return entries;
}

bool operator==(const Entry& a, const Entry& b) { return a.time == b.time && a.classId == b.classId && a.value == b.value; }

}

TEST(Keyframable, AddKeepsTimeOrderAndOneKeyOfAClassAtATime)
{
    C3DKeyframable list;
    EXPECT_EQ(list.AddKey(3, static_cast<C3DKeyframe*>(nullptr)), -1);
    EXPECT_EQ(list.AddKey(10, Number(1)), 0);
    EXPECT_EQ(list.AddKey(10, Number(2, OTHER)), 1);
    EXPECT_EQ(list.AddKey(-5, Number(3)), 0);
    EXPECT_EQ(list.AddKey(20, Number(4)), 3);
    EXPECT_EQ(list.AddKey(10, Number(5)), 1) << "replaced in its place, before the other class";
    EXPECT_EQ(list.AddKey(15, Number(6, OTHER)), 3);
    EXPECT_EQ(Entries(list), (std::vector<Entry>{{-5, NUMBER, 3}, {10, NUMBER, 5}, {10, OTHER, 2}, {15, OTHER, 6}, {20, NUMBER, 4}}));

    C3DKeyframe* same = list.GetKey(10, KEY_EXACT, NUMBER, nullptr);
    EXPECT_EQ(list.AddKey(10, same), 1) << "its own key again: nothing is lost";
    EXPECT_EQ(list.GetKeyNbr(NUMBER), 3);
    EXPECT_EQ(list.GetKeyNbr(KEY_ANY), 5);
    EXPECT_EQ(list.GetKeyByIndex(2, nullptr, OTHER), nullptr);
    EXPECT_EQ(list.GetTimeRange(KEY_ANY), CTimeRange(-5, 20));
    EXPECT_EQ(list.GetTimeRange(OTHER), CTimeRange(10, 15));
    EXPECT_EQ(list.GetTimeRange(KEY_MATRIX), CTimeRange(0, 0));
    EXPECT_EQ(list.DeleteKey(10), 0);
    EXPECT_EQ(list.GetKeyNbr(KEY_ANY), 5);
}

TEST(Keyframable, LookupAgreesWithAWalkFromTheFront)
{
    // The sum is that of one walk from the front for each question.
    Checksum sum;
    std::mt19937 random(7);
    const std::uint64_t classes[] = {NUMBER, OTHER, REAL};
    for (int round = 0; round < 200; round++) {
        C3DKeyframable list;
        const int count = static_cast<int>(random() % 14);
        for (int i = 0; i < count; i++)
            list.AddKey(static_cast<int>(random() % 9) - 3, Number(i, classes[random() % 2]));
        for (int time = -5; time < 9; time++)
            for (unsigned int mode = 0; mode < 8; mode++)
                for (const std::uint64_t classId : {KEY_ANY, NUMBER, OTHER, REAL}) {
                    int keyTime = 77;
                    const C3DKeyframe* key = list.GetKey(time, mode, classId, &keyTime);
                    sum.Add(key ? static_cast<const C3DTypeKey<int>*>(key)->value : -1, keyTime, list.GetKeyTime(time, mode, classId));
                }
    }
    EXPECT_EQ(sum.Get(), 0xB16820B8CBA46489u);
}

TEST(Keyframable, ALongListLooksAClassUpAmongItsOwnKeys)
{
    C3DKeyframable list;
    for (int time = 0; time < 300; time += 3)
        list.AddKey(time, Number(time, time % 9 ? NUMBER : OTHER));
    // Nothing is looked for among the keys of others: a walk would take 5,000,000,000 steps.
    for (int i = 300; i <= 50000; i++)
        list.AddKey(i, Number(i));
    C3DTypeKey<float> none(REAL, 5);
    C3DTypeKey<int> last(OTHER, 0);
    const std::clock_t start = std::clock();
    for (int i = 300; i < 50000; i++) {
        ASSERT_FALSE(list.Evaluate(i, none));
        ASSERT_TRUE(list.Evaluate(i, last));
    }
    EXPECT_EQ(last.value, 297);
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 2);
}

TEST(Keyframable, EvaluateHoldsOutsideAndInterpolatesInside)
{
    C3DKeyframable list;
    C3DTranslateKey key = Translation(9, 9, 9);
    EXPECT_FALSE(list.Evaluate(0, key));
    EXPECT_EQ(key.GetVector(), FVector(9, 9, 9));
    list.AddKey(10, Number(3));    // of another class: plays no part
    EXPECT_FALSE(list.Evaluate(10, key));

    list.AddKey(10, Translation(1, 2, 3));
    for (const int time : {0, 10, 99}) {
        EXPECT_TRUE(list.Evaluate(time, key));
        EXPECT_EQ(key.GetVector(), FVector(1, 2, 3));
    }
    list.AddKey(14, Translation(5, 2, -1));
    struct {
        int time;
        FVector expected;
    } const rows[] = {
        {9, {1, 2, 3}}, {10, {1, 2, 3}}, {11, {2, 2, 2}}, {13, {4, 2, 0}}, {14, {5, 2, -1}}, {50, {5, 2, -1}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(list.Evaluate(row.time, key));
        EXPECT_EQ(key.GetVector(), row.expected) << row.time;
        EXPECT_EQ(key.ToMatrix().GetTranslation(), row.expected) << row.time;
    }

    // Times as far apart as can be: the way between them is more than an int holds.
    C3DKeyframable wide;
    wide.AddKey(std::numeric_limits<int>::min(), C3DTypeKey<float>(REAL, 0));
    wide.AddKey(std::numeric_limits<int>::max(), C3DTypeKey<float>(REAL, 4));
    C3DTypeKey<float> real(REAL);
    EXPECT_TRUE(wide.Evaluate(0, real));
    EXPECT_FLOAT_EQ(real.value, 2);
}

TEST(Keys, PlainValuesBetweenTwoKeys)
{
    const CTimeRange range(0, 4);
    C3DTypeKey<int> whole(NUMBER);
    for (int time = 0; time < 4; time++) {
        EXPECT_TRUE(whole.Evaluate(Number(1), Number(2), time, range));
        EXPECT_EQ(whole.value, 1) << "truncated, not rounded";
    }
    whole.Evaluate(Number(-1), Number(-2), 3, range);
    EXPECT_EQ(whole.value, -1) << "towards 0";
    const int largest = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
    whole.Evaluate(Number(largest), Number(largest), 2, range);
    EXPECT_EQ(whole.value, largest) << "float rounds it up beyond int";
    whole.Evaluate(Number(least), Number(least), 0, range);
    EXPECT_EQ(whole.value, least);
    EXPECT_TRUE(whole.Evaluate(Number(0), Number(8), 6, range)) << "no test of the range";
    EXPECT_EQ(whole.value, 12);

    C3DTypeKey<CRGBColor> c(KEY_DIFFUSE_COLOR);
    c.Evaluate(C3DTypeKey<CRGBColor>(KEY_DIFFUSE_COLOR, {0, 100, 200, 255}), C3DTypeKey<CRGBColor>(KEY_DIFFUSE_COLOR, {40, 100, 0, 255}), 1,
               range);
    EXPECT_EQ(c.value.red, 10);
    EXPECT_EQ(c.value.green, 100);
    EXPECT_EQ(c.value.blue, 150);

    // A key of another class under the id asked for: refused, not misread.
    EXPECT_FALSE(c.Evaluate(C3DMatrixKey(KEY_DIFFUSE_COLOR), C3DMatrixKey(KEY_DIFFUSE_COLOR), 1, range));
    EXPECT_FALSE(static_cast<C3DKeyframe&>(c) = C3DMatrixKey(KEY_DIFFUSE_COLOR));
    const C3DMatrixKey matrix(KEY_DIFFUSE_COLOR);
    EXPECT_FALSE(static_cast<const C3DKeyframe&>(matrix) == c);
}

TEST(Keys, RotationsTakeTheShortWay)
{
    C3DRotateKey a(0, {0, 1, 0}), b(static_cast<float>(PI / 2), {0, 0, 2}), result;
    double angle;
    ASSERT_TRUE(result.Evaluate(a, b, 1, {0, 4}));
    FVector axis = result.GetRotation(angle);
    EXPECT_NEAR(angle, PI / 8, 1e-6);
    EXPECT_NEAR(axis.z, 1, 1e-5);
    ExpectNear(result.ToMatrix(), RotationMatrix({0, 0, 1}, PI / 8), 1e-6);

    // From 20 to 340 degrees: by way of 0, not of 180.
    a.SetRotation(20 * PI / 180, {1, 0, 0});
    b.SetRotation(340 * PI / 180, {1, 0, 0});
    ASSERT_TRUE(result.Evaluate(a, b, 1, {0, 4}));
    ExpectNear(result.ToMatrix(), RotationMatrix({1, 0, 0}, 10 * PI / 180), 1e-5);
    ASSERT_TRUE(result.Evaluate(a, b, 2, {0, 4}));
    axis = result.GetRotation(angle);
    EXPECT_LT(angle, 1e-3);
    ExpectNear(result.ToMatrix(), FMatrix(), 1e-3);

    // Equal rotations give that rotation; none gives no angle about x.
    ASSERT_TRUE(result.Evaluate(a, a, 3, {0, 4}));
    ExpectNear(result.ToMatrix(), a.ToMatrix(), 1e-6);
    a.SetRotation(0, {0, 1, 0});
    ASSERT_TRUE(result.Evaluate(a, a, 3, {0, 4}));
    EXPECT_EQ(result.GetRotation(angle), FVector(1, 0, 0));
    EXPECT_EQ(angle, 0);
}

TEST(Keys, MatricesInterpolateByParts)
{
    const FVector axis(1, 2, 2);
    const auto build = [&](const FVector& move, double angle, const FVector& scale) {
        FMatrix t, s;
        t.SetTranslation(move.x, move.y, move.z);
        s.Scale(scale.x, scale.y, scale.z);
        return t * RotationMatrix(axis, angle) * s;
    };
    const C3DMatrixKey a(build({1, 2, 3}, 0.2, {1, 2, 4})), b(build({5, 2, -5}, 1.0, {3, 2, 2}));
    C3DMatrixKey result(KEY_MATRIX);
    for (int time = 0; time <= 4; time++) {
        const float f = static_cast<float>(time) / 4;
        ASSERT_TRUE(result.Evaluate(a, b, time, {0, 4}));
        ExpectNear(result.ToMatrix(), build({1 + 4 * f, 2, 3 - 8 * f}, 0.2 + 0.8 * f, {1 + 2 * f, 2, 4 - 2 * f}), 2e-6);
    }

    // A shear is gone at the key already; a flattened axis does not spoil the others.
    FMatrix sheared, flat;
    sheared.m[0][1] = 1;
    flat.m[1][1] = 0;
    flat.SetTranslation(1, 1, 1);
    ASSERT_TRUE(result.Evaluate(C3DMatrixKey(sheared), C3DMatrixKey(sheared), 0, {0, 1}));
    EXPECT_NEAR(result.ToMatrix().m[0][0] * result.ToMatrix().m[0][1] + result.ToMatrix().m[1][0] * result.ToMatrix().m[1][1], 0, 1e-6)
        << "columns at right angles";
    ASSERT_TRUE(result.Evaluate(C3DMatrixKey(flat), C3DMatrixKey(flat), 0, {0, 1}));
    ExpectNear(result.ToMatrix(), flat, 1e-6);
}

TEST(Keys, CopiesCarryTheCurveButNotTheBag)
{
    for (const unsigned int type : {KEY_TYPE_MATRIX, KEY_TYPE_ROTATE, KEY_TYPE_SCALE, KEY_TYPE_TRANSLATE, KEY_TYPE_VECTOR, KEY_TYPE_INT,
                                    KEY_TYPE_UNSIGNED, KEY_TYPE_FLOAT, KEY_TYPE_DOUBLE, KEY_TYPE_COLOR}) {
        const std::unique_ptr<C3DKeyframe> key(C3DKeyframe::CreateKey(KeyClassID(type, 42), CURVE_TCB));
        ASSERT_TRUE(key);
        EXPECT_EQ(key->GetTypeID(), type);
        EXPECT_EQ(key->GetContentID(), 42u);
        static_cast<C3DTCBCurve*>(const_cast<C3DKeyCurve*>(key->GetKeyCurve()))->values[1] = 3;
        key->GetCustomData().SetInt(1, 2);
        const std::unique_ptr<C3DKeyframe> copy(key->Copy());
        EXPECT_TRUE(*copy == *key);
        ASSERT_NE(copy->GetKeyCurve(), nullptr);
        EXPECT_NE(copy->GetKeyCurve(), key->GetKeyCurve());
        EXPECT_EQ(static_cast<const C3DTCBCurve*>(copy->GetKeyCurve())->values[1], 3);
        EXPECT_TRUE(copy->GetCustomData().IsEmpty());
        copy->SetKeyCurve(nullptr);
        EXPECT_TRUE(*copy = *copy);
        EXPECT_TRUE(*key = *copy);
        EXPECT_EQ(key->GetKeyCurve(), nullptr) << "no curve is copied too";
        EXPECT_FALSE(*key = C3DTypeKey<int>(NUMBER));
    }
    EXPECT_EQ(C3DKeyframe::CreateKey(KeyClassID(FourCC("NONE"), 0), CURVE_TCB), nullptr);
    const C3DKeyCurve* volatile none = nullptr;    // volatile: the compiler need not know
    EXPECT_EQ(none->GetClassID(), 0u);
    EXPECT_EQ(none->Copy(), nullptr);
}

TEST(Keyframable, StreamRoundTripAndDamage)
{
    C3DKeyframable list;
    list.AddKey(3, C3DRotateKey(1.5f, {0, 3, 4}));
    list.AddKey(3, Translation(1, 2, 3));
    list.AddKey(-2, Number(-7));
    C3DScaleKey scale;
    scale.SetVector({2, 0, 5});
    scale.GetCustomData().SetString(9, L"note");
    static_cast<C3DTCBCurve*>(scale.CreateCurve(CURVE_TCB))->values[4] = 12;
    list.AddKey(8, scale);
    list.GetKey(8, KEY_EXACT, KEY_SCALE, nullptr)->GetCustomData() = scale.GetCustomData();
    FMatrix m;
    m.m[1][2] = 7;
    list.AddKey(9, C3DMatrixKey(m));
    list.AddKey(9, C3DTypeKey<CRGBColor>(KEY_AMBIENT_COLOR, {1, 2, 3, 4}));
    list.AddKey(9, C3DTypeKey<double>(KeyClassID(KEY_TYPE_DOUBLE, 1), 0.1));
    const StreamBytes bytes = Stored(list);

    C3DKeyframable back;
    back.AddKey(100, Number(1));    // goes when the others come
    ASSERT_TRUE(Load(back, bytes));
    EXPECT_TRUE(back == list);
    EXPECT_EQ(Stored(back), bytes);
    const C3DKeyframe* loaded = back.GetKey(8, KEY_EXACT, KEY_SCALE, nullptr);
    ASSERT_NE(loaded->GetKeyCurve(), nullptr);
    EXPECT_EQ(static_cast<const C3DTCBCurve*>(loaded->GetKeyCurve())->values[4], 12);
    CXTString<wchar_t> note;
    EXPECT_TRUE(loaded->GetCustomData().GetString(9, note));

    for (std::size_t cut = 0; cut < bytes.size(); cut++) {
        C3DKeyframable part;
        EXPECT_FALSE(Load(part, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(cut)})) << cut;
    }
    // Count, time, class id, class id again: the first key's stand at 0, 4, 8 and 16.
    const auto damaged = [&](std::size_t at, unsigned char value) {
        StreamBytes copy = bytes;
        copy[at] = value;
        return LoadedBy(copy, [](CXArchive& ar) { C3DKeyframable().Serialize(ar); });
    };
    EXPECT_EQ(damaged(15, 'X'), CXArchiveException::ARCHIVE_UNKNOWN_TYPE) << "a type id that is not known";
    EXPECT_EQ(damaged(16, 'X'), CXArchiveException::ARCHIVE_BAD_VALUE) << "two class ids that differ";
    EXPECT_EQ(damaged(3, 0x7F), CXArchiveException::ARCHIVE_BAD_COUNT) << "more keys than the stream can hold";
}
