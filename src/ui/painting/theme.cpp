#include "ui/painting/theme.h"

#include "shell/dark_scheme.h"
#include "ui/view_engine.h"

#include <QEvent>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QJSEngine>
#include <QQmlEngine>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

QColor component(double red, double green, double blue)
{
    return QColor::fromRgbF(float(red), float(green), float(blue));
}

/// Inter is drawn for screens; everybody else gets what their desktop uses.
QString systemFamily()
{
    return QFontDatabase::hasFamily(u"Inter"_s)
        ? u"Inter"_s
        : QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

} // namespace

Theme::Theme(const platform::Appearance& appearance)
    : m_appearance(appearance)
    , m_family(systemFamily())
{
    connect(&m_appearance, &platform::Appearance::colorSchemeChanged, this, &Theme::update);
    qGuiApp->installEventFilter(this);
    update();
}

Theme* Theme::create(QQmlEngine* engine, QJSEngine*)
{
    Theme& theme = static_cast<ViewEngine*>(engine)->theme();
    QJSEngine::setObjectOwnership(&theme, QJSEngine::CppOwnership);
    return &theme;
}

bool Theme::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qGuiApp)
        update();
    return QObject::eventFilter(watched, event);
}

void Theme::update()
{
    const bool isDark = shell::isDarkWanted(m_appearance);
    if (std::exchange(m_isDark, isDark) != isDark)
        Q_EMIT schemeChanged();
}

QColor Theme::blue() const
{
    return m_isDark ? component(0.35, 0.65, 0.95) : component(0.2, 0.5, 0.9);
}

QColor Theme::green() const
{
    return m_isDark ? component(0.35, 0.8, 0.5) : component(0.2, 0.7, 0.4);
}

QColor Theme::orange() const
{
    return m_isDark ? component(1.0, 0.7, 0.3) : component(1.0, 0.6, 0.2);
}

QColor Theme::red() const
{
    return m_isDark ? component(0.95, 0.4, 0.4) : component(0.9, 0.3, 0.3);
}

QColor Theme::lightBlue() const
{
    return m_isDark ? component(0.4, 0.7, 0.95) : component(0.3, 0.6, 0.9);
}

// The next six stand for a platform's semantic colours. They are chosen so that each text colour
// has a contrast of at least 4.5 to 1 with both backgrounds (WCAG 2.1, 1.4.3).

QColor Theme::controlBackground() const
{
    return m_isDark ? QColor(0x1c, 0x1c, 0x1f) : QColor(0xf4, 0xf4, 0xf7);
}

QColor Theme::cardBackground() const
{
    return m_isDark ? QColor(0x2a, 0x2a, 0x2e) : QColor(0xff, 0xff, 0xff);
}

QColor Theme::separator() const
{
    return m_isDark ? QColor(255, 255, 255, 38) : QColor(0, 0, 0, 31);
}

QColor Theme::primaryText() const
{
    return m_isDark ? QColor(0xf2, 0xf2, 0xf5) : QColor(0x1c, 0x1c, 0x1f);
}

QColor Theme::secondaryText() const
{
    return m_isDark ? QColor(0xb8, 0xb9, 0xbf) : QColor(0x58, 0x5a, 0x60);
}

QColor Theme::tertiaryText() const
{
    return m_isDark ? QColor(0x9c, 0x9d, 0xa4) : QColor(0x6b, 0x6d, 0x74);
}

QColor Theme::prominentFill() const
{
    return m_isDark ? QColor(0x2a, 0x6f, 0xc4) : QColor(0x1f, 0x6a, 0xd0);
}

QColor Theme::track() const
{
    return m_isDark ? QColor(255, 255, 255, 64) : QColor(0, 0, 0, 56);
}

QList<QColor> Theme::accents() const
{
    return {blue(), green(), orange(), red(), lightBlue(), tertiaryText()};
}

QFont Theme::font(int pixels, QFont::Weight weight) const
{
    QFont font(m_family);
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

QFont Theme::largeTitle() const
{
    return font(28, QFont::Bold);
}

QFont Theme::title() const
{
    return font(22, QFont::DemiBold);
}

QFont Theme::title2() const
{
    return font(20, QFont::DemiBold);
}

QFont Theme::headline() const
{
    return font(17, QFont::DemiBold);
}

QFont Theme::body() const
{
    return font(15, QFont::Normal);
}

QFont Theme::bodyEmphasis() const
{
    return font(15, QFont::DemiBold);
}

QFont Theme::callout() const
{
    return font(13, QFont::Normal);
}

QFont Theme::calloutEmphasis() const
{
    return font(13, QFont::DemiBold);
}

QFont Theme::caption() const
{
    return font(12, QFont::Normal);
}

QFont Theme::captionEmphasis() const
{
    return font(12, QFont::DemiBold);
}

QFont Theme::footnote() const
{
    return font(11, QFont::Normal);
}

QFont Theme::footnoteEmphasis() const
{
    return font(11, QFont::Medium);
}

QFont Theme::subheadline() const
{
    return font(14, QFont::Normal);
}

QFont Theme::subheadlineEmphasis() const
{
    return font(14, QFont::Medium);
}

} // namespace netvane::ui
