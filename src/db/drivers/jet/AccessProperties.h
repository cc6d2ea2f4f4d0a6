#pragma once

#include <map>
#include <string>
#include <string_view>

#include "db/drivers/jet/AccessFile.h"

namespace lodex {

/// Properties by name, such as "Description"; their values as text, truth as "Yes" and "No".
using AccessProperties = std::map<std::string, std::string, std::less<>>;

/// The properties of a table ("" stands for the table itself) and of its fields by name, as the
/// column LvProp of the catalogue keeps them. Throws FileError when they are damaged.
std::map<std::string, AccessProperties> readAccessProperties(const AccessFile& file,
                                                             AccessBytes stored);

/// A property's value; "" if there is none.
const std::string& propertyOf(const AccessProperties& properties, std::string_view name);

}  // namespace lodex
