// The functions of the dialect as functions of the store.
#pragma once

struct sqlite3;

namespace jet {

/// Registers every jet_… function on a connection. All are innocuous, and deterministic except
/// jet_now; a failure of one reads "#number#description" and fails the statement.
///
/// Order and patterns: jet_key(x) sort key (a blob; Null and numbers pass unchanged),
/// jet_like(text, pattern) 1 / 0 / Null. Operators: jet_concat(a, b) for "&", jet_add(a, b) for "+",
/// jet_idiv, jet_mod, jet_pow. Conversion on assignment: jet_text, jet_long, jet_integer,
/// jet_byte, jet_double, jet_bool (-1 / 0, Null becomes 0), jet_date. Functions of the dialect under their names in lower case
/// behind "jet_": val, trim, ltrim, rtrim, lcase, ucase, strconv, left, right, mid, len,
/// instr, replace, cstr, cint, clng, cdbl, cbool, abs, int, fix, round, sgn, sqr, nz, now, format, asc, chr,
/// space, string, isnumeric, year, month, day; aggregates jet_first, jet_last.
void registerFunctions(sqlite3* connection);

} // namespace jet
