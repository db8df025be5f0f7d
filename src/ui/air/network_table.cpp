#include "ui/air/network_table.h"

#include "air/link_words.h"
#include "ui/state/relative_time.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace netvane::ui {
namespace {

using platform::AirNetwork;
using Column = NetworkTable::Column;

const QString kUnknown = u"–"_s;

QString orUnknown(const QString& text)
{
    return text.isEmpty() ? kUnknown : text;
}

QString numberText(const std::optional<int>& number)
{
    return number ? QString::number(*number) : kUnknown;
}

/// 6 GHz has the numbers of the other bands.
QString channelText(const AirNetwork& network)
{
    const auto channel
        = network.span ? platform::channelOf(network.span->primaryMhz) : std::nullopt;
    if (!channel)
        return kUnknown;
    return channel->band == platform::ChannelBand::SixGHz ? u"%1 (6 GHz)"_s.arg(channel->number)
                                                          : QString::number(channel->number);
}

QString securityOf(const AirNetwork& network)
{
    return network.security ? air::securityText(*network.security) : QString();
}

std::optional<int> widthOf(const AirNetwork& network)
{
    return network.span ? network.span->widthMhz : std::nullopt;
}

std::optional<int> loadOf(const AirNetwork& network)
{
    return network.utilization ? std::optional(int(std::lround(*network.utilization * 100)))
                               : std::nullopt;
}

NetworkRow rowOf(const AirNetwork& network)
{
    NetworkRow row {
        {network.ssid.value_or(u"(hidden)"_s), network.bssid.value_or(kUnknown),
            channelText(network), numberText(widthOf(network)), numberText(network.signalDbm),
            numberText(loadOf(network)), orUnknown(securityOf(network)),
            network.age ? relativeTime(*network.age) : kUnknown},
        network.isOurs, {}};
    const auto columns = NetworkTable::columns();
    QStringList said;
    for (int column = 0; column < columns.size(); ++column) {
        if (row.cells.at(column) != kUnknown)
            said.append(columns.at(column) + u' ' + row.cells.at(column));
    }
    if (network.isOurs)
        said.prepend(u"In use"_s);
    row.summary = said.join(u", "_s);
    return row;
}

/// Of the columns with numbers; what is not known comes before all others.
double valueOf(const AirNetwork& network, int column)
{
    const auto orLeast = [](const auto& value) {
        return value ? double(*value) : std::numeric_limits<double>::lowest();
    };
    switch (column) {
    case Column::Channel:
        return network.span ? double(network.span->primaryMhz) : orLeast(std::optional<int>());
    case Column::Width:
        return orLeast(widthOf(network));
    case Column::Signal:
        return orLeast(network.signalDbm);
    case Column::Load:
        return orLeast(loadOf(network));
    case Column::LastSeen:
        return network.age ? double(network.age->count()) : orLeast(std::optional<int>());
    default:
        return 0;
    }
}

/// Below, equal (0) or above.
int compare(const AirNetwork& one, const AirNetwork& other, int column)
{
    const double before = valueOf(one, column);
    const double after = valueOf(other, column);
    if (before != after)
        return before < after ? -1 : 1;
    const auto textOf = [column](const AirNetwork& network) {
        return column == Column::Security ? securityOf(network)
            : column == Column::Bssid     ? network.bssid.value_or(QString())
            : column == Column::Name      ? network.ssid.value_or(QString())
                                          : QString();
    };
    return QString::compare(textOf(one), textOf(other), Qt::CaseInsensitive);
}

} // namespace

QStringList NetworkTable::columns()
{
    return {u"Name"_s, u"BSSID"_s, u"Channel"_s, u"MHz"_s, u"dBm"_s, u"Load %"_s, u"Security"_s,
        u"Last seen"_s};
}

void NetworkTable::setFilter(const QString& filter)
{
    if (m_filter == filter)
        return;
    m_filter = filter;
    Q_EMIT filterChanged();
    update();
}

void NetworkTable::sortBy(int column)
{
    if (column < 0 || column >= columns().size())
        return;
    // Of a signal or a load the highest is looked for first.
    const bool isBestHigh = column == Signal || column == Load || column == Width;
    m_isDescending = column == m_sortedBy ? !m_isDescending : isBestHigh;
    m_sortedBy = column;
    Q_EMIT orderChanged();
    update();
}

void NetworkTable::show(const std::vector<AirNetwork>& networks)
{
    m_networks = networks;
    update();
}

void NetworkTable::update()
{
    std::stable_sort(m_networks.begin(), m_networks.end(),
        [this](const AirNetwork& one, const AirNetwork& other) {
            const int order = compare(one, other, m_sortedBy);
            return m_isDescending ? order > 0 : order < 0;
        });
    QList<NetworkRow> rows;
    for (const auto& network : m_networks) {
        auto row = rowOf(network);
        if (row.cells.join(u'\n').contains(m_filter, Qt::CaseInsensitive))
            rows.append(std::move(row));
    }
    if (rows == m_rows)
        return;
    const bool isOtherCount = rows.size() != m_rows.size();
    m_rows = std::move(rows);
    Q_EMIT rowsChanged();
    if (isOtherCount)
        Q_EMIT countChanged();
}

} // namespace netvane::ui
