#pragma once

struct sqlite3;

namespace lodex {

/// Teaches an open database the functions of the Jet dialect that it lacks or computes otherwise:
/// texts (Left, Mid, InStr ...), numbers (Int, Round with halves to even, natural Log ...), dates
/// (Year, DateSerial, DateDiff ...), conversions (CLng, Val, Format ...), the aggregates First,
/// Last, StDev, StDevP, Var and VarP, and LIKE with the wild cards * ? # [a-z] as well as % and _.
void addJetFunctions(sqlite3* database);

}  // namespace lodex
