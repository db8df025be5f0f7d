#include "base/visible_text.h"

#include <QChar>
#include <QList>
#include <QStringConverter>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::base {
namespace {

constexpr qsizetype kMaxSsidBytes = 32;
constexpr char32_t kZeroWidthJoiner = 0x200d;
constexpr char32_t kEmojiPresentation = 0xfe0f;

QString escaped(char32_t c)
{
    return c < 0x80 ? u"\\x%1"_s.arg(uint(c), 2, 16, QLatin1Char('0'))
                    : u"\\u{%1}"_s.arg(uint(c), 0, 16);
}

/// Draws nothing of its own, or changes how the rest of the line is drawn.
bool isUnseen(char32_t c)
{
    switch (QChar::category(c)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

/// QString::toUcs4 would have half a surrogate pair look like a replacement character.
QList<char32_t> charactersOf(const QString& text)
{
    QList<char32_t> characters;
    characters.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair
            = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        characters.append(
            isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode());
        i += isPair ? 1 : 0;
    }
    return characters;
}

/// Letters and marks that Unicode asks to be drawn as nothing, and space that is no plain space.
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

/// Joiners and presentation selectors are part of an emoji when they stand behind one.
bool belongsToEmoji(char32_t c, char32_t before)
{
    return (c == kEmojiPresentation && isPictograph(before))
        || (c == kZeroWidthJoiner && (isPictograph(before) || before == kEmojiPresentation));
}

/// The same picture could be spelled otherwise: a mark that merges with what stands before it.
bool mergesWith(char32_t before, char32_t c)
{
    const QString alone = QString::fromUcs4(&c, 1);
    if (alone.normalized(QString::NormalizationForm_C) != alone)
        return true;
    if (before == 0)
        return false;
    const QString pair = QString::fromUcs4(&before, 1) + alone;
    return pair.normalized(QString::NormalizationForm_C) != pair;
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

/// The characters of UTF-8, with each byte that belongs to none as 0x110000 plus the byte.
QList<char32_t> decoded(const QByteArray& bytes)
{
    constexpr char32_t kBadByte = 0x110000;
    QList<char32_t> characters;
    for (qsizetype at = 0; at < bytes.size();) {
        qsizetype length = 1;
        QString text;
        for (; length <= 4 && at + length <= bytes.size(); ++length) {
            QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
            text = decoder(bytes.sliced(at, length));
            if (!decoder.hasError())
                break;
            text.clear();
        }
        if (text.isEmpty()) {
            characters.append(kBadByte + uchar(bytes[at]));
            at += 1;
        } else {
            characters.append(text.toUcs4().at(0));
            at += length;
        }
    }
    return characters;
}

} // namespace

QString withVisibleControls(const QString& text)
{
    const auto characters = charactersOf(text);
    if (std::ranges::none_of(characters, isUnseen))
        return text;
    QString visible;
    for (const char32_t c : characters)
        visible += isUnseen(c) ? escaped(c) : QString::fromUcs4(&c, 1);
    return visible;
}

std::optional<QString> ssidText(const QByteArray& ssid)
{
    if (ssid.size() > kMaxSsidBytes || ssid.count('\0') == ssid.size())
        return {};
    const auto characters = decoded(ssid);
    QString text;
    char32_t before = 0;
    for (qsizetype i = 0; i < characters.size(); ++i) {
        const char32_t c = characters[i];
        const bool atEdge = i == 0 || i == characters.size() - 1;
        QString next;
        if (c >= 0x110000)
            next = u"\\x%1"_s.arg(c - 0x110000, 2, 16, QLatin1Char('0'));
        else
            next = c == U' ' && atEdge ? escaped(c) : nameCharacter(c, before);
        before = next.startsWith(u'\\') ? 0 : c;
        text += next;
    }
    return text;
}

} // namespace netvane::base
