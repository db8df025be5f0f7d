#include "shell/popover_placement.h"
#include "shell/window_frame.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

class TestWindowGeometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void popoverFrame_data()
    {
        QTest::addColumn<std::optional<QRect>>("anchor");
        QTest::addColumn<QRect>("screen");
        QTest::addColumn<QRect>("workArea");
        QTest::addColumn<QRect>("expected");
        const QRect screen(0, 0, 1280, 900);
        const QRect topPanel(0, 30, 1280, 870);
        const QRect bottomPanel(0, 0, 1280, 870);
        using Anchor = std::optional<QRect>;
        const auto row = [](const char* name, const Anchor& anchor, const QRect& whole,
                             const QRect& area, const QRect& expected) {
            QTest::newRow(name) << anchor << whole << area << expected;
        };
        row("below an item", QRect(600, 0, 30, 30), screen, topPanel, {405, 34, 420, 600});
        row("above an item", QRect(600, 870, 30, 30), screen, bottomPanel, {405, 266, 420, 600});
        row("item in the right corner", QRect(1250, 0, 30, 30), screen, topPanel,
            {860, 34, 420, 600});
        row("item in the left corner", QRect(0, 870, 30, 30), screen, bottomPanel,
            {0, 266, 420, 600});
        row("panel on the left", QRect(0, 440, 40, 40), screen, {40, 0, 1240, 900},
            {40, 0, 420, 600});
        row("panel over the work area", QRect(600, 870, 30, 30), screen, screen,
            {405, 266, 420, 600});
        row("pointer in a panel", QRect(1200, 10, 0, 0), screen, topPanel, {860, 30, 420, 600});
        row("pointer in the last pixel", QRect(1279, 899, 0, 0), screen, screen,
            {860, 295, 420, 600});
        row("nothing known, panel at the top", {}, screen, topPanel, {860, 30, 420, 600});
        row("nothing known, panel at the bottom", {}, screen, bottomPanel, {860, 270, 420, 600});
        row("nothing known, no panel", {}, screen, screen, {860, 300, 420, 600});
        row("second screen to the left and above", QRect(-400, -1000, 20, 20),
            {-1280, -1000, 1280, 900}, {-1280, -980, 1280, 880}, {-600, -976, 420, 600});
        row("low screen", QRect(600, 450, 30, 30), {0, 0, 1024, 480}, {0, 0, 1024, 450},
            {405, 0, 420, 450});
        row("narrow screen", QRect(300, 0, 20, 20), {0, 0, 320, 480}, {0, 20, 320, 460},
            {0, 20, 320, 460});
    }

    void popoverFrame()
    {
        QFETCH(std::optional<QRect>, anchor);
        QFETCH(QRect, screen);
        QFETCH(QRect, workArea);
        QFETCH(QRect, expected);
        const QRect frame = shell::popoverFrame({420, 600}, anchor, screen, workArea);
        QCOMPARE(frame, expected);
        QVERIFY(workArea.contains(frame));
    }

    void windowFrameText()
    {
        for (const QRect& frame : {QRect(0, 0, 600, 800), QRect(-1280, -5, 400, 600)})
            QCOMPARE(shell::windowFrame(shell::windowFrameText(frame)), frame);
        QCOMPARE(shell::windowFrameText({-12, 34, 600, 800}), u"-12 34 600 800"_s);
    }

    void brokenFrameText_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", "1 2 3", "1 2 3 4 5", "1 2 3 x", "1 2  3 4", "1 2 0 600",
                 "1 2 -600 800", "1 2 600 40000", "99999999999 2 600 800", "-2147483648 0 600 800"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }

    void brokenFrameText()
    {
        QFETCH(QString, text);
        QVERIFY(!shell::windowFrame(text));
    }

    void restoredFrame_data()
    {
        QTest::addColumn<QRect>("frame");
        QTest::addColumn<std::optional<QRect>>("expected");
        using Frame = std::optional<QRect>;
        QTest::newRow("as it was") << QRect(100, 50, 600, 800) << Frame({100, 50, 600, 800});
        QTest::newRow("on the second screen")
            << QRect(1400, 50, 600, 800) << Frame({1400, 50, 600, 800});
        QTest::newRow("half out") << QRect(-300, -10, 600, 800) << Frame({0, 30, 600, 800});
        QTest::newRow("between the screens")
            << QRect(1200, 50, 600, 800) << Frame({1280, 50, 600, 800});
        QTest::newRow("too large") << QRect(0, 0, 3000, 3000) << Frame({1280, 0, 1920, 1080});
        QTest::newRow("too small") << QRect(100, 100, 10, 10) << Frame({100, 100, 400, 600});
        QTest::newRow("screen is gone") << QRect(5000, 50, 600, 800) << Frame();
    }

    void restoredFrame()
    {
        QFETCH(QRect, frame);
        QFETCH(std::optional<QRect>, expected);
        const QList<QRect> workAreas {{0, 30, 1280, 870}, {1280, 0, 1920, 1080}};
        QCOMPARE(shell::restoredFrame(frame, {400, 600}, workAreas), expected);
    }

    void noScreen() { QVERIFY(!shell::restoredFrame({0, 0, 600, 800}, {400, 600}, {})); }
};

NETVANE_TEST(TestWindowGeometry)
#include "test_window_geometry.moc"
