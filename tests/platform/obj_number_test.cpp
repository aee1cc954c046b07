#include <tests/platform/obj_testing.h>

#include <bit>
#include <charconv>
#include <clocale>
#include <cstdio>
#include <limits>
#include <random>

namespace {

float parse(std::string const& text) {
    float value = 0.0f;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), value);
    EXPECT_EQ(result.ptr, text.data() + text.size()) << text;
    return value;
}

std::string print(char const* format, double const& value) {
    char text[128];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

float get_random_float(std::mt19937& random) {
    for (;;) {
        float const value = std::bit_cast<float>(static_cast<unsigned int>(random()));
        if (value - value == 0.0f) {
            return value;
        }
    }
}

// Numbers in the forms that programs write, and at and around the middle between two floats, where
// rounding twice goes wrong.
std::string make_number(std::mt19937& random) {
    float const any = get_random_float(random);
    std::uniform_real_distribution<double> usual(-1000.0, 1000.0);
    char const* const formats[] = {"%.6f", "%g", "%.9g", "%.17g", "%.4f", "%.0f", "%.12f", "%e"};
    unsigned int const kind = random() % 16;
    if (kind < 8) {
        return print(formats[kind], usual(random));
    }
    if (kind < 10) {
        return print(kind == 8 ? "%.9g" : "%.40g", static_cast<double>(any));
    }
    // As the plain reader takes them: up to 16 digits, and near a middle.
    int const exponent = static_cast<int>(random() % 40) - 20;
    float const middle_sized =
        std::ldexp(1.0f + static_cast<float>(random() % 8388608) * 0x1p-23f, exponent);
    double const middle = static_cast<double>(middle_sized) * (1.0 + 0x1p-25);
    float const next = std::nextafterf(middle_sized, std::numeric_limits<float>::infinity());
    double const half_way = (static_cast<double>(middle_sized) + static_cast<double>(next)) / 2.0;
    switch (kind) {
    case 10:
        return print("%.16g", half_way);
    case 11:
        return print("%.15g", half_way);
    case 12:
        return print("%.40g", half_way);
    case 13:
        return print("%.60g", half_way) + "1";
    case 14:
        return print("%.9f", middle);
    }
    return std::to_string(16777216u + random() % 100000000u);
}

TEST(ObjNumber, IsRoundedAsTheStandardLibraryRounds) {
    std::mt19937 random(1);
    std::vector<std::string> words;
    std::string text;
    for (unsigned int i = 0; i < 120000; ++i) {
        std::string word;
        do {
            word = make_number(random);
        } while (word.find("e+38") != std::string::npos);  // an end that other tests reach
        words.push_back(word);
        text += (i % 3 == 0 ? "v " : " ") + word + (i % 3 == 2 ? "\n" : "");
    }
    // A locale with a decimal comma must not matter; where there is none, the default serves.
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    ObjOutcome const outcome = read_obj(text);
    std::setlocale(LC_ALL, "C");
    ASSERT_EQ(outcome.mesh.positions.get_count(), words.size() / 3);
    float const* const values = &outcome.mesh.positions[0].x;
    for (std::size_t i = 0; i < words.size(); ++i) {
        ASSERT_EQ(std::bit_cast<unsigned int>(values[i]),
                  std::bit_cast<unsigned int>(parse(words[i])))
            << words[i];
    }
}

}  // namespace
