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

/// As WCAG 2.1 defines it.
double contrast(const QColor& one, const QColor& other)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](const QColor& color) {
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF());
    };
    const double ratio = (luminance(one) + 0.05) / (luminance(other) + 0.05);
    return std::max(ratio, 1 / ratio);
}

QStringList chartOf(const QList<int>& counts, int current = -1)
{
    QList<ui::ChartBar> bars;
    for (int index = 0; index < counts.size(); ++index)
        bars.append({QString::number(100 + index), counts[index], index == current});
    return ViewFixture(u"BarChart"_s, {{u"bars"_s, QVariant::fromValue(bars)}}).texts();
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

    void theCurveStaysInItsBox()
    {
        const QRectF box(2, 3, 80, 24);
        for (const QList<double>& values :
            {QList<double> {1, 1, 100, 1, 1}, {7, 7, 7}, {1, qQNaN(), 5, qInf(), 2}}) {
            const QPainterPath path = ui::smoothCurve(values, box);
            const QRectF bounds = path.boundingRect();
            QVERIFY(bounds.top() > box.top() - 1e-6 && bounds.bottom() < box.bottom() + 1e-6);
            QVERIFY(bounds.left() > box.left() - 1e-6);
            QCOMPARE(path.currentPosition().x(), box.right());
        }
    }

    /// The marks, then of each bar its count and label.
    void barChart()
    {
        QCOMPARE(chartOf({1}), u"0 1 1 100"_s.split(u' '));
        QCOMPARE(chartOf({5, 0}), u"0 2 4 6 5 100 0 101"_s.split(u' '));
        QCOMPARE(chartOf({9}), u"0 5 10 9 100"_s.split(u' '));
        QCOMPARE(chartOf({1000}), u"0 500 1000 1000 100"_s.split(u' '));
        // Where labels have no room, that of the current bar stays.
        const QStringList many = chartOf(QList<int>(40, 7), 38);
        QVERIFY(many.contains(u"138"_s));
        QVERIFY(!many.contains(u"137"_s) && !many.contains(u"139"_s));
        QCOMPARE(many.count(u"7"_s), 40);
    }

    void screenReadersPress()
    {
        const auto press = [](const QString& name, const QString& action) {
            ViewFixture view(name, {{u"text"_s, u"Press"_s}, {u"checkable"_s, true}});
            QCOMPARE(view.problems(), QStringList());
            QAccessible::queryAccessibleInterface(&view.root())
                ->actionInterface()
                ->doAction(action);
            QVERIFY(view.root().property("checked").toBool());
        };
        press(u"PushButton"_s, QAccessibleActionInterface::pressAction());
        press(u"ToggleSwitch"_s, QAccessibleActionInterface::toggleAction());
    }
};

NETVANE_TEST(TestComponents)
#include "test_components.moc"
