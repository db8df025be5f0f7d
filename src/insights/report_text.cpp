#include "insights/report_text.h"

#include "base/decimal_text.h"
#include "base/visible_text.h"
#include "insights/markdown_name.h"
#include "insights/support_address.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace netvane::insights {
namespace {

const QString kNoData = u"\n- No data available"_s;

QString oneDecimal(double value)
{
    return base::fixedDecimal(value, 1);
}

QString valueOr(std::optional<double> value, const QString& unit, const QString& absent)
{
    return value ? oneDecimal(*value) + unit : absent;
}

QString dbmOrUnknown(std::optional<int> dbm)
{
    return dbm ? QString::number(*dbm) + u" dBm"_s : u"Unknown"_s;
}

/// A line; empty without a value.
QString line(const QString& label, std::optional<int> value, const QString& unit = {})
{
    return value ? u"\n- "_s + label + u": "_s + QString::number(*value) + unit : QString();
}

QString line(const QString& label, std::optional<double> value, const QString& unit)
{
    return value ? u"\n- "_s + label + u": "_s + oneDecimal(*value) + unit : QString();
}

QString networkName(const ReportInputs& inputs)
{
    const auto& name = inputs.wifi->ssid;
    if (!name)
        return u"Unknown (Location permission needed)"_s;
    return inputs.isRedacted ? *name : markdownName(*name);
}

/// From a file that a network may have had a hand in.
QString serverText(const QString& server, bool isRedacted)
{
    static const QRegularExpression s_address(u"^[0-9A-Fa-f.:]+(?:%[0-9A-Za-z.-]+)?$"_s);
    if (isRedacted || s_address.match(server).hasMatch())
        return server;
    return markdownName(base::withVisibleControls(server));
}

QString networkSection(const ReportInputs& inputs)
{
    const auto& info = inputs.wifi;
    if (!info)
        return u"\n- Status: Not Connected"_s;
    return u"\n- SSID: "_s + networkName(inputs) //
        + u"\n- Frequency: "_s + displayName(info->frequency) //
        + u"\n- Signal Strength: "_s + dbmOrUnknown(info->signalStrength) //
        + u"\n- Signal Quality: "_s + caseName(info->signalQuality()) //
        + u"\n- Noise Level: "_s + dbmOrUnknown(info->noise)
        + line(u"Link Rate"_s, info->linkRate, u" Mbps"_s) //
        + line(u"MCS Index"_s, info->mcsIndex)
        + line(u"Channel Width"_s, info->channelWidth, u" MHz"_s) //
        + u"\n- PHY Mode: "_s + info->phyMode();
}

QString latencySection(const std::optional<probes::NetworkMetrics>& metrics)
{
    if (!metrics)
        return kNoData;
    return u"\n- Ping: "_s + valueOr(metrics->ping, u" ms"_s, u"N/A"_s) //
        + u"\n- Jitter: "_s + valueOr(metrics->jitter, u" ms"_s, u"N/A"_s) + u"\n- Packet Loss: "_s
        + valueOr(metrics->packetLoss, u"%"_s, u"N/A"_s);
}

QString mosLine(const std::optional<probes::NetworkMetrics>& metrics)
{
    const auto score = metrics ? metrics->mosScore() : std::nullopt;
    if (!score)
        return {};
    return u"\n- MOS Score: "_s + oneDecimal(*score) + u" / 5.0 ("_s + metrics->mosQuality() + u')';
}

QString dnsSection(const ReportInputs& inputs)
{
    QString text = u"\n- Lookup Time: "_s + valueOr(inputs.dnsLookupTime, u" ms"_s, u"N/A"_s);
    if (inputs.dnsServer)
        text += u"\n- DNS Server: "_s + serverText(*inputs.dnsServer, inputs.isRedacted);
    return text;
}

QString lagLine(const diagnostics::SpeedTestResult& test)
{
    const auto rise = test.riseUnderLoad();
    if (!rise)
        return {};
    return u"\n- Lag Under Load: Detected (ping increased "_s + oneDecimal(*rise) + u"x)"_s;
}

QString speedSection(const std::optional<diagnostics::SpeedTestResult>& test)
{
    if (!test)
        return {};
    return u"\n\n## Speed Test"_s + line(u"Download"_s, test->downloadSpeed, u" Mbps"_s)
        + line(u"Upload"_s, test->uploadSpeed, u" Mbps"_s)
        + line(u"Ping Before"_s, test->pingBefore, u" ms"_s)
        + line(u"Ping During"_s, test->pingDuring, u" ms"_s) + lagLine(*test);
}

/// A format of QLocale without one of its fields. Quoted parts of a format are literal text.
QString without(const QRegularExpression& field, const QString& format)
{
    QStringList parts = format.split(u'\'');
    for (qsizetype i = 0; i < parts.size(); i += 2)
        parts[i].replace(field, u" "_s);
    return parts.join(u'\'').trimmed();
}

/// The separator of date and time. Qt has no word for it in other languages, and a space is correct
/// in all of them.
QString dateTimeSeparator(const QLocale& locale)
{
    const auto language = locale.language();
    return language == QLocale::English || language == QLocale::C ? u" at "_s : u" "_s;
}

} // namespace

QString supportAddress()
{
    return QString::fromUtf16(kConfiguredSupportAddress);
}

QString longDateMediumTime(const QDateTime& time, const QLocale& locale)
{
    static const QRegularExpression s_weekday(u"[\\s,،、]*dddd?(?!d)[\\s,،、]*"_s);
    static const QRegularExpression s_timeZone(u"\\s*[(（]?t+[)）]?\\s*"_s);
    const QString date = without(s_weekday, locale.dateFormat(QLocale::LongFormat));
    const QString clock = without(s_timeZone, locale.timeFormat(QLocale::LongFormat));
    QString text = locale.toString(time.date(), date) + dateTimeSeparator(locale)
        + locale.toString(time.time(), clock);
    // Newer versions of Qt use narrow no-break spaces.
    return text.replace(QChar(0x202F), u' ');
}

QString reportText(const ReportInputs& inputs, const QDateTime& now, const QLocale& locale)
{
    return u"# Netvane Diagnostic Report\nGenerated: "_s + longDateMediumTime(now, locale)
        + u"\n\n## Network Information"_s + networkSection(inputs) + u"\n\n## Router Performance"_s
        + latencySection(inputs.router) + u"\n\n## Internet Performance"_s
        + latencySection(inputs.internet) + mosLine(inputs.internet) + u"\n\n## DNS Performance"_s
        + dnsSection(inputs) + speedSection(inputs.speedTest) + u"\n\n---\n"_s
        + u"Report generated by Netvane\n"_s + u"For support, visit: "_s + supportAddress();
}

} // namespace netvane::insights
