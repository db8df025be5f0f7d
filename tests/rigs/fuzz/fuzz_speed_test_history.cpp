// The stored speed tests: what is taken is sane, and survives being stored again.
#include "diagnostics/speed_test_json.h"
#include "fuzz_target.h"

using namespace netvane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t kMost = 20;
    const auto text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto results = diagnostics::decodeSpeedTests(text, kMost);
    if (!results)
        return 0;
    fuzz::require(results.value().size() <= kMost, "no more than are shown");
    const auto stored = diagnostics::encodeSpeedTests(results.value());
    fuzz::require(bool(stored), "what was read can be stored");
    const auto again = diagnostics::decodeSpeedTests(stored.value(), kMost);
    fuzz::require(bool(again) && again.value().size() == results.value().size(), "and read again");
    const auto once = diagnostics::encodeSpeedTests(again.value());
    fuzz::require(bool(once) && once.value() == stored.value(), "and stays the same from then on");
    return 0;
}
