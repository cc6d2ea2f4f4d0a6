#include "basic/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace lodex {
namespace {

TEST(Numbers, ParsesWhatIsANumber) {
  struct Case {
    const char* text;
    double value;
  };
  for (const Case& row : std::initializer_list<Case>{{"1", 1},
                                                     {" 2.5  ", 2.5},
                                                     {"+3", 3},
                                                     {"-.5", -0.5},
                                                     {"5.", 5},
                                                     {"1e3", 1000},
                                                     {"1E-3", 0.001},
                                                     {"1e-999", 0},
                                                     {"-0", 0}}) {
    EXPECT_EQ(parseNumber(row.text), row.value) << row.text;
  }
  for (const char* text : {"", " ", "-", "+", ".", "1,5", "1 2", "--1", "+-1", "1e", "inf", "nan",
                           "0x10", "1e999", "1\t", "µ", "1.2.3"}) {
    EXPECT_FALSE(parseNumber(text)) << text;
    EXPECT_EQ(numberOf(text), 0) << text;
  }
}

TEST(Numbers, ShowsFifteenDigits) {
  struct Case {
    double value;
    const char* text;
  };
  for (const Case& row : std::initializer_list<Case>{{0, "0"},
                                                     {-0.0, "0"},
                                                     {0.1 + 0.2, "0.3"},
                                                     {-2.5, "-2.5"},
                                                     {123456789012345, "123456789012345"},
                                                     {1e15, "1E+15"},
                                                     {-1e15, "-1E+15"},
                                                     {999999999999999.9, "1E+15"},
                                                     {1e-5, "0.00001"},
                                                     {9.9e-6, "9.9E-06"},
                                                     {1.0 / 3, "0.333333333333333"},
                                                     {1e100, "1E+100"}}) {
    EXPECT_EQ(numberText(row.value), row.text);
  }
  EXPECT_EQ(numberText(0.1f), "0.1");
  EXPECT_EQ(numberText(16777216.0f), "1.677722E+07") << "seven significant digits";
}

TEST(Numbers, ExactTextReadsBackAsTheSameNumber) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const auto bits = random();
    double value;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value)) continue;
    ASSERT_EQ(parseNumber(exactNumberText(value)), value) << exactNumberText(value);
  }
  EXPECT_EQ(exactNumberText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(exactNumberText(2.5), "2.5");
}

TEST(Numbers, Rounding) {
  const double halves[][2] = {{0.5, 0}, {1.5, 2}, {2.5, 2}, {-0.5, 0}, {-1.5, -2}, {2.4, 2}};
  for (const auto& [value, rounded] : halves) EXPECT_EQ(roundHalfEven(value), rounded) << value;
  EXPECT_EQ(parseInteger("2.5"), 2);
  EXPECT_EQ(parseInteger("2147483647"), 2147483647);
  EXPECT_FALSE(parseInteger("2147483648"));
  EXPECT_FALSE(parseInteger("x"));
}

}  // namespace
}  // namespace lodex
