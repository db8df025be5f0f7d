#include "insights/markdown_name.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::insights {
namespace {

/// Letters, digits, emoji, and those signs that mean nothing where they stand: an underscore inside
/// a word, a full stop in a number (others make an address), a hyphen alone (two make a dash).
bool isOrdinary(const QString& name)
{
    static const QRegularExpression s_ordinary(
        u"^(?:[\\p{L}\\p{M}\\p{N}\\p{So}\\x{200d}\\x{fe0f}'’,!?+&()%/]|(?<! ) |(?<!-)-|"
        "(?<=\\p{N})\\.(?=\\p{N})|(?<=[\\p{L}\\p{N}])_(?=[\\p{L}\\p{N}]))+$"_s);
    return s_ordinary.match(name).hasMatch();
}

qsizetype longestRun(const QString& text, QChar c)
{
    qsizetype longest = 0;
    qsizetype run = 0;
    for (const QChar each : text) {
        run = each == c ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

/// Its fence is longer than anything in it, and one space at either end belongs to the fence.
QString codeSpan(const QString& text)
{
    const QString fence(longestRun(text, u'`') + 1, u'`');
    const QString space = text.startsWith(u'`') || text.endsWith(u'`') ? u" "_s : QString();
    return fence + space + text + space + fence;
}

} // namespace

QString markdownName(const QString& name)
{
    static const QRegularExpression s_furtherSpace(u"(?<= ) "_s);
    return isOrdinary(name) ? name : codeSpan(QString(name).replace(s_furtherSpace, u"\\x20"_s));
}

} // namespace netvane::insights
