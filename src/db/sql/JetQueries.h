#pragma once

#include <string>

#include "db/sql/JetParser.h"

namespace lodex {

/// Reads queries: SELECT with its tables and joins, UNION, ORDER BY, TOP.
class JetQueries : public JetExpressions {
 public:
  using JetExpressions::JetExpressions;

 protected:
  struct Select {
    std::string head;  ///< "SELECT", with DISTINCT
    std::string items;
    std::string tail;  ///< from FROM on
    std::string limit;
    std::string into;       ///< the table that it makes
    std::string table;      ///< the only table that it reads, if its records come one by one
    std::string qualifier;  ///< how it calls that table

    std::string text() const { return head + " " + items + tail + limit; }
  };

  /// A query with its order and limit.
  Select parseCompound();
  /// The same as the text of its target, for an expression or a statement that holds one.
  std::string subquery() override;
  /// One SELECT without UNION and order.
  Select parseSelect();
  void parseOrder(Select& select);
  std::string tableName();
  /// A table with its other name, or joins in brackets. `first`: at the start of the joins.
  std::string parseTable(bool first);
  bool isStatementWord() const;

  int tables_ = 0;  ///< in the FROM part being read; above 1 also for a query in it

 private:
  static Select apart(const Select& select);
  Select parseOperand();
  std::string parseList();
  std::string parseItems();
  std::string parseItem();
  std::string parseFrom();
  std::string parseJoins();
  std::string parseAlias();

  std::string lastTable_;
  std::string lastQualifier_;
  int unnamed_ = 0;
  int queryDepth_ = 0;
};

}  // namespace lodex
