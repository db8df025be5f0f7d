#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace netvane::base {

/// `text` with every character that is invisible or changes the direction of the text (controls,
/// line separators, bidirectional and other format characters) as `\x0a` or `\u{202e}`.
/// Backslashes stay: this is for lines that already hold escapes, such as those of the log.
QString withVisibleControls(const QString& text);

/// The text that represents a network name everywhere in the program. An SSID is up to 32 arbitrary
/// bytes (IEEE 802.11-2020, 9.4.2.2). UTF-8 is kept, and other bytes become `\xff`. Characters that
/// are invisible or look like others (controls, directional overrides, spaces other than the plain
/// one, a space at either end, marks that merge with the letter before) become `\u{200b}`. A
/// backslash becomes `\\`. Two different names never give the same text.
/// Absent when the name is hidden: empty, all zero bytes, or longer than a name can be.
std::optional<QString> ssidText(const QByteArray& ssid);

} // namespace netvane::base
