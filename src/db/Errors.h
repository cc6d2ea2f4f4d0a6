#pragma once

/// The numbers that errors of connections and recordsets carry, as users of the system know them.
namespace lodex::dberror {

inline constexpr int BadArgument = 3001;
inline constexpr int NoCurrentRecord = 3021;
inline constexpr int NotSupported = 3251;
inline constexpr int NoSuchItem = 3265;
inline constexpr int ObjectClosed = 3704;
inline constexpr int ObjectOpen = 3705;
inline constexpr int Unspecified = -2147467259;   // 80004005 hexadecimal
inline constexpr int BadStatement = -2147217900;  // 80040E14 hexadecimal

}  // namespace lodex::dberror
