#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/painting/smooth_curve.h"

#include <QAccessible>
#include <QPainter>
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
        test::FakeAppearance appearance;
        const ui::Theme theme(appearance);
        for (const auto scheme : {platform::ColorScheme::Light, platform::ColorScheme::Dark}) {
            appearance.setColorScheme(scheme);
            for (const QColor& ground : {theme.cardBackground(), theme.controlBackground()}) {
                for (const QColor& text :
                    {theme.primaryText(), theme.secondaryText(), theme.tertiaryText()})
                    QCOMPARE_GE(contrast(text, ground), 4.5);
            }
            QCOMPARE_GE(contrast(Qt::white, theme.prominentFill()), 4.5);
        }
    }

    void theCurveStaysInItsBox_data()
    {
        QTest::addColumn<QList<double>>("values");
        QTest::newRow("spike") << QList<double> {1, 1, 100, 1, 1};
        QTest::newRow("steps") << QList<double> {0, 0, 0, 10, 10, 10, -10};
        QTest::newRow("flat") << QList<double> {7, 7, 7};
        QTest::newRow("two") << QList<double> {3, 4};
        QTest::newRow("not numbers") << QList<double> {1, qQNaN(), 5, qInf(), 2};
    }
    void theCurveStaysInItsBox()
    {
        QFETCH(QList<double>, values);
        const QRectF box(2, 3, 80, 24);
        const QPainterPath path = ui::smoothCurve(values, box);
        QVERIFY(!path.isEmpty());
        const QRectF bounds = path.boundingRect();
        QVERIFY(bounds.top() > box.top() - 1e-6 && bounds.bottom() < box.bottom() + 1e-6);
        QVERIFY(bounds.left() > box.left() - 1e-6);
        QCOMPARE(path.currentPosition().x(), box.right());
    }

    void theGallery()
    {
        ViewFixture view(u"gallery"_s);
        QCOMPARE(view.problems(), QStringList());
        view.picture(u"gallery"_s);
        QVERIFY(view.texts().contains(view.root().property("name").toString()));
        for (const auto& text : {u"Bordered"_s, u"Prominent"_s, u"Small"_s}) {
            view.click(view.find("text", text));
            QCOMPARE(view.root().property("pressed").toString(), text);
        }
        for (const auto& text : {u"Bordered"_s, u"Prominent"_s, u"Small"_s}) {
            auto* const button = QAccessible::queryAccessibleInterface(view.find("text", text));
            button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QCOMPARE(view.root().property("pressed").toString(), text);
        }
        auto* const toggle
            = QAccessible::queryAccessibleInterface(view.find("text", u"Network Changes"_s));
        toggle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QCOMPARE(view.root().property("pressed").toString(), u"Network Changestrue"_s);
    }
};

NETVANE_TEST(TestComponents)
#include "test_components.moc"
