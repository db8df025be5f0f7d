#pragma once

#include "platform/appearance.h"
#include "ui/state/accent.h"

#include <QColor>
#include <QFont>
#include <QObject>
#include <QtQmlIntegration>

class QJSEngine;
class QQmlEngine;

namespace netvane::ui {

/// The program's one palette of colours and fonts. The colours follow the scheme while the program
/// runs. Sizes are in device-independent pixels. Main thread.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY schemeChanged)
    Q_PROPERTY(QColor blue READ blue NOTIFY schemeChanged)
    Q_PROPERTY(QColor green READ green NOTIFY schemeChanged)
    Q_PROPERTY(QColor orange READ orange NOTIFY schemeChanged)
    Q_PROPERTY(QColor red READ red NOTIFY schemeChanged)
    Q_PROPERTY(QColor lightBlue READ lightBlue NOTIFY schemeChanged)
    Q_PROPERTY(QColor controlBackground READ controlBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor cardBackground READ cardBackground NOTIFY schemeChanged)
    Q_PROPERTY(QColor separator READ separator NOTIFY schemeChanged)
    Q_PROPERTY(QColor primaryText READ primaryText NOTIFY schemeChanged)
    Q_PROPERTY(QColor secondaryText READ secondaryText NOTIFY schemeChanged)
    Q_PROPERTY(QColor tertiaryText READ tertiaryText NOTIFY schemeChanged)
    /// Grounds of controls, which the palette of a desktop has as well: the filled button, whose
    /// text is white, and the groove of a switch that is off.
    Q_PROPERTY(QColor prominentFill READ prominentFill NOTIFY schemeChanged)
    Q_PROPERTY(QColor track READ track NOTIFY schemeChanged)
    /// Indexed by `Accent`, so that a binding on it follows the scheme.
    Q_PROPERTY(QList<QColor> accents READ accents NOTIFY schemeChanged)
    Q_PROPERTY(QFont largeTitle READ largeTitle CONSTANT)
    Q_PROPERTY(QFont title READ title CONSTANT)
    Q_PROPERTY(QFont title2 READ title2 CONSTANT)
    Q_PROPERTY(QFont headline READ headline CONSTANT)
    Q_PROPERTY(QFont body READ body CONSTANT)
    Q_PROPERTY(QFont bodyEmphasis READ bodyEmphasis CONSTANT)
    Q_PROPERTY(QFont callout READ callout CONSTANT)
    Q_PROPERTY(QFont calloutEmphasis READ calloutEmphasis CONSTANT)
    Q_PROPERTY(QFont caption READ caption CONSTANT)
    Q_PROPERTY(QFont captionEmphasis READ captionEmphasis CONSTANT)
    Q_PROPERTY(QFont footnote READ footnote CONSTANT)
    Q_PROPERTY(QFont footnoteEmphasis READ footnoteEmphasis CONSTANT)
    Q_PROPERTY(QFont subheadline READ subheadline CONSTANT)
    Q_PROPERTY(QFont subheadlineEmphasis READ subheadlineEmphasis CONSTANT)

public:
    /// `appearance` outlives the theme.
    explicit Theme(const platform::Appearance& appearance);

    /// The one that `ViewEngine` was given, for the QML engine.
    static Theme* create(QQmlEngine* engine, QJSEngine*);

    bool isDark() const { return m_isDark; }
    QColor blue() const;
    QColor green() const;
    QColor orange() const;
    QColor red() const;
    QColor lightBlue() const;
    QColor controlBackground() const;
    QColor cardBackground() const;
    QColor separator() const;
    QColor primaryText() const;
    QColor secondaryText() const;
    QColor tertiaryText() const;
    QColor prominentFill() const;
    QColor track() const;
    QList<QColor> accents() const;

    QFont largeTitle() const;
    QFont title() const;
    QFont title2() const;
    QFont headline() const;
    QFont body() const;
    QFont bodyEmphasis() const;
    QFont callout() const;
    QFont calloutEmphasis() const;
    QFont caption() const;
    QFont captionEmphasis() const;
    QFont footnote() const;
    QFont footnoteEmphasis() const;
    QFont subheadline() const;
    QFont subheadlineEmphasis() const;

Q_SIGNALS:
    void schemeChanged();

protected:
    /// The palette of the application, which stands in where the desktop tells no scheme.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();
    QFont font(int pixels, QFont::Weight weight) const;

    const platform::Appearance& m_appearance;
    QString m_family;
    bool m_isDark = false;
};

} // namespace netvane::ui
