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
{
    setFonts();
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
    if (std::exchange(m_isDark, isDark) == isDark)
        return;
    setColors(isDark);
    Q_EMIT schemeChanged();
}

void Theme::setColors(bool isDark)
{
    struct Row {
        QColor& color;
        QColor light;
        QColor dark;
    };
    // The text colours and the two backgrounds stand for a platform's semantic colours. Each text
    // colour has a contrast of at least 4.5 to 1 with both backgrounds (WCAG 2.1, 1.4.3), what
    // shows a control one of 3 to 1 (1.4.11).
    for (const auto& [color, light, dark] : {
             Row {m_blue, component(0.2, 0.5, 0.9), component(0.35, 0.65, 0.95)},
             Row {m_green, component(0.2, 0.7, 0.4), component(0.35, 0.8, 0.5)},
             Row {m_orange, component(1.0, 0.6, 0.2), component(1.0, 0.7, 0.3)},
             Row {m_red, component(0.9, 0.3, 0.3), component(0.95, 0.4, 0.4)},
             Row {m_lightBlue, component(0.3, 0.6, 0.9), component(0.4, 0.7, 0.95)},
             Row {m_controlBackground, QColor(0xf4, 0xf4, 0xf7), QColor(0x1c, 0x1c, 0x1f)},
             Row {m_cardBackground, QColor(0xff, 0xff, 0xff), QColor(0x2a, 0x2a, 0x2e)},
             Row {m_separator, QColor(0, 0, 0, 31), QColor(255, 255, 255, 38)},
             Row {m_primaryText, QColor(0x1c, 0x1c, 0x1f), QColor(0xf2, 0xf2, 0xf5)},
             Row {m_secondaryText, QColor(0x58, 0x5a, 0x60), QColor(0xb8, 0xb9, 0xbf)},
             Row {m_tertiaryText, QColor(0x6b, 0x6d, 0x74), QColor(0x9c, 0x9d, 0xa4)},
             Row {m_prominentFill, QColor(0x1f, 0x6a, 0xd0), QColor(0x2f, 0x76, 0xcc)},
             Row {m_fineMark, QColor(0x15, 0x77, 0x3b), QColor(0x5c, 0xcf, 0x85)},
             Row {m_noticeMark, QColor(0x1f, 0x6a, 0xd0), QColor(0x72, 0xb0, 0xf6)},
             Row {m_poorMark, QColor(0x96, 0x58, 0x00), QColor(0xff, 0xb8, 0x54)},
             Row {m_brokenMark, QColor(0xbf, 0x2a, 0x2a), QColor(0xff, 0x86, 0x80)},
             Row {m_outline, QColor(0x86, 0x87, 0x8e), QColor(0x7a, 0x7b, 0x82)},
         })
        color = isDark ? dark : light;
}

void Theme::setFonts()
{
    struct Row {
        QFont& font;
        int pixels;
        QFont::Weight weight;
    };
    const QString family = systemFamily();
    for (const auto& [font, pixels, weight] : {
             Row {m_largeTitle, 28, QFont::Bold},
             Row {m_title, 22, QFont::DemiBold},
             Row {m_title2, 20, QFont::DemiBold},
             Row {m_headline, 17, QFont::DemiBold},
             Row {m_body, 15, QFont::Normal},
             Row {m_bodyEmphasis, 15, QFont::DemiBold},
             Row {m_callout, 13, QFont::Normal},
             Row {m_calloutEmphasis, 13, QFont::DemiBold},
             Row {m_caption, 12, QFont::Normal},
             Row {m_captionEmphasis, 12, QFont::DemiBold},
             Row {m_footnote, 11, QFont::Normal},
             Row {m_footnoteEmphasis, 11, QFont::Medium},
             Row {m_subheadline, 14, QFont::Normal},
             Row {m_subheadlineEmphasis, 14, QFont::Medium},
         }) {
        font = QFont(family);
        font.setPixelSize(pixels);
        font.setWeight(weight);
    }
}

QList<QColor> Theme::accents() const
{
    return {m_blue, m_green, m_orange, m_red, m_lightBlue, m_tertiaryText};
}

QList<QColor> Theme::marks() const
{
    return {m_tertiaryText, m_fineMark, m_noticeMark, m_poorMark, m_brokenMark};
}

} // namespace netvane::ui
