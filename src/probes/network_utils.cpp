#include "probes/network_utils.h"

#include "base/background_work.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace netvane::probes {

void NetworkUtils::getDefaultGateway(
    QObject* context, std::function<void(std::optional<QString>)> completion) const
{
    base::runInBackground(
        m_userInitiated, context,
        [configuration = &m_configuration] { return configuration->defaultRouter(); },
        std::move(completion));
}

void NetworkUtils::followDefaultGateway(platform::RouteMonitor& routes, QObject* context,
    std::function<void(const std::optional<QString>&)> take) const
{
    const auto read = [this, context, take = std::move(take), last = std::make_shared<int>(0)] {
        getDefaultGateway(
            context, [take, last, number = ++*last](const std::optional<QString>& gateway) {
                if (number == *last)
                    take(gateway);
            });
    };
    QObject::connect(&routes, &platform::RouteMonitor::routesChanged, context, read);
    read();
}

bool isVPNActive(platform::NetworkConfiguration& configuration)
{
    const QStringList names = configuration.interfaceNames();
    return std::ranges::any_of(
        names, [](const QString& name) { return name.startsWith(u"ipsec"_s); });
}

} // namespace netvane::probes
