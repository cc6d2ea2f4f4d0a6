#pragma once

#include <memory>
#include <string_view>

#include "db/Driver.h"

namespace lodex {

/// Connects to a database server with a text of serverLogin. Throws Error naming the
/// service, never the text, when that fails.
std::unique_ptr<Driver> openOdbc(std::string_view service, std::string_view connectionText);

}  // namespace lodex
