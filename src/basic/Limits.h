#pragma once

namespace lodex {

/// The largest sheet that can be addressed.
inline constexpr int maxRows = 1048576;
inline constexpr int maxColumns = 16384;

}  // namespace lodex
