#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "db/sql/JetSql.h"
#include "db/sql/JetTokens.h"

namespace lodex {

/// Walks over the tokens of a statement; the base of the parsers of expressions and statements.
class JetReader {
 public:
  JetReader(std::string_view sql, SqlTarget target, ValueNames valueNames)
      : sql_(sql), target_(target), valueNames_(valueNames), tokens_(splitJetTokens(sql)) {}

 protected:
  const JetToken& peek(size_t ahead = 0) const;
  const JetToken& take();
  bool isWord(std::string_view word, size_t ahead = 0) const;
  bool isMark(std::string_view mark, size_t ahead = 0) const;
  bool takeWord(std::string_view word);
  /// All of the words or none.
  bool takeWords(std::initializer_list<std::string_view> words);
  bool takeMark(std::string_view mark);
  void expectWord(std::string_view word);
  void expectMark(std::string_view mark);
  /// A name where only a name is possible: a plain word, or anything in brackets or quotes.
  std::string expectName(std::string_view what);
  bool isName(size_t ahead = 0) const;
  /// A plain word that cannot be a name, such as FROM.
  bool isReserved(size_t ahead = 0) const;
  std::string quoted(std::string_view name) const { return targetName(name, target_); }
  [[noreturn]] void fail(std::string_view reason) const { failAt(sql_, peek(), reason); }

  std::string_view sql_;
  SqlTarget target_;
  ValueNames valueNames_;
  size_t at_ = 0;

 private:
  std::vector<JetToken> tokens_;
};

/// Reads expressions and turns them into the target's.
class JetExpressions : public JetReader {
 public:
  using JetReader::JetReader;
  virtual ~JetExpressions() = default;

 protected:
  /// How strongly an expression holds together, so that brackets are put where they are needed.
  enum Level { Or, And, Not, Compare, Join, Sum, Mod, IntegerDivision, Product, Sign, Power, Atom };

  struct Expression {
    std::string text;
    Level level = Atom;
    std::string column = {};  ///< the name of a plain field, "" for all else
    bool truth = false;       ///< the word True or False
    bool isCondition = false;
    bool isNumber = false;  ///< certain to be one
    bool isDate = false;    ///< certain to be one
  };

  Expression expression();
  std::string expressionText() { return expression().text; }
  /// An expression without comparisons, as before IN.
  Expression joined();
  /// The expressions up to a closing bracket, which is taken too.
  std::vector<std::string> arguments();

  /// A query up to its end, for an expression that holds one.
  virtual std::string subquery() = 0;

  /// The value of the SELECT being read that has this name already; "" for none.
  virtual std::string valueNamed(std::string_view name) const = 0;

  /// A "?" and a declared parameter in the target's form.
  std::string parameter(int number) const;

  bool sawAggregate_ = false;
  /// Of TRANSFORM: what aggregates add up counts only where this holds; "" outside.
  std::string cellCondition_;
  int parameters_ = 0;
  /// Sums are written as they are, for an engine without the functions of the dialect.
  bool plainSums_ = false;
  /// Names declared by PARAMETERS, the first being number 1.
  std::vector<std::string> parameterNames_;

 private:
  Expression conjunction();
  Expression negation();
  Expression comparison();
  Expression sum();
  Expression remainder();
  Expression integerQuotient();
  Expression product();
  Expression sign();
  Expression power();
  Expression atom();
  Expression nameOrCall();
  Expression call(const std::string& name);
  Expression aggregate(const std::string& name);
  Expression caseWhen();
  Expression like(Expression left, bool inverted);
  Expression among(Expression left, bool inverted);
  Expression between(Expression left, bool inverted);
  Expression compared(Expression left, std::string op);
  Expression sumOf(const std::vector<Expression>& terms, const std::string& signs) const;
  std::string caseless(const Expression& expression) const;
  Expression sqliteCall(const std::string& name, std::vector<std::string> list);
  std::string serverCall(const std::string& name, std::vector<std::string> arguments);
  static std::string held(const Expression& expression, Level least);
  std::string whole(const Expression& expression) const;
  void enter();

  int depth_ = 0;
};

}  // namespace lodex
