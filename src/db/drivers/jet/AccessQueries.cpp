#include "db/drivers/jet/AccessQueries.h"

#include <algorithm>
#include <set>

#include "basic/Error.h"
#include "basic/Text.h"

namespace lodex {

namespace {

enum Attribute {
  kType = 1,
  kParameter = 2,
  kFlags = 3,
  kTable = 5,
  kColumn = 6,
  kJoin = 7,
  kWhere = 8,
  kGroup = 9,
  kHaving = 10,
  kOrder = 11
};
enum QueryType { kSelect = 1, kCrosstab = 6, kUnion = 9 };
enum QueryFlags { kAllColumns = 1, kDistinct = 2, kDistinctRow = 8, kTop = 16, kPercent = 32 };

std::string bracketed(const std::string& name) {
  return name.starts_with("[") ? name : "[" + name + "]";
}

bool isWordLetter(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
         (letter >= '0' && letter <= '9') || letter == '_' || (letter & 0x80);
}

// Access also writes "= Yes" and "<> No" for truth values. Elsewhere these words may be fields, and
// between quotes and brackets anything.
std::string withTruthWords(const std::string& expression) {
  std::string result;
  std::string before;  // the two pieces before this one, without blanks
  for (size_t at = 0; at < expression.size();) {
    size_t end = at + 1;
    const char first = expression[at];
    if (first == '\'' || first == '"' || first == '[') {
      end = std::min(expression.find(first == '[' ? ']' : first, end), expression.size() - 1) + 1;
    } else if (isWordLetter(first)) {
      while (end < expression.size() && isWordLetter(expression[end])) ++end;
    }
    const std::string piece = expression.substr(at, end - at);
    const bool isPrefix =
        end < expression.size() && (expression[end] == '.' || expression[end] == '!');
    const bool compared = before.ends_with("=") || before.ends_with("<>");
    if (compared && !isPrefix && equalsNoCase(piece, "Yes")) {
      result += "True";
    } else if (compared && !isPrefix && equalsNoCase(piece, "No")) {
      result += "False";
    } else {
      result += piece;
    }
    if (piece != " ") before = (before.empty() ? "" : before.substr(before.size() - 1)) + piece;
    at = end;
  }
  return result;
}

// A query's parts by attribute, and the clauses made of them.
class Parts {
 public:
  explicit Parts(std::vector<AccessQueryPart> parts) : parts_(std::move(parts)) {
    std::stable_sort(parts_.begin(), parts_.end(),
                     [](const auto& a, const auto& b) { return a.order < b.order; });
    for (AccessQueryPart& part : parts_) part.expression = withTruthWords(part.expression);
  }

  std::vector<const AccessQueryPart*> all(int attribute) const {
    std::vector<const AccessQueryPart*> found;
    for (const auto& part : parts_) {
      if (part.attribute == attribute) found.push_back(&part);
    }
    return found;
  }
  const AccessQueryPart* first(int attribute) const {
    const auto found = all(attribute);
    return found.empty() ? nullptr : found.front();
  }
  int flag(int attribute) const {
    const auto* part = first(attribute);
    return part ? part->flag : 0;
  }
  std::string clause(const std::string& word, int attribute) const {
    const auto* part = first(attribute);
    return part && !part->expression.empty() ? " " + word + " " + part->expression : "";
  }
  std::string list(const std::string& word, int attribute) const {
    std::string text;
    for (const auto* part : all(attribute)) {
      text += (text.empty() ? " " + word + " " : ", ") + part->expression;
      if (equalsNoCase(part->name1, "D")) text += " DESC";
    }
    return text;
  }

