#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace netvane::base {

/// `text` with every character that draws nothing or steers the text around it (controls, line
/// separators, bidirectional and other format characters, lone surrogates) as `\x0a` or `\u{202e}`.
/// Backslashes stay: this is for lines that already hold escapes, such as those of the log.
QString withVisibleControls(const QString& text);

/// The text that stands for a network name everywhere in the program. An SSID is up to 32 arbitrary
/// bytes (IEEE 802.11-2020, 9.4.2.2): UTF-8 is kept, bytes that are not become `\xff`, characters
/// that cannot be seen or told from a neighbour (controls, directional overrides, spaces other than
/// a plain one, a space at either end, marks that merge with the letter before) become `\u{200b}`,
/// and a backslash becomes `\\`. Two different names never give the same text.
/// Absent when the name is not revealed: empty, all zero bytes, or longer than a name can be.
std::optional<QString> ssidText(const QByteArray& ssid);

} // namespace netvane::base
