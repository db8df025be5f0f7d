#include "radio/radio_power.h"

#include <QDir>
#include <QFile>

#include <net/if.h>

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

/// The number in a small file of sysfs, in C notation; absent when it cannot be read.
std::optional<uint> sysfsNumber(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {};
    bool ok = false;
    const uint number = file.read(32).trimmed().toUInt(&ok, 0);
    return ok ? std::optional(number) : std::nullopt;
}

} // namespace

bool isRadioOn(const QByteArray& interfaceName)
{
    const QString device = u"/sys/class/net/"_s + QFile::decodeName(interfaceName);
    if (const auto flags = sysfsNumber(device + u"/flags"_s); flags && (*flags & IFF_UP) == 0)
        return false;
    const QDir wiphy(device + u"/phy80211"_s);
    const auto switches = wiphy.entryList({u"rfkill*"_s}, QDir::Dirs);
    return std::ranges::none_of(switches, [&wiphy](const QString& name) {
        return sysfsNumber(wiphy.filePath(name + u"/soft"_s)).value_or(0) != 0
            || sysfsNumber(wiphy.filePath(name + u"/hard"_s)).value_or(0) != 0;
    });
}

} // namespace netvane::radio
