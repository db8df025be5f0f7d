#include "support/test_main.h"
#include "ui/painting/bar_chart.h"
#include "ui/painting/bar_chart_layout.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <set>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

QList<ui::ChartBar> channels(int count)
{
    QList<ui::ChartBar> bars;
    for (int i = 0; i < count; ++i)
        bars.append({QString::number(100 + i), 1 + i * 7 % 13, ui::accent::LightBlue});
    bars.last().accent = ui::accent::Blue;
    return bars;
}

constexpr QRgb kBlue = 0xff0000ff;
constexpr QRgb kLightBlue = 0xff00ffff;

/// As wide as in the popover, with colours that tell the parts apart.
QImage paint(ui::BarChart& chart)
{
    QFont font(u"Inter"_s);
    font.setPixelSize(11);
    chart.setSize({340, 120});
    chart.setProperty("font", font);
    chart.setProperty("countColor", QColor(Qt::red));
    chart.setProperty("accents",
        QVariant::fromValue(QList<QColor> {Qt::blue, Qt::black, Qt::black, Qt::black, Qt::cyan}));
    QImage image(340, 120, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    chart.paint(&painter);
    return image;
}

/// How many runs of the colour a line of the picture has.
int runs(const QImage& image, int y, QRgb color)
{
    int runs = 0;
    for (int x = 1; x < image.width(); ++x)
        runs += image.pixel(x, y) == color && image.pixel(x - 1, y) != color;
    return runs;
}

/// Thin strokes are lighter than their colour, but as red.
bool hasCounts(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) > 250 && qGreen(pixel) < 200 && qBlue(pixel) < 200)
                return true;
        }
    }
    return false;
}

} // namespace

class TestBarChart : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void marksAreFewWholeNumbers_data()
    {
        QTest::addColumn<QList<int>>("marks");
        QTest::newRow("0") << QList<int> {0, 1};
        QTest::newRow("1") << QList<int> {0, 1};
        QTest::newRow("4") << QList<int> {0, 1, 2, 3, 4};
        QTest::newRow("5") << QList<int> {0, 2, 4, 6};
        QTest::newRow("9") << QList<int> {0, 5, 10};
        QTest::newRow("21") << QList<int> {0, 10, 20, 30};
        QTest::newRow("1000") << QList<int> {0, 500, 1000};
    }
    void marksAreFewWholeNumbers()
    {
        QTEST(ui::countMarks(QString::fromLatin1(QTest::currentDataTag()).toInt()), "marks");
    }

    void labelsAreThinnedOutWhenTheyWouldTouch()
    {
        QCOMPARE(ui::labelStride(20, 23), 1);
        QCOMPARE(ui::labelStride(20, 22.9), 2);
        QCOMPARE(ui::labelStride(20, 8), 3);
        QCOMPARE(ui::labelStride(20, 0), 23);
    }

    void everyChannelHasItsBar_data()
    {
        QTest::addColumn<int>("count");
        for (const int count : {1, 2, 14, 40})
            QTest::addRow("%d", count) << count;
    }
    void everyChannelHasItsBar()
    {
        QFETCH(int, count);
        ui::BarChart chart;
        chart.setBars(channels(count));
        const QImage image = paint(chart);
        const int aboveTheAxis = 98; // where even a bar of one network has its colour
        QCOMPARE(runs(image, aboveTheAxis, kBlue), 1);
        QCOMPARE(runs(image, aboveTheAxis, kLightBlue), count - 1);
        QVERIFY(hasCounts(image));
    }

    void withoutChannelsItIsEmpty()
    {
        ui::BarChart chart;
        const QImage image = paint(chart);
        QCOMPARE(image.pixel(20, 60), QColor(Qt::white).rgb());
    }
};

NETVANE_TEST(TestBarChart)
#include "test_bar_chart.moc"
