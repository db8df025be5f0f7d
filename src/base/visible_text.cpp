#include "base/visible_text.h"

#include <QChar>
#include <QList>

#include <algorithm>
#include <bit>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {
namespace {

constexpr qsizetype kMaxSsidBytes = 32;
constexpr char32_t kZeroWidthJoiner = 0x200d;
constexpr char32_t kEmojiPresentation = 0xfe0f;

QString escapedByte(uint byte)
{
    return u"\\x%1"_s.arg(byte, 2, 16, QLatin1Char('0'));
}

QString escaped(char32_t c)
{
    return c < 0x80 ? escapedByte(c) : u"\\u{%1}"_s.arg(uint(c), 0, 16);
}

/// Has no glyph of its own, or changes how the rest of the line is drawn.
bool isUnseen(char32_t c)
{
    const auto category = QChar::category(c);
    return category == QChar::Other_Control || category == QChar::Other_Format
        || category == QChar::Separator_Line || category == QChar::Separator_Paragraph;
}

/// Letters and marks that Unicode defines as invisible, and every space except the plain one.
bool isBlank(char32_t c)
{
    static constexpr char32_t kFillers[]
        = {0x034f, 0x115f, 0x1160, 0x17b4, 0x17b5, 0x2800, 0x3164, 0xffa0};
    const auto category = QChar::category(c);
    return (category == QChar::Separator_Space && c != U' ') || category == QChar::Other_NotAssigned
        || category == QChar::Other_PrivateUse
        || std::ranges::find(kFillers, c) != std::end(kFillers) || (c >= 0x180b && c <= 0x180f)
        || (c >= 0xfe00 && c <= 0xfe0f) || (c >= 0xe0100 && c <= 0xe01ef);
}

bool isPictograph(char32_t c)
{
    return QChar::category(c) == QChar::Symbol_Other || (c >= 0x1f3fb && c <= 0x1f3ff);
}

/// Joiners and presentation selectors are part of an emoji if they follow one.
bool belongsToEmoji(char32_t c, char32_t before)
{
    return (c == kEmojiPresentation && isPictograph(before))
        || (c == kZeroWidthJoiner && (isPictograph(before) || before == kEmojiPresentation));
}

/// Another spelling would look the same: the character or the pair is not in normalization form C.
bool mergesWith(char32_t before, char32_t c)
{
    const char32_t pair[] = {before, c};
    const QString text = before == 0 ? QString::fromUcs4(&c, 1) : QString::fromUcs4(pair, 2);
    return text.normalized(QString::NormalizationForm_C) != text;
}

/// One character of a name. `before` is 0 at the start and after an escape.
QString nameCharacter(char32_t c, char32_t before)
{
    if (c == U'\\')
        return u"\\\\"_s;
    if (c < 0x7f && c >= 0x20)
        return QString(QChar(char16_t(c)));
    const bool hidden = (isUnseen(c) || isBlank(c)) && !belongsToEmoji(c, before);
    return hidden || mergesWith(before, c) ? escaped(c) : QString::fromUcs4(&c, 1);
}

} // namespace

QString withVisibleControls(const QString& text)
{
    QString visible;
    for (const char32_t c : text.toUcs4())
        visible += isUnseen(c) ? escaped(c) : QString::fromUcs4(&c, 1);
    return visible;
}

std::optional<QString> ssidText(const QByteArray& ssid)
{
    if (ssid.size() > kMaxSsidBytes || ssid.count('\0') == ssid.size())
        return {};
    QString text;
    char32_t before = 0;
    for (qsizetype at = 0; at < ssid.size();) {
        // The first byte of UTF-8 begins with as many ones as the character has bytes, or with a
        // zero. Qt replaces what is not UTF-8, so that it does not come back as it was.
        const auto bytes = ssid.mid(at, std::max(1, std::countl_one(uchar(ssid[at]))));
        const QString character = QString::fromUtf8(bytes);
        const bool isUtf8 = character.toUtf8() == bytes;
        const char32_t c = isUtf8 ? character.toUcs4().constFirst() : 0;
        const bool isAtEdge = at == 0 || at + bytes.size() == ssid.size();
        QString next;
        if (!isUtf8)
            next = escapedByte(uchar(ssid[at]));
        else
            next = c == U' ' && isAtEdge ? escaped(c) : nameCharacter(c, before);
        before = next.startsWith(u'\\') ? 0 : c;
        text += next;
        at += isUtf8 ? bytes.size() : 1;
    }
    return text;
}

} // namespace netvane::base
