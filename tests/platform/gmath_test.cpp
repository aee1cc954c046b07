#include <platform/qz_gmath.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>

namespace {

using Converter = GMathHalfFloatConverter;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr double nan_time = std::numeric_limits<double>::quiet_NaN();

}  // namespace

// Fused, the sum of a product would come out as 0x1.0008p-11.
TEST(GMath, DoesNotFuseMultiplyAndAdd) {
    float volatile hidden = 1.0f + 0x1p-12f;
    float const a = hidden;
    GMathVec3<float> const v(a, -1.0f, 0.0f);
    GMathVec3<float> const w(a, 1.0f, 0.0f);
    EXPECT_EQ(gmath_dot(v, w), 0x1p-11f);
    EXPECT_EQ(gmath_cross(GMathVec3<float>(0, a, 1), GMathVec3<float>(0, 1, a)).x, 0x1p-11f);
}

TEST(GMath, DividesVectorsByTheirLength) {
    using Vec = GMathVec3<float>;
    EXPECT_EQ(gmath_unit(Vec(3, 0, 4)), Vec(3.0f / 5.0f, 0, 4.0f / 5.0f));
    EXPECT_EQ(gmath_unit(Vec(1e-30f, 0, 0)), Vec(0, 0, 0));  // its square is 0
    EXPECT_TRUE(std::isnan(gmath_unit(Vec(infinity, 0, 0)).x));
}

TEST(GMathHalfFloatConverter, RoundsNormalisedHalves) {
    struct Row {
        float value;
        unsigned int bits;
    };
    constexpr float step = 1.0f / 32767.0f;
    Row const rows[] = {
        {0.0f, 0x0000},
        {-0.0f, 0x8000},
        {1.0f, 0x7FFF},
        {-1.0f, 0xFFFF},
        {0.5f, 0x4000},
        {-0.5f, 0xC000},  // 16383.5, away from 0
        {1.5f * step, 2},
        {0.49f * step, 0},
        {-0.49f * step, 0x8000},
        {1.00001f, 0x7FFF},
        {-infinity, 0xFFFF},
        {1e30f, 0x7FFF},
        {std::nanf(""), 0},
        {-std::nanf(""), 0},
        {0x1p-149f, 0},
        {32766.5f * step, 0x7FFF},
        {32766.49f * step, 0x7FFE},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(Converter::convert_float_to_normalized_half(row.value), row.bits) << row.value;
    }
    std::mt19937 random(1);
    for (unsigned int i = 0; i < 50000; ++i) {
        float values[4] = {rows[i % std::size(rows)].value};  // side by side, the same
        unsigned int halves[4];
        for (unsigned int k = 1; k < 4; ++k) {
            auto const number = static_cast<unsigned int>(random());
            values[k] =
                k == 1 ? std::bit_cast<float>(number) : static_cast<float>(number) / 0x1p31f - 1.0f;
        }
        Converter::convert_floats_to_normalized_halves(gmath_lanes(values), halves);
        for (unsigned int k = 0; k < 4; ++k) {
            ASSERT_EQ(halves[k], Converter::convert_float_to_normalized_half(values[k]));
        }
    }
}

TEST(GMathHalfFloatConverter, TabulatesBothFormats) {
    for (unsigned int i = 0; i < 65536; ++i) {
        auto const bits = static_cast<unsigned short>(i);
        float const magnitude = static_cast<float>(i & 0x7FFF) / 32767.0f;
        float const expected = i < 0x8000 ? magnitude : -magnitude;
        ASSERT_EQ(std::bit_cast<unsigned int>(Converter::s_conv_ntof[bits]),
                  std::bit_cast<unsigned int>(expected))
            << i;
        ASSERT_EQ(Converter::convert_float_to_normalized_half(expected), i);

        // A half by its definition: a fraction of 11 bits and a power of two.
        int const exponent = static_cast<int>(i >> 10 & 31);
        float const fraction = static_cast<float>((i & 1023) + (exponent != 0 ? 1024 : 0));
        float half = std::ldexp(fraction, std::max(exponent, 1) - 25);
        if (exponent == 31) {
            half = (i & 1023) != 0 ? std::nanf("") : infinity;
        }
        float const read = Converter::s_conv_htof[bits];
        ASSERT_EQ(std::isnan(read), std::isnan(half)) << i;
        ASSERT_TRUE(std::isnan(half) || read == (i < 0x8000 ? half : -half)) << i;
        ASSERT_EQ(std::signbit(read), i >= 0x8000) << i;
    }
}

TEST(GMathTimeSampling, FindsTheSpanOfATime) {
    struct Row {
        CoreBasicArray<double> times;
        double time;
        unsigned int index;
        double factor;
    };
    double const values[] = {-1.0, 0.0, 0.0, 0.5, 2.0, -1.7e308, 1.7e308};
    CoreBasicArray<double> const many(values, 5), far(values + 5, 2);
    CoreBasicArray<double> const one(values, 1);
    CoreBasicArray<double> const equal(values + 1, 2);
    Row const rows[] = {
        {many, -2.0, 0, 0.0},     {many, -1.0, 0, 0.0}, {many, -0.75, 0, 0.25},
        {many, 0.0, 2, 0.0},      {many, 0.25, 2, 0.5}, {many, 0.5, 3, 0.0},
        {many, 1.25, 3, 0.5},     {many, 2.0, 3, 1.0},  {many, 9.0, 3, 1.0},
        {many, nan_time, 0, 0.0}, {one, -3.0, 0, 0.0},  {one, -1.0, 0, 0.0},
        {one, 5.0, 0, 0.0},       {{}, 1.0, 0, 0.0},    {equal, -1.0, 0, 0.0},
        {equal, 0.0, 0, 0.0},     {equal, 1.0, 0, 1.0}, {far, 0.0, 0, 0.5},
    };
    for (Row const& row : rows) {
        unsigned int index = 99;
        double factor = 99.0;
        GMathTimeSampling(row.times).get_span(row.time, index, factor);
        EXPECT_EQ(index, row.index) << row.time;
        EXPECT_EQ(factor, row.factor) << row.time;
    }
}

TEST(GMathLanes, LieWhereverFloatsLie) {
    for (unsigned int k = 0; k < 4; ++k) {
        unsigned int const volatile first = k;  // unknown to compilers
        alignas(16) float numbers[8] = {0, 1, 2, 3, 4, 5, 6, 7};
        float* const four = numbers + first;
        gmath_store(gmath_lanes(four) + 1.0f, four);
        for (unsigned int i = 0; i < 8; ++i) {
            EXPECT_EQ(numbers[i], static_cast<float>(i - k < 4 ? i + 1 : i));
        }
    }
}
