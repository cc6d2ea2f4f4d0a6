#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace lodex {

/// One line of the table in which Access keeps saved queries in pieces.
struct AccessQueryPart {
  int attribute = 0;
  int flag = 0;
  std::string expression;
  std::string name1;
  std::string name2;
  std::string order;  ///< binary; the parts of a query come in this order
};

struct AccessQuery {
  std::string name;
  std::string sql;       ///< in the Jet dialect, "" if it could not be put together
  std::string obstacle;  ///< why it cannot be a view, "" if nothing is known against it
};

/// Puts a saved query together from its parts.
AccessQuery buildAccessQuery(const std::string& name, std::vector<AccessQueryPart> parts);

}  // namespace lodex