 private:
  std::vector<AccessQueryPart> parts_;
};

struct Source {
  std::string text;
  std::set<std::string> names;  // of its tables, in upper case
};

Source sourceOf(const AccessQueryPart& part) {
  Source source;
  source.text = part.name1.empty() ? "(" + part.expression + ")" : bracketed(part.name1);
  if (!part.name2.empty()) source.text += " AS " + bracketed(part.name2);
  source.names.insert(toUpper(part.name2.empty() ? part.name1 : part.name2));
  return source;
}

// Tables that are joined grow together, in the order of the joins; several conditions between the
// same two tables belong to one join.
std::string fromClause(const Parts& parts) {
  std::vector<Source> sources;
  for (const auto* part : parts.all(kTable)) sources.push_back(sourceOf(*part));
  const auto joins = parts.all(kJoin);
  std::set<const AccessQueryPart*> done;
  for (const auto* join : joins) {
    if (!done.insert(join).second) continue;
    const auto holding = [&](const std::string& name) {
      return std::find_if(sources.begin(), sources.end(),
                          [&](const auto& one) { return one.names.contains(toUpper(name)); });
    };
    const auto left = holding(join->name1);
    const auto right = holding(join->name2);
    if (left == sources.end() || right == sources.end() || left == right) {
      throw Error("its joins do not fit its tables");
    }
    std::string condition = "(" + join->expression + ")";
    for (const auto* other : joins) {
      if (equalsNoCase(other->name1, join->name1) && equalsNoCase(other->name2, join->name2) &&
          done.insert(other).second) {
        condition += " AND (" + other->expression + ")";
      }
    }
    const std::string kind = join->flag == 2 ? "LEFT" : join->flag == 3 ? "RIGHT" : "INNER";
    const auto side = [](const Source& source) {
      return source.names.size() > 1 ? "(" + source.text + ")" : source.text;
    };
    left->text = side(*left) + " " + kind + " JOIN " + side(*right) + " ON " + condition;
    left->names.insert(right->names.begin(), right->names.end());
    sources.erase(right);
  }
  std::string text;
  for (const Source& source : sources) text += (text.empty() ? " FROM " : ", ") + source.text;
  return text;
}

std::string columnText(const AccessQueryPart& part) {
  return part.expression + (part.name1.empty() ? "" : " AS " + bracketed(part.name1));
}

std::string selectList(const Parts& parts) {
  const int flags = parts.flag(kFlags);
  std::string text = "SELECT ";
  if (flags & kDistinct) text += "DISTINCT ";
  if (flags & kDistinctRow) text += "DISTINCTROW ";
  if (flags & kTop) {
    text += "TOP " + parts.first(kFlags)->name1 + (flags & kPercent ? " PERCENT " : " ");
  }
  std::string columns;
  for (const auto* part : parts.all(kColumn)) {
    columns += (columns.empty() ? "" : ", ") + columnText(*part);
  }
  if (columns.empty() || flags & kAllColumns) columns += columns.empty() ? "*" : ", *";
  return text + columns;
}

std::string selectText(const Parts& parts) {
  return selectList(parts) + fromClause(parts) + parts.clause("WHERE", kWhere) +
         parts.list("GROUP BY", kGroup) + parts.clause("HAVING", kHaving) +
         parts.list("ORDER BY", kOrder);
}

std::string unionText(const Parts& parts) {
  const std::string word = parts.flag(kFlags) & kDistinct ? " UNION " : " UNION ALL ";
  std::string text;
  for (const auto* part : parts.all(kTable)) {
    std::string piece(trimWhite(part->expression));
    while (piece.ends_with(";"))
      piece = trimWhite(std::string_view(piece).substr(0, piece.size() - 1));
    text += (text.empty() ? "" : word) + piece;
  }
  return text + parts.list("ORDER BY", kOrder);
}

// Columns marked 1 become headings, those marked 2 the rows, the unmarked one the value.
std::string crosstabText(const Parts& parts) {
  std::string value, rows, pivot;
  for (const auto* part : parts.all(kColumn)) {
    if (part->flag & 1) {
      pivot = part->expression;
    } else if (part->flag & 2) {
      rows += (rows.empty() ? "" : ", ") + columnText(*part);
    } else if (value.empty()) {
      value = columnText(*part);
    }
  }
  std::string groups;
  for (const auto* part : parts.all(kGroup)) {
    if (!(part->flag & 1)) groups += (groups.empty() ? " GROUP BY " : ", ") + part->expression;
  }
  return "TRANSFORM " + value + " SELECT " + rows + fromClause(parts) +
         parts.clause("WHERE", kWhere) + groups + parts.list("ORDER BY", kOrder) + " PIVOT " +
         pivot;
}

std::string textOf(const Parts& parts, int type) {
  switch (type) {
    case kSelect:
      return selectText(parts);
    case kUnion:
      return unionText(parts);
    case kCrosstab:
      return crosstabText(parts);
    default:
      throw Error("it changes data or belongs to another database");
  }
}

}  // namespace

AccessQuery buildAccessQuery(const std::string& name, std::vector<AccessQueryPart> given) {
  const Parts parts(std::move(given));
  AccessQuery query{name, {}, {}};
  try {
    query.sql = textOf(parts, parts.first(kType) ? parts.flag(kType) : kSelect);
    if (!parts.all(kParameter).empty()) query.obstacle = "it asks for parameters";
  } catch (const Error& error) {
    query.obstacle = error.what();
  }
  return query;
}

}  // namespace lodex
