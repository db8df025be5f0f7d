#pragma once

#include "base/clock.h"
#include "ui/state/accent.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQmlIntegration>

#include <memory>

namespace netvane::services {
struct Services;
} // namespace netvane::services

namespace netvane::ui {

/// One link of the chain from this computer to the internet, as it is drawn.
class ChainItem {
    Q_GADGET
    QML_VALUE_TYPE(chainItem)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString word MEMBER word)
    Q_PROPERTY(QString figure MEMBER figure) ///< may be empty
    Q_PROPERTY(QString symbol MEMBER symbol) ///< of its state
    Q_PROPERTY(netvane::ui::accent::Value accent MEMBER accent)
    Q_PROPERTY(bool isBroken MEMBER isBroken)
    Q_PROPERTY(bool isReached MEMBER isReached)

public:
    QString name, word, figure, symbol;
    Accent accent = accent::Tertiary;
    bool isBroken = false;
    bool isReached = true;

    bool operator==(const ChainItem&) const = default;
};

/// Who is to blame, for the strip above the dashboard and for the window "What is wrong?". The
/// strip follows each new verdict; the rest only while `isShown`. Main thread.
class VerdictState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(QString sentence READ sentence NOTIFY verdictChanged)
    Q_PROPERTY(QString advice READ advice NOTIFY verdictChanged)
    /// Their shapes differ: nobody has to tell colours apart.
    Q_PROPERTY(QString symbol READ symbol NOTIFY verdictChanged)
    Q_PROPERTY(netvane::ui::accent::Value accent READ accent NOTIFY verdictChanged)
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY isShownChanged)
    Q_PROPERTY(QString since MEMBER m_since NOTIFY detailsChanged)
    Q_PROPERTY(QList<netvane::ui::ChainItem> chain MEMBER m_chain NOTIFY detailsChanged)
    Q_PROPERTY(QStringList evidence MEMBER m_evidence NOTIFY detailsChanged)
    Q_PROPERTY(QStringList others MEMBER m_others NOTIFY detailsChanged)
    Q_PROPERTY(QString copyLabel MEMBER m_copyLabel NOTIFY copyLabelChanged)

public:
    /// All services exist and outlive this.
    explicit VerdictState(const services::Services& services);

    QString sentence() const;
    QString advice() const;
    QString symbol() const;
    Accent accent() const;
    bool isShown() const { return m_isShown; }
    void setShown(bool isShown);

    /// Asks for the window "What is wrong?".
    Q_INVOKABLE void openDetails() { Q_EMIT detailsRequested(); }
    /// Puts all of it into the clipboard, as plain text.
    Q_INVOKABLE void copy();

Q_SIGNALS:
    void verdictChanged();
    void isShownChanged();
    void detailsChanged();
    void copyLabelChanged();
    void detailsRequested();

private:
    void updateDetails();
    QString wholeText() const;

    const services::Services& m_services;
    bool m_isShown = false;
    QString m_since;
    QList<ChainItem> m_chain;
    QStringList m_evidence, m_others;
    QString m_copyLabel = QStringLiteral("Copy");
    std::unique_ptr<base::Timer> m_copied;
};

} // namespace netvane::ui
