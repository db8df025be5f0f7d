#include "base/visible_text.h"
#include "support/test_main.h"

#include <QSet>
#include <QTest>

using namespace netvane::base;
using namespace Qt::Literals::StringLiterals;

class TestVisibleText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ssid()
    {
        const std::pair<QByteArray, QString> rows[] = {
            {"Café ☕ 网络 %1", u"Café ☕ 网络 %1"_s}, {"שבכה شبكة", u"שבכה شبكة"_s},
            {"<b>ne\xffv😀", u"<b>ne\\xffv😀"_s}, // a byte that is not UTF-8
            {"ab\xf0\x9f\x98", u"ab\\xf0\\x9f\\x98"_s}, // a character cut at the end
            {"\xc0\xaf\xed\xa0\x80", u"\\xc0\\xaf\\xed\\xa0\\x80"_s}, // overlong, surrogate
            {"\xef\xbb\xbfx", u"\\xef\\xbb\\xbfx"_s}, // byte order mark
            {QByteArray("a\nb\0c", 5), u"a\\x0ab\\x00c"_s}, // line break, zero
            {"a\\x0ab", u"a\\\\x0ab"_s}, // looks like an escape
            {"a\u202egnp.exe", u"a\\u{202e}gnp.exe"_s}, // right-to-left override
            {"a\u2028b\u0085", u"a\\u{2028}b\\u{85}"_s}, // line separator, C1
            {"H\u200bo\u00a0m ", u"H\\u{200b}o\\u{a0}m\\x20"_s}, // spaces
            {"Cafe\u0301", u"Cafe\\u{301}"_s}, {"\u212b", u"\\u{212b}"_s}, // would be normalized
            {"👨‍👩‍👧 ❤️", u"👨‍👩‍👧 ❤️"_s},
            {"a\u200db", u"a\\u{200d}b"_s}, // joiners
        };
        for (const auto& [bytes, text] : rows)
            QCOMPARE(ssidText(bytes).value_or(u"(absent)"_s), text);
    }

    void ssidNotRevealed()
    {
        QVERIFY(!ssidText({}));
        QVERIFY(!ssidText(QByteArray(32, '\0')));
        QVERIFY(!ssidText(QByteArray(33, 'a')));
        QVERIFY(ssidText(QByteArray(32, 'a')));
    }

    /// Every pair of bytes as a name of its own: no two may share a text, none may break a line.
    void everyTwoBytesStayDistinct()
    {
        QSet<QString> seen;
        for (int i = 1; i < 0x10000; ++i) {
            const QByteArray name = QByteArray(1, char(i >> 8)) + char(i & 0xff);
            const auto text = ssidText(name);
            QVERIFY(text);
            for (const QChar c : *text)
                QVERIFY2(c.isPrint(), name.toHex().constData());
            QVERIFY2(!seen.contains(*text), name.toHex().constData());
            seen.insert(*text);
        }
    }

    void logLineStaysOneLine()
    {
        QCOMPARE(withVisibleControls(u"a\nb\x1b[31m\u2028 C:\\x\U0001F600"_s),
            u"a\\x0ab\\x1b[31m\\u{2028} C:\\x\U0001F600"_s);
        QCOMPARE(withVisibleControls(QChar(0xd83d) + u"b"_s), u"\ufffdb"_s); // half a pair
    }
};

NETVANE_TEST(TestVisibleText)
#include "test_visible_text.moc"
