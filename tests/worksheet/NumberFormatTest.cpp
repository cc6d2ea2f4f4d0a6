#include "worksheet/NumberFormat.h"

#include <gtest/gtest.h>

namespace lodex {
namespace {

struct Case {
  const char* name;
  double number;
  const char* format;
  const char* shown;
};

// Names a failing row; GoogleTest prints it.
void check(const Case& row) {
  SCOPED_TRACE(row.name);
  EXPECT_EQ(formattedText(Value(row.number), row.format), row.shown)
      << row.number << " under " << row.format;
}

TEST(NumberFormat, Digits) {
  const Case cases[] = {
      {"general", 2.5, "General", "2.5"},
      {"empty format", 2.5, "", "2.5"},
      {"rounds half away", 0.125, "0.00", "0.13"},
      {"rounds what a person sees, not the binary value", 1.005, "0.00", "1.01"},
      {"rounds half away below zero", -2.5, "0", "-3"},
      {"carries through nines", 9.996, "0.00", "10.00"},
      {"rounds up from nothing", 0.06, "0.0", "0.1"},
      {"rounds down to nothing", 0.04, "0.0", "0.0"},
      {"half of the last digit alone", 0.5, "0", "1"},
      {"optional whole digit", 0.5, "#.00", ".50"},
      {"optional decimals", 2.5, "0.0##", "2.5"},
      {"point stays without decimals", 2, "0.##", "2."},
      {"leading zeros", 7, "000", "007"},
      {"blanks for missing digits", 5, "??0.0?", "  5.0 "},
      {"groups", 1234567.891, "#,##0.00", "1,234,567.89"},
      {"groups below a thousand", 999, "#,##0", "999"},
      {"zeros are grouped too", 12, "0,000", "0,012"},
      {"thousands", 1234567, "0.0,", "1234.6"},
      {"millions", 1234567, "#,##0.00,,", "1.23"},
      {"percent", 0.1234, "0.0%", "12.3%"},
      {"negative percent", -0.5, "0%", "-50%"},
      {"large number keeps 15 digits", 1e20, "0", "100000000000000000000"},
      {"tiny number", 1e-300, "0.00", "0.00"},
      {"zero with no digits to show", 0, "#", ""},
      {"literals between digits", 123456, "000-000", "123-456"},
      {"quoted literal", 3, "0.0\" ppm\"", "3.0 ppm"},
      {"escaped literal", 3, "0\\g\\/\\t", "3g/t"},
      {"character of several bytes", 3, "0µ", "3µ"},
      {"skipped and repeated characters", 3, "_(* 0_)", " 3 "},
      {"currency with language", 3, "[$€-40B] 0.00", "€ 3.00"},
      {"general with text", 2.5, "General\" %\"", "2.5 %"},
      {"only literals", 5, "\"high\"", "high"},
  };
  for (const Case& row : cases) check(row);
}

TEST(NumberFormat, SectionsAndConditions) {
  const Case cases[] = {
      {"negative section drops the sign", -2, "0.0;(0.0)", "(2.0)"},
      {"zero section", 0, "0.0;-0.0;\"none\"", "none"},
      {"zero without a section of its own", 0, "0.0;(0.0)", "0.0"},
      {"empty section hides", -1, "0;", ""},
      {"all hidden", 1, ";;;", ""},
      {"colours do not show", -1, "0;[Red]-0", "-1"},
      {"condition holds", 150, "[>=100]0;0.0", "150"},
      {"condition fails", 99, "[>=100]0;0.0", "99.0"},
      {"two conditions and a rest", 5, "[<1]\"low\";[>10]\"high\";0.0", "5.0"},
      {"negative under a rest section", -5, "[>=100]0;0.0", "-5.0"},
      {"text section leaves numbers alone", 5, "0.0;@", "5.0"},
      {"number under a text format", 12.5, "@", "12.5"},
  };
  for (const Case& row : cases) check(row);
}

TEST(NumberFormat, ScientificAndFractions) {
  const Case cases[] = {
      {"scientific", 12345, "0.00E+00", "1.23E+04"},
      {"negative power", 0.00012, "0.0E+00", "1.2E-04"},
      {"no plus", 12345, "0.0E-0", "1.2E4"},
      {"carry into the power", 99999, "0.00E+00", "1.00E+05"},
      {"zero", 0, "0.00E+00", "0.00E+00"},
      {"small letter of the power", 12345, "0.0e+0", "1.2e+4"},
      {"engineering", 123456, "##0.0E+0", "123.5E+3"},
      {"engineering carry", 999960, "##0.0E+0", "1.0E+6"},
      {"engineering negative power", 0.0123, "##0.0E+0", "12.3E-3"},
      {"one digit fraction", 2.333, "# ?/?", "2 1/3"},
      {"two digit fraction", 3.14159265,
       "# ?"
       "?/?"
       "?",
       "3  1/7 "},
      {"up to one digit", 123.456, "# ?/?", "123 1/2"},
      {"up to three digits", 123.456,
       "# ??"
       "?/??"
       "?",
       "123  57/125"},
      {"fixed denominator", 1.3, "# ?/8", "1 2/8"},
      {"no whole part", 0.5, "# ?/?", " 1/2"},
      {"whole number leaves blanks", 2, "# ?/?", "2    "},
      {"improper", 2.5, "?/?", "5/2"},
      {"fraction that rounds to one", 1.99, "# ?/?", "2    "},
      {"negative fraction", -1.5, "# ?/?", "-1 1/2"},
  };
  for (const Case& row : cases) check(row);
}

TEST(NumberFormat, DatesAndTimes) {
  const Case cases[] = {
      {"iso date", 45360, "yyyy-mm-dd", "2024-03-09"},
      {"short forms", 45360, "d.m.yy", "9.3.24"},
      {"names", 45360, "dddd d mmmm yyyy", "Saturday 9 March 2024"},
      {"short names", 45360, "ddd mmm", "Sat Mar"},
      {"first letter of the month", 45360, "mmmmm", "M"},
      {"first day", 1, "yyyy-mm-dd", "1900-01-01"},
      {"the day that never was", 60, "yyyy-mm-dd", "1900-02-29"},
      {"the day after it", 61, "yyyy-mm-dd", "1900-03-01"},
      {"last day", 2958465, "yyyy-mm-dd", "9999-12-31"},
      {"after the last day", 2958466, "yyyy-mm-dd", "2958466"},
      {"no dates below zero", -1, "yyyy-mm-dd", "-1"},
      {"minutes after hours", 0.5625, "h:mm", "13:30"},
      {"minutes before seconds", 0.5625, "mm:ss", "30:00"},
      {"minutes and months together", 45360.5625, "mm/dd hh:mm", "03/09 13:30"},
      {"half days", 0.5625, "h:mm AM/PM", "1:30 PM"},
      {"midnight", 0, "h AM/PM", "12 AM"},
      {"one letter half days", 0.25, "h A/P", "6 A"},
      {"hours over a day", 1.5, "[h]:mm", "36:00"},
      {"elapsed minutes", 0.5, "[mm]", "720"},
      {"parts of seconds", 0.5000014, "h:mm:ss.00", "12:00:00.12"},
      {"noise does not lose a minute", 0.5208333333333, "h:mm", "12:30"},
      {"language mark", 45360, "[$-409]d-mmm-yy", "9-Mar-24"},
  };
  for (const Case& row : cases) check(row);
  EXPECT_EQ(formattedText(Value(0.0), "yyyy-mm-dd", true), "1904-01-01");
  EXPECT_EQ(formattedText(Value(-0.0625), "h:mm", true), "-1:30");
}

TEST(NumberFormat, OtherValues) {
  EXPECT_EQ(formattedText(Value::text("Fe"), "0.00"), "Fe");
  EXPECT_EQ(formattedText(Value::text("Fe"), "@\" %\""), "Fe %");
  EXPECT_EQ(formattedText(Value::text("Fe"), "0;-0;0;\"<\"@\">\""), "<Fe>");
  EXPECT_EQ(formattedText(Value::boolean(true), "0.00"), "TRUE");
  EXPECT_EQ(formattedText(Value::error(ErrorCode::NotAvailable), "0.00"), "#N/A");
  EXPECT_EQ(formattedText(Value(), "0.00"), "");
}

TEST(NumberFormat, WhatCannotBeUnderstoodShowsAsGeneral) {
  for (const char* format : {"\"open", "[>x]0", "[", "E+0", "hello", "0 kg", "\\"}) {
    SCOPED_TRACE(format);
    const std::string shown = formattedText(Value(2.5), format);
    EXPECT_TRUE(shown == "2.5" || format == std::string("\\")) << shown;
  }
}

TEST(NumberFormat, KnowsDates) {
  for (const char* format : {"yyyy", "h:mm", "[h]:mm:ss", "0.0;m/d/yy"}) {
    EXPECT_TRUE(isDateFormat(format)) << format;
  }
  for (const char* format : {"General", "", "0.00", "@", "[Red]0", "\"day\" 0", "[$USD] 0"}) {
    EXPECT_FALSE(isDateFormat(format)) << format;
  }
}

TEST(NumberFormat, TellsTheColourOfANumber) {
  struct Case {
    double number;
    const char* format;
    int color;  // -1: none
  };
  for (const Case& row : std::initializer_list<Case>{{-1, "0;[Red]-0", 0xFF0000},
                                                     {1, "0;[Red]-0", -1},
                                                     {1, "[blue]0", 0x0000FF},
                                                     {5, "[>3][Green]0;[Magenta]0", 0x00FF00},
                                                     {2, "[>3][Green]0;[Magenta]0", 0xFF00FF},
                                                     {1, "[Color 5]0", -1},
                                                     {1, "General", -1}}) {
    const auto color = formattedColor(Value(row.number), row.format);
    EXPECT_EQ(color.value_or(-1), row.color) << row.number << " as " << row.format;
  }
  EXPECT_FALSE(formattedColor(Value::text("x"), "[Red]0"));
}

}  // namespace
}  // namespace lodex
