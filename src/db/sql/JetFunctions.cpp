#include <algorithm>
#include <array>
#include <utility>

#include "basic/Text.h"
#include "db/sql/JetParser.h"

namespace lodex {

namespace {

bool isAggregate(std::string_view name) {
  constexpr std::array<std::string_view, 11> kNames{
      "SUM", "AVG", "COUNT", "MIN", "MAX", "FIRST", "LAST", "STDEV", "STDEVP", "VAR", "VARP"};
  return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

}  // namespace

JetExpressions::Expression JetExpressions::aggregate(const std::string& name) {
  sawAggregate_ = true;
  const bool distinct = takeWord("DISTINCT");
  std::string argument = takeMark("*") ? "*" : expressionText();
  const bool further = isMark(",");
  if (further && name != "MIN" && name != "MAX") fail("one value is expected here");
  while (takeMark(",")) argument += ", " + expressionText();
  expectMark(")");
  std::string function = name;
  if (target_ == SqlTarget::Server) {
    // A server keeps no order of records, so that any of the values is as much the first.
    if (name == "FIRST") function = "MIN";
    if (name == "LAST") function = "MAX";
    if (name == "STDEV") function = "STDDEV_SAMP";
    if (name == "STDEVP") function = "STDDEV_POP";
    if (name == "VAR") function = "VAR_SAMP";
    if (name == "VARP") function = "VAR_POP";
  }
  const bool isCell = !cellCondition_.empty();
  // These two see Nulls, so that the records of other columns must not become Nulls.
  const bool seesNulls = function == "FIRST" || function == "LAST";
  if (isCell && !seesNulls) {
    argument =
        "CASE WHEN " + cellCondition_ + " THEN " + (argument == "*" ? "1" : argument) + " END";
  }
  std::string text = function + "(" + (distinct ? "DISTINCT " : "") + argument + ")";
  if (isCell && seesNulls) text += " FILTER (WHERE " + cellCondition_ + ")";
  if (isCell && name == "COUNT") text = "NULLIF(" + text + ", 0)";
  const bool isValue = name == "FIRST" || name == "LAST" || name == "MIN" || name == "MAX";
  return {text, Atom, "", false, false, !isValue};
}

JetExpressions::Expression JetExpressions::call(const std::string& name) {
  const JetToken place = peek();
  expectMark("(");
  if (isAggregate(name)) return aggregate(name);
  if (name == "CAST") {
    std::string text = "CAST(" + expressionText();
    expectWord("AS");
    text += " AS " + expectName("a type");
    while (peek().kind == JetToken::Word) text += " " + take().text;
    if (takeMark("(")) text += "(" + join(arguments(), ", ") + ")";
    expectMark(")");
    return {text + ")"};
  }
  const std::vector<std::string> list = arguments();
  const auto need = [&](bool fits) {
    if (!fits) failAt(sql_, place, name + " does not take this number of values");
  };
  if (name == "IIF") {
    need(list.size() == 3);
    return {"CASE WHEN " + list[0] + " THEN " + list[1] + " ELSE " + list[2] + " END"};
  }
  if (name == "NZ") {
    need(list.size() == 1 || list.size() == 2);
    return {"coalesce(" + list[0] + ", " + (list.size() == 2 ? list[1] : "''") + ")"};
  }
  if (name == "ISNULL") {
    need(list.size() == 1);
    return {"(" + list[0] + ") IS NULL", Compare, "", false, true};
  }
  if (name == "SWITCH") {
    need(!list.empty() && list.size() % 2 == 0);
    std::string text = "CASE";
    for (size_t i = 0; i < list.size(); i += 2) {
      text += " WHEN " + list[i] + " THEN " + list[i + 1];
    }
    return {text + " END"};
  }
  if (name == "CHOOSE") {
    need(list.size() >= 2);
    std::string text = "CASE floor(" + list[0] + ")";
    for (size_t i = 1; i < list.size(); ++i) {
      text += " WHEN " + std::to_string(i) + " THEN " + list[i];
    }
    return {text + " END"};
  }
  if (target_ == SqlTarget::Server) return {serverCall(name, list)};
  return sqliteCall(name, list);
}

// Functions that can be written with others; $1, $2 ... are their values.
JetExpressions::Expression JetExpressions::sqliteCall(const std::string& name,
                                                      std::vector<std::string> list) {
  // Where weeks and years begin, as they do when nothing is said.
  const struct {
    std::string_view name;
    size_t count;
  } kWithWeeks[] = {{"DATEPART", 2}, {"FORMAT", 2}, {"DATEDIFF", 3}, {"WEEKDAY", 1}};
  for (const auto& known : kWithWeeks) {
    while (name == known.name && list.size() > known.count &&
           (list.back() == "0" || list.back() == "1")) {
      list.pop_back();
    }
  }
  static constexpr struct {
    std::string_view name;
    size_t count;
    std::string_view text;
  } kTexts[] = {
      {"DATE", 0, "date('now', 'localtime')"},
      {"NOW", 0, "datetime('now', 'localtime')"},
      {"TIME", 0, "time('now', 'localtime')"},
      {"RND", 0, "(0.5 + random() / 18446744073709551616.0)"},
      {"RND", 1, "(0.5 + random() / 18446744073709551616.0)"},
      {"ATN", 1, "atan($1)"},
      {"CVDATE", 1, "CDate($1)"},
      {"CDEC", 1, "CDbl($1)"},
      {"HEX", 1, "printf('%X', CLng($1))"},
      {"OCT", 1, "printf('%o', CLng($1))"},
      {"STRING", 2, "printf('%.*c', $1, $2)"},
      {"STRCOMP", 3, "StrComp($1, $2)"},
      {"INSTR", 4, "InStr($1, $2, $3)"},
      {"MONTHNAME", 1, "Format(DateSerial(2000, $1, 1), 'mmmm')"},
      {"WEEKDAYNAME", 1, "Format(DateSerial(2000, 1, 1 + ($1)), 'dddd')"},
      {"WEEKDAY", 2, "((Weekday($1) + 7 - ($2)) % 7 + 1)"},
      {"TIMESERIAL", 3, "time(($1) * 3600 + ($2) * 60 + ($3), 'unixepoch')"},
      {"TIMEVALUE", 1, "time($1)"},
      {"FORMATPERCENT", 1, "Format($1, '0.00%')"},
      {"FORMATNUMBER", 1, "Format($1, '#,##0.00')"},
      {"LEFT", 2, "[LEFT]($1, $2)"},
      {"RIGHT", 2, "[RIGHT]($1, $2)"},
  };
  for (const auto& known : kTexts) {
    if (name != known.name || list.size() != known.count) continue;
    std::string text;
    for (size_t at = 0; at < known.text.size(); ++at) {
      if (known.text[at] == '$') {
        text += list[static_cast<size_t>(known.text[++at] - '1')];
      } else {
        text += known.text[at];
      }
    }
    const bool isDate = name == "DATE" || name == "NOW" || name == "TIME";
    return {text, Atom, "", false, false, false, isDate};
  }
  return {name + "(" + join(list, ", ") + ")"};
}

std::string JetExpressions::serverCall(const std::string& name, std::vector<std::string> list) {
  const struct {
    std::string_view jet, server;
  } kSameArguments[] = {{"UCASE", "UPPER"}, {"LCASE", "LOWER"}, {"LEN", "LENGTH"},
                        {"MID", "SUBSTR"},  {"INT", "FLOOR"},   {"FIX", "TRUNC"},
                        {"SQR", "SQRT"},    {"LOG", "LN"},      {"SGN", "SIGN"}};
  for (const auto& known : kSameArguments) {
    if (name == known.jet) return std::string(known.server) + "(" + join(list, ", ") + ")";
  }
  const struct {
    std::string_view jet, type;
  } kCasts[] = {{"CDBL", "DOUBLE PRECISION"}, {"CSNG", "REAL"},           {"CLNG", "INTEGER"},
                {"CINT", "SMALLINT"},         {"CCUR", "NUMERIC(19, 4)"}, {"CSTR", "VARCHAR(255)"},
                {"CDATE", "TIMESTAMP"}};
  for (const auto& known : kCasts) {
    if (name == known.jet && list.size() == 1) {
      return "CAST(" + list[0] + " AS " + std::string(known.type) + ")";
    }
  }
  const struct {
    std::string_view jet, part;
  } kParts[] = {{"YEAR", "YEAR"}, {"MONTH", "MONTH"},   {"DAY", "DAY"},
                {"HOUR", "HOUR"}, {"MINUTE", "MINUTE"}, {"SECOND", "SECOND"}};
  for (const auto& known : kParts) {
    if (name == known.jet && list.size() == 1) {
      return "EXTRACT(" + std::string(known.part) + " FROM " + list[0] + ")";
    }
  }
  if (name == "LEFT" && list.size() == 2) return "SUBSTR(" + list[0] + ", 1, " + list[1] + ")";
  if (list.empty() && name == "DATE") return "CURRENT_DATE";
  if (list.empty() && name == "NOW") return "CURRENT_TIMESTAMP";
  return name + "(" + join(list, ", ") + ")";
}

}  // namespace lodex
