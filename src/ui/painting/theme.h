#pragma once

#include "platform/appearance.h"
#include "ui/state/accent.h"

#include <QColor>
#include <QFont>

class QJSEngine;
class QQmlEngine;

namespace netvane::ui {

/// The palette of colours and fonts of all views. The colours follow the scheme while the program
/// runs. Sizes are in device-independent pixels. Main thread.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor blue MEMBER m_blue NOTIFY schemeChanged)
    Q_PROPERTY(QColor green MEMBER m_green NOTIFY schemeChanged)
    Q_PROPERTY(QColor orange MEMBER m_orange NOTIFY schemeChanged)
    Q_PROPERTY(QColor red MEMBER m_red NOTIFY schemeChanged)
    Q_PROPERTY(QColor lightBlue MEMBER m_lightBlue NOTIFY schemeChanged)
    Q_PROPERTY(QColor controlBackground MEMBER m_controlBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor cardBackground MEMBER m_cardBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor separator MEMBER m_separator NOTIFY schemeChanged)
    Q_PROPERTY(QColor primaryText MEMBER m_primaryText NOTIFY schemeChanged)
    Q_PROPERTY(QColor secondaryText MEMBER m_secondaryText NOTIFY schemeChanged)
    Q_PROPERTY(QColor tertiaryText MEMBER m_tertiaryText NOTIFY schemeChanged)
    /// The background of the prominent button, whose text is white.
    Q_PROPERTY(QColor prominentFill MEMBER m_prominentFill NOTIFY schemeChanged)
    /// The edge of a control, and the groove of a switch that is off.
    Q_PROPERTY(QColor outline MEMBER m_outline NOTIFY schemeChanged)
    /// Indexed by `Accent`, so that a binding on it follows the scheme.
    Q_PROPERTY(QList<QColor> accents READ accents NOTIFY schemeChanged)
    /// Indexed by `Mark`. Each has a contrast of at least 4.5 to 1 with both backgrounds.
    Q_PROPERTY(QList<QColor> marks READ marks NOTIFY schemeChanged)
    Q_PROPERTY(QFont largeTitle MEMBER m_largeTitle CONSTANT)
    Q_PROPERTY(QFont title MEMBER m_title CONSTANT)
    Q_PROPERTY(QFont title2 MEMBER m_title2 CONSTANT)
    Q_PROPERTY(QFont headline MEMBER m_headline CONSTANT)
    Q_PROPERTY(QFont body MEMBER m_body CONSTANT)
    Q_PROPERTY(QFont bodyEmphasis MEMBER m_bodyEmphasis CONSTANT)
    Q_PROPERTY(QFont callout MEMBER m_callout CONSTANT)
    Q_PROPERTY(QFont calloutEmphasis MEMBER m_calloutEmphasis CONSTANT)
    Q_PROPERTY(QFont caption MEMBER m_caption CONSTANT)
    Q_PROPERTY(QFont captionEmphasis MEMBER m_captionEmphasis CONSTANT)
    Q_PROPERTY(QFont footnote MEMBER m_footnote CONSTANT)
    Q_PROPERTY(QFont footnoteEmphasis MEMBER m_footnoteEmphasis CONSTANT)
    Q_PROPERTY(QFont subheadline MEMBER m_subheadline CONSTANT)
    Q_PROPERTY(QFont subheadlineEmphasis MEMBER m_subheadlineEmphasis CONSTANT)

public:
    /// `appearance` outlives the theme.
    explicit Theme(const platform::Appearance& appearance);

    /// The one that `ViewEngine` was given, for the QML engine.
    static Theme* create(QQmlEngine* engine, QJSEngine*);

    QColor controlBackground() const { return m_controlBackground; }
    QList<QColor> accents() const;
    QList<QColor> marks() const;

Q_SIGNALS:
    void schemeChanged();

protected:
    /// The application's palette decides where the desktop tells no scheme.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();
    void setColors(bool isDark);
    void setFonts();

    const platform::Appearance& m_appearance;
    std::optional<bool> m_isDark;
    QColor m_blue, m_green, m_orange, m_red, m_lightBlue;
    QColor m_controlBackground, m_cardBackground, m_separator, m_prominentFill, m_outline;
    QColor m_fineMark, m_noticeMark, m_poorMark, m_brokenMark;
    QColor m_primaryText, m_secondaryText, m_tertiaryText;
    QFont m_largeTitle, m_title, m_title2, m_headline, m_body, m_bodyEmphasis;
    QFont m_callout, m_calloutEmphasis, m_caption, m_captionEmphasis;
    QFont m_footnote, m_footnoteEmphasis, m_subheadline, m_subheadlineEmphasis;
};

} // namespace netvane::ui
