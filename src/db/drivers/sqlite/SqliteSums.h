#pragma once

struct sqlite3;

namespace lodex {

/// JetSum(signs, a, b, ...): what the operators + and - of the Jet dialect make of their values,
/// from left to right. `signs` holds the operators between the values. Two texts are joined by +; a
/// date and a number give the date so many days away, two dates the days between them; Null gives
/// Null, and so does what cannot be added.
void addJetSums(sqlite3* database);

}  // namespace lodex
