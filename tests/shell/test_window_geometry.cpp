#include "shell/popover_placement.h"
#include "shell/window_frame.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

class TestWindowGeometry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void popoverFrame()
    {
        const QRect screen(0, 0, 1280, 900);
        const QRect topPanel(0, 30, 1280, 870);
        const QRect bottomPanel(0, 0, 1280, 870);
        struct Row {
            const char* name;
            std::optional<QRect> anchor;
            QRect screen;
            QRect workArea;
            QRect expected;
        };
        const Row rows[] = {
            {"below an item", QRect(600, 0, 30, 30), screen, topPanel, {405, 34, 420, 600}},
            {"right corner", QRect(1250, 0, 30, 30), screen, topPanel, {860, 34, 420, 600}},
            {"panel over the area", QRect(600, 870, 30, 30), screen, screen, {405, 266, 420, 600}},
            {"pointer in a panel", QRect(1200, 10, 0, 0), screen, topPanel, {860, 30, 420, 600}},
            {"unknown, panel below", {}, screen, bottomPanel, {860, 270, 420, 600}},
            {"second screen", QRect(-400, -1000, 20, 20), {-1280, -1000, 1280, 900},
                {-1280, -980, 1280, 880}, {-600, -976, 420, 600}},
            {"small screen", QRect(300, 0, 20, 20), {0, 0, 320, 480}, {0, 20, 320, 460},
                {0, 20, 320, 460}},
        };
        for (const auto& row : rows) {
            const auto frame
                = shell::popoverFrame({420, 600}, row.anchor, row.screen, row.workArea);
            QVERIFY2(frame == row.expected, row.name);
        }
    }

    void windowFrameText()
    {
        QCOMPARE(shell::windowFrameText({-12, 34, 600, 800}), u"-12 34 600 800"_s);
        QCOMPARE(shell::windowFrame(u"-12 34 600 800"_s), QRect(-12, 34, 600, 800));
        for (const char* text : {"", "1 2 3", "1 2 3 4 5", "1 2 3 x", "1 2  3 4", "1 2 0 600",
                 "1 2 -600 800", "1 2 600 40000", "99999999999 2 600 800", "-2147483648 0 600 800"})
            QVERIFY2(!shell::windowFrame(QString::fromLatin1(text)), text);
    }

    void restoredFrame()
    {
        const QList<QRect> workAreas {{0, 30, 1280, 870}, {1280, 0, 1920, 1080}};
        for (const auto& [frame, expected] :
            {std::pair(QRect(1400, 50, 600, 800), QRect(1400, 50, 600, 800)), // as it was
                {{1200, 50, 600, 800}, {1280, 50, 600, 800}}, // between the screens
                {{0, 0, 3000, 3000}, {1280, 0, 1920, 1080}}, // too large
                {{100, 100, 10, 10}, {100, 100, 400, 600}}}) // too small
            QCOMPARE(shell::restoredFrame(frame, {400, 600}, workAreas), expected);
        // With its title bar, on a screen that is lower than the least height.
        const QRect area = shell::frameArea({0, 28, 911, 484}, {2, 30, 2, 4});
        QCOMPARE(shell::restoredFrame({400, -59, 600, 800}, {400, 600}, {area}),
            QRect(307, 28, 600, 450));
        QVERIFY(!shell::restoredFrame({5000, 50, 600, 800}, {400, 600}, workAreas));
        QVERIFY(!shell::restoredFrame({0, 0, 600, 800}, {400, 600}, {}));
    }
};

NETVANE_TEST(TestWindowGeometry)
#include "test_window_geometry.moc"
