#pragma once

#include "timeline/source.h"
#include "ui/verdict/verdict_details.h"

#include <QObject>
#include <QtQmlIntegration>

namespace netvane::ui {

/// An hour of the week.
struct HourCell {
    Q_GADGET
    QML_VALUE_TYPE(hourCell)
    Q_PROPERTY(bool isKnown MEMBER isKnown)
    /// How dark it is, 0 to 1.
    Q_PROPERTY(qreal strength MEMBER strength)
    /// How many of 100 minutes were bad; empty below one.
    Q_PROPERTY(QString number MEMBER number)
    Q_PROPERTY(QString text MEMBER text)

public:
    bool isKnown = false;
    double strength = 0;
    QString number;
    QString text;

    bool operator==(const HourCell&) const = default;
};

/// What the last 30 days sum up to: bad hours, outages, the page for the provider; and what is
/// kept of it at all. Main thread.
class HistoryPages : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by its window")
    Q_PROPERTY(QString badHours MEMBER m_badHours NOTIFY changed)
    /// 7 days of 24 hours, or none.
    Q_PROPERTY(QList<netvane::ui::HourCell> hours MEMBER m_hours NOTIFY changed)
    Q_PROPERTY(QString outageSummary MEMBER m_outageSummary NOTIFY changed)
    /// Newest first.
    Q_PROPERTY(QList<netvane::ui::DetailRow> outages MEMBER m_outages NOTIFY changed)
    /// What came of saving a page; may be empty.
    Q_PROPERTY(QString saved MEMBER m_saved NOTIFY savedChanged)
    Q_PROPERTY(bool isRecording READ isRecording WRITE setRecording NOTIFY isRecordingChanged)
    Q_PROPERTY(bool canRecord READ canRecord CONSTANT)
    /// The current network's name; may be empty.
    Q_PROPERTY(QString network READ network NOTIFY changed)
    Q_PROPERTY(bool hasNetwork READ hasNetwork NOTIFY changed)
    /// What was forgotten; empty before that.
    Q_PROPERTY(QString forgotten MEMBER m_forgotten NOTIFY forgottenChanged)

public:
    /// All services exist and outlive this.
    HistoryPages(const services::Services& services, std::shared_ptr<timeline::Source> source);

    bool canRecord() const { return m_source->canRecord(); }
    bool isRecording() const { return m_source->isRecording(); }
    void setRecording(bool isRecording);
    QString network() const;
    bool hasNetwork() const { return m_source->network().has_value(); }

    /// Reads everything anew, in the background.
    void load();

    Q_INVOKABLE void savePdf();
    Q_INVOKABLE void saveMarkdown();
    Q_INVOKABLE void forgetNetwork();
    Q_INVOKABLE void forgetEverything();

Q_SIGNALS:
    void changed();
    void savedChanged();
    void isRecordingChanged();
    void forgottenChanged();
    /// Something was forgotten, so what is drawn is old.
    void historyChanged();

private:
    void forget(void (timeline::Source::*what)(), const QString& said);
    void take(const timeline::ProviderFacts& facts);
    void save(const QString& ending, QByteArray (*made)(const QString& page));

    const services::Services& m_services;
    const std::shared_ptr<timeline::Source> m_source;
    timeline::ProviderFacts m_facts;
    QString m_badHours;
    QList<HourCell> m_hours;
    QString m_outageSummary;
    QList<DetailRow> m_outages;
    QString m_saved;
    QString m_forgotten;
};

} // namespace netvane::ui
