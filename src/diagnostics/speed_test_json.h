#pragma once

#include "base/result.h"
#include "diagnostics/speed_test_result.h"

#include <vector>

namespace netvane::diagnostics {

// The stored form of speed tests: an array of objects with the names of the fields of
// `SpeedTestResult`. Identifiers are canonical upper-case text, times are seconds since 1 January
// 2001 (UTC), and what is absent is left out.

/// Fails when a number is none that JSON can hold.
base::Result<QString> encodeSpeedTests(const std::vector<SpeedTestResult>& results);

/// The first `maxCount` of them; what comes after is not looked at. Fails when the text is no such
/// array, when one of those taken lacks something or holds something of the wrong kind, and when
/// the text is far longer than any that is ever stored.
/// A number that no test can have found (beyond a million, or below a millionth) is absent.
base::Result<std::vector<SpeedTestResult>> decodeSpeedTests(const QString& text, size_t maxCount);

/// The first `maxCount` of `newest` and of those in the stored text, again as stored text. What is
/// stored counts as empty when it cannot be decoded, and stays as it is when `newest` holds a
/// number that JSON cannot.
QString withSpeedTest(
    const SpeedTestResult& newest, const std::optional<QString>& stored, size_t maxCount);

} // namespace netvane::diagnostics
