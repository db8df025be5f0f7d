// Two network names: each can be drawn, and their texts are equal only if the names are.
#include "base/visible_text.h"
#include "fuzz_target.h"

void netvane::fuzz::tryInput(FuzzedDataProvider& input)
{
    constexpr qsizetype kLongestName = 32;
    const QByteArray one = takeBytes(input, kLongestName + 8);
    const QByteArray other = takeRest(input).left(kLongestName + 8);
    const auto text = base::ssidText(one);
    require(!text || one.size() <= kLongestName, "what is longer is no name");
    if (text) {
        require(!text->isEmpty() && text->size() <= one.size() * 10, "its length");
        requireLine(*text);
        require(one == other || base::ssidText(other) != text, "two names, two texts");
    }
    const QString line = base::withVisibleControls(QString::fromUtf8(other));
    requireLine(line);
    require(base::withVisibleControls(line) == line, "what can be seen stays");
    QString halves = QString::fromUtf8(one);
    if (!halves.isEmpty())
        halves[halves.size() / 2] = QChar(0xd800 + input.ConsumeIntegralInRange(0, 0x7ff));
    requireLine(base::withVisibleControls(halves));
}
