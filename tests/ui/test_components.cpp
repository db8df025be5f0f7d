#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/painting/sparkline.h"
#include "ui/state/channel_analysis_state.h"

#include <QAccessible>
#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;
using test::ViewFixture;

namespace {

/// Relative luminance as WCAG 2.1 defines it.
double luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double ratio = (luminance(one) + 0.05) / (luminance(other) + 0.05);
    return std::max(ratio, 1 / ratio);
}

} // namespace

class TestComponents : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textsCanBeReadInBothSchemes()
    {
        simulated::Appearance appearance;
        const ui::Theme theme(appearance);
        const auto color = [&](const char* name) { return theme.property(name).value<QColor>(); };
        for (const auto scheme : {platform::ColorScheme::Light, platform::ColorScheme::Dark}) {
            appearance.setColorScheme(scheme);
            for (const auto* background : {"cardBackground", "controlBackground"}) {
                for (const auto* text : {"primaryText", "secondaryText", "tertiaryText"})
                    QCOMPARE_GE(contrast(color(text), color(background)), 4.5);
            }
            QCOMPARE_GE(contrast(Qt::white, color("prominentFill")), 4.5);
        }
    }

    void theCurveStaysInItsBox_data()
    {
        QTest::addColumn<QList<double>>("values");
        QTest::newRow("spike") << QList<double> {1, 1, 100, 1, 1};
        QTest::newRow("flat") << QList<double> {7, 7, 7};
        QTest::newRow("not numbers") << QList<double> {1, qQNaN(), 5, qInf(), 2};
    }
    void theCurveStaysInItsBox()
    {
        QFETCH(QList<double>, values);
        const QRectF box(2, 3, 80, 24);
        const QPainterPath path = ui::smoothCurve(values, box);
        const QRectF bounds = path.boundingRect();
        QVERIFY(bounds.top() > box.top() - 1e-6 && bounds.bottom() < box.bottom() + 1e-6);
        QVERIFY(bounds.left() > box.left() - 1e-6);
        QCOMPARE(path.currentPosition().x(), box.right());
    }

    void barChart_data()
    {
        QTest::addColumn<QList<int>>("counts");
        QTest::addColumn<QStringList>("texts"); // the marks, then of each bar its count and label
        const auto row = [](const char* name, const QList<int>& counts, const QString& texts) {
            QTest::newRow(name) << counts << texts.split(u' ');
        };
        row("one", {1}, u"0 1 1 100"_s);
        row("steps of 2", {5, 0}, u"0 2 4 6 5 100 0 101"_s);
        row("steps of 5", {9}, u"0 5 10 9 100"_s);
        row("steps of 10", {21}, u"0 10 20 30 21 100"_s);
        row("steps of 500", {1000}, u"0 500 1000 1000 100"_s);
    }
    void barChart()
    {
        QFETCH(QList<int>, counts);
        ViewFixture view(u"BarChart"_s, {{u"bars"_s, QVariant::fromValue(barsOf(counts))}});
        QTEST(view.texts(), "texts");
    }

    void manyBarsKeepTheLabelOfTheCurrentOne()
    {
        auto bars = barsOf(QList<int>(40, 7));
        bars[38].isCurrent = true;
        ViewFixture view(u"BarChart"_s, {{u"bars"_s, QVariant::fromValue(bars)}});
        const QStringList texts = view.texts();
        QVERIFY(texts.contains(u"138"_s));
        QVERIFY(!texts.contains(u"137"_s) && !texts.contains(u"139"_s));
        QCOMPARE(texts.count(u"7"_s), 40); // these have room
    }

    void gallery()
    {
        ViewFixture view(u"gallery"_s, {}, 420);
        QCOMPARE(view.problems(u"gallery"_s), QStringList());
        const auto pressed = [&] { return view.root().property("pressed").toString(); };
        const auto act = [&](const QString& text, const QString& action) {
            QAccessible::queryAccessibleInterface(view.find("text", text))
                ->actionInterface()
                ->doAction(action);
        };
        for (const auto& text : {u"Bordered"_s, u"Prominent"_s, u"Small"_s}) {
            view.click(text);
            QCOMPARE(pressed(), text);
        }
        act(u"Bordered"_s, QAccessibleActionInterface::pressAction());
        QCOMPARE(pressed(), u"Bordered"_s);
        act(u"Network Changes"_s, QAccessibleActionInterface::toggleAction());
        QCOMPARE(pressed(), u"Network Changestrue"_s);
    }

private:
    static QList<ui::ChartBar> barsOf(const QList<int>& counts)
    {
        QList<ui::ChartBar> bars;
        for (int index = 0; index < counts.size(); ++index)
            bars.append({QString::number(100 + index), counts[index], false});
        return bars;
    }
};

NETVANE_TEST(TestComponents)
#include "test_components.moc"
