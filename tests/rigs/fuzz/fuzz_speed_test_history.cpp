// The stored speed tests: what is taken is sane, and survives being stored again.
#include "diagnostics/speed_test_json.h"
#include "fuzz_target.h"

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr size_t kMost = 20;
    const auto text = QString::fromUtf8(fuzz::takeRest(input));
    const auto results = diagnostics::decodeSpeedTests(text, kMost);
    if (!results)
        return;
    fuzz::require(results.value().size() <= kMost, "no more than are shown");
    const auto stored = diagnostics::encodeSpeedTests(results.value());
    fuzz::require(bool(stored), "what was read can be stored");
    const auto again = diagnostics::decodeSpeedTests(stored.value(), kMost);
    fuzz::require(bool(again) && again.value().size() == results.value().size(), "and read again");
    const auto once = diagnostics::encodeSpeedTests(again.value());
    fuzz::require(bool(once) && once.value() == stored.value(), "and stays the same from then on");
}
