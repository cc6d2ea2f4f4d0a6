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
    std::string tail;   ///< from FROM on, without its order
    std::string order;  ///< ORDER BY and what follows
    std::string limit;
    std::string into;       ///< the table that it makes
    std::string table;      ///< the only table that it reads, if its records come one by one
    std::string qualifier;  ///< how it calls that table

    std::string text() const { return head + " " + items + tail + order + limit; }
  };

  /// A query with its order and limit.
  Select parseCompound();
  /// The same as the text of its target, for an expression or a statement that holds one.
  std::string subquery() override;
  std::string valueNamed(std::string_view name) const override;
  /// One SELECT without UNION and order.
  Select parseSelect();
  void parseOrder(Select& select);
  /// The tables and joins after FROM; notes them in tables_ and sources_.
  std::string parseFrom();
  std::string tableName();
  bool isStatementWord() const;

  struct Source {
    std::string table;
    std::string qualifier;  ///< how the query calls it
  };
  int tables_ = 0;               ///< in the FROM part being read; above 1 also for a query in it
  std::vector<Source> sources_;  ///< these tables

 private:
  static Select apart(const Select& select);
  Select parseOperand();
  std::string parseList();
  std::string parseItems();
  std::string parseItem();
  std::string parseJoins();
  /// A table with its other name, or joins in brackets. `first`: at the start of the joins.
  std::string parseTable(bool first);
  std::string parseAlias(std::string* name);
  void limitTo(Select& select, const std::string& top, bool percent);
  std::string orderTerm(const std::string& text) const;

  struct Item {
    std::string text;
    std::string name;  ///< "" for the fields of a star
  };
  struct Order {
    std::string text;
    bool descending;
  };
  std::vector<Item> items_;    // of the SELECT read last
  std::vector<Order> orders_;  // of the ORDER BY read last
  int unnamed_ = 0;
  int queryDepth_ = 0;
};

}  // namespace lodex
