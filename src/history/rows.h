#pragma once

#include "history/records.h"

namespace netvane::history {

class Database;

// The rows of the tables. All but `readRows` return false after a failure, which the database
// keeps, and are part of a transaction of the caller.

/// A minute that is there already stays as it is: the clock was set back.
bool writeRows(Database& database, const Batch& batch);
/// A few days at most in one call, so that a clock that was wrong for a moment costs little.
bool forgetOld(Database& database, int days, int eventDays);
/// An empty name stands for cables.
bool forgetNetworkRows(Database& database, const QString& name);
/// At most so many of each kind.
Batch readRows(
    Database& database, Milliseconds from, Milliseconds to, int most, const Wanted& wanted);

} // namespace netvane::history
