#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <string>

namespace {

template <typename T>
std::string text_of(T const& value) {
    return std::string(CoreString().append(value).get_view());
}

struct CommaForPoint : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

}  // namespace

TEST(CoreString, WritesNumbersInTheirShortestForm) {
    struct Row {
        std::string text;
        char const* expected;
    };
    std::locale const old = std::locale::global(std::locale(std::locale(), new CommaForPoint));
    Row const rows[] = {
        {text_of(30.0f), "30"},
        {text_of(0.1f), "0.1"},
        {text_of(static_cast<double>(0.1f)), "0.10000000149011612"},
        {text_of(1.0f / 3.0f), "0.33333334"},
        {text_of(1e-45f), "1e-45"},
        {text_of(-0.0f), "-0"},
        {text_of(-std::numeric_limits<double>::infinity()), "-inf"},
        {text_of(-std::nan("")), "nan"},
        {text_of(std::numeric_limits<long long>::min()), "-9223372036854775808"},
        {text_of(4294967295u), "4294967295"},
        {text_of(static_cast<char const*>(nullptr)), ""},
    };
    std::locale::global(old);
    for (Row const& row : rows) {
        EXPECT_EQ(row.text, row.expected);
    }
}
