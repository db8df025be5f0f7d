#include "base/visible_text.h"
#include "support/test_main.h"

#include <QSet>
#include <QTest>

using namespace netvane::base;
using namespace Qt::Literals::StringLiterals;

class TestVisibleText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ssid_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");

        QTest::newRow("UTF-8") << QByteArray("Café ☕ 网络") << u"Café ☕ 网络"_s;
        QTest::newRow("markup, placeholders") << "<b>&amp;%1"_ba << u"<b>&amp;%1"_s;
        QTest::newRow("bad byte") << "<b>ne\xffv😀"_ba << u"<b>ne\\xffv😀"_s;
        QTest::newRow("cut sequence at the end") << "ab\xf0\x9f\x98"_ba << u"ab\\xf0\\x9f\\x98"_s;
        QTest::newRow("overlong and surrogate")
            << "\xc0\xaf\xed\xa0\x80"_ba << u"\\xc0\\xaf\\xed\\xa0\\x80"_s;
        QTest::newRow("byte order mark") << "\xef\xbb\xbfx"_ba << u"\\xef\\xbb\\xbfx"_s;
        QTest::newRow("line break, zero") << QByteArray("a\nb\0c", 5) << u"a\\x0ab\\x00c"_s;
        QTest::newRow("escape look-alike") << "a\\x0ab"_ba << u"a\\\\x0ab"_s;
        QTest::newRow("override") << QByteArray("a\u202egnp.exe") << u"a\\u{202e}gnp.exe"_s;
        QTest::newRow("line separator, C1")
            << QByteArray("a\u2028b\u0085") << u"a\\u{2028}b\\u{85}"_s;
        QTest::newRow("spaces") << QByteArray("H\u200bo\u00a0m ") << u"H\\u{200b}o\\u{a0}m\\x20"_s;
        QTest::newRow("mark that would merge") << QByteArray("Cafe\u0301") << u"Cafe\\u{301}"_s;
        QTest::newRow("ångström sign") << QByteArray("\u212b") << u"\\u{212b}"_s;
        QTest::newRow("emoji with joiner and selector")
            << QByteArray("👨‍👩‍👧 ❤️") << u"👨‍👩‍👧 ❤️"_s;
        QTest::newRow("joiner without emoji") << QByteArray("a\u200db") << u"a\\u{200d}b"_s;
        QTest::newRow("arabic and hebrew") << QByteArray("شبكة רשת") << u"شبكة רשת"_s;
    }
    void ssid()
    {
        QFETCH(QByteArray, bytes);
        QTEST(ssidText(bytes).value_or(u"(absent)"_s), "text");
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
