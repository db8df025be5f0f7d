#include "air/channel_plan.h"

#include <algorithm>

namespace netvane::air {
namespace {

constexpr int kNarrowest = 20; // MHz
constexpr int kStep = 4; // from one number of a channel of 20 MHz to the next

/// Channels of 20 MHz beside each other, by the numbers of the first and the last.
struct Run {
    int first;
    int last;
};

/// `base` is the frequency of number 0.
void addBlocks(std::vector<Block>& all, int base, const Run& run, int channels)
{
    const int length = kStep * channels;
    for (int first = run.first; first + length - kStep <= run.last; first += length) {
        const int low = base + 5 * first - kNarrowest / 2;
        all.push_back({first, {low, low + kNarrowest * channels}});
    }
}

/// The primary channels are 5, 21, 37 and so on.
bool preferScanned(Block& block, int channels)
{
    for (int number = block.number; number < block.number + kStep * channels; number += kStep) {
        if (number % 16 == 5) {
            block.number = number;
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<Range> rangesOf(const AirSpan& span)
{
    const auto around = [](std::uint32_t centre, int width) {
        return Range {int(centre) - width / 2, int(centre) - width / 2 + width};
    };
    const int width = std::max(span.widthMhz.value_or(kNarrowest), kNarrowest);
    if (!span.centreMhz)
        return {around(span.primaryMhz, kNarrowest)};
    if (span.secondCentreMhz)
        return {around(*span.centreMhz, width / 2), around(*span.secondCentreMhz, width / 2)};
    return {around(*span.centreMhz, width)};
}

int overlap(const Range& one, const Range& other)
{
    const int common = std::min(one.high, other.high) - std::max(one.low, other.low);
    const int narrower = std::min(one.width(), other.width());
    return common > 0 && narrower > 0 ? 1000 * common / narrower : 0;
}

std::vector<Block> blocks(ChannelBand band, int widthMhz)
{
    std::vector<Block> all;
    const int channels = std::max(widthMhz, kNarrowest) / kNarrowest;
    switch (band) {
    case ChannelBand::TwoGHz:
        for (const int number : {1, 6, 11})
            addBlocks(all, 2407, {number, number}, 1);
        break;
    case ChannelBand::FiveGHz:
        for (const Run& run : {Run {36, 64}, Run {100, 144}, Run {149, 177}})
            addBlocks(all, 5000, run, std::min(channels, 8));
        break;
    case ChannelBand::SixGHz:
        addBlocks(all, 5950, {1, 233}, std::min(channels, 16));
        if (channels >= 16) // the channels of 320 MHz overlap by a half
            addBlocks(all, 5950, {33, 233}, 16);
        std::erase_if(all, [&](Block& block) { return !preferScanned(block, channels); });
        std::ranges::sort(all, {}, [](const Block& block) { return block.range.low; });
        break;
    case ChannelBand::Unknown:
        break;
    }
    return all;
}

} // namespace netvane::air
