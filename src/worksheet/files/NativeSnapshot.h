#pragma once

#include <string_view>

namespace lodex {

/// True for bytes that Worksheet::WriteToBlob made.
bool looksLikeSnapshot(std::string_view bytes);

}  // namespace lodex
