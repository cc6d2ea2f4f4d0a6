#pragma once

#include <map>
#include <string>
#include <string_view>

#include "db/drivers/jet/AccessTable.h"

namespace lodex {

/// Properties by name, such as "Description"; their values as text, truth as "Yes" and "No".
using AccessProperties = std::map<std::string, std::string, std::less<>>;

/// The properties of a table ("" stands for the table itself) and of its fields by name, as the
/// column LvProp of the catalogue keeps them. Throws FileError when they are damaged.
std::map<std::string, AccessProperties> readAccessProperties(const AccessFile& file,
                                                             AccessBytes stored);

/// Gives the calculated columns of a table the types of their values, which only the property
/// ResultType names; the definition of the table may name others. Returns the names of those whose
/// type is unknown.
std::vector<std::string> setCalculatedTypes(
    const std::map<std::string, AccessProperties>& properties, AccessTable& table);

/// A property's value; "" if there is none.
const std::string& propertyOf(const AccessProperties& properties, std::string_view name);

}  // namespace lodex
