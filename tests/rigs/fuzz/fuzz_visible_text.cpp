// Two network names: each can be drawn, and they look alike only where they are alike.
#include "base/visible_text.h"
#include "fuzz_target.h"

using namespace netvane;

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr qsizetype kLongestName = 32;
    constexpr qsizetype kLongestEscape = 10; // \u{10ffff}
    const QByteArray one = fuzz::takeBytes(input, kLongestName + 8);
    const QByteArray other = fuzz::takeRest(input).left(kLongestName + 8);
    const auto text = base::ssidText(one);
    fuzz::require(!text || one.size() <= kLongestName, "what is longer is no name");
    if (text) {
        fuzz::require(
            !text->isEmpty() && text->size() <= one.size() * kLongestEscape, "its length");
        fuzz::requireLine(*text);
        fuzz::require(one == other || base::ssidText(other) != text, "two names, two texts");
    }
    const QString line = base::withVisibleControls(QString::fromUtf8(other));
    fuzz::requireLine(line);
    fuzz::require(base::withVisibleControls(line) == line, "what can be seen stays");
    QString halves = QString::fromUtf8(one);
    if (!halves.isEmpty())
        halves[halves.size() / 2] = QChar(0xd800 + input.ConsumeIntegralInRange(0, 0x7ff));
    fuzz::requireLine(base::withVisibleControls(halves));
}
