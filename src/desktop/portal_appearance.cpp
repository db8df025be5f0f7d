#include "desktop/portal_appearance.h"

#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace netvane::desktop {
namespace {

const QString kGroup = u"org.freedesktop.appearance"_s;
const QString kKey = u"color-scheme"_s;

} // namespace

PortalAppearance::PortalAppearance(bus::BusLink& sessionBus)
    : m_portal(sessionBus, u"org.freedesktop.portal.Desktop"_s,
        u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s)
{
    connect(&m_portal, &bus::BusService::reachable, this, &PortalAppearance::read);
    connect(&m_portal, &bus::BusService::signalled, this, &PortalAppearance::handleSettingChanged);
    m_portal.listenTo(u"SettingChanged"_s);
    m_portal.begin();
}

void PortalAppearance::read()
{
    // `Read` and not the newer `ReadOne`: all versions have it.
    auto call = m_portal.call(u"Read"_s, {kGroup, kKey});
    // May start the portal: the desktop's own toolkits do, and nothing else tells the scheme.
    call.setAutoStartService(true);
    m_portal.ask(call, [this](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ReplyMessage)
            setScheme(colorSchemeOf(answer.arguments().value(0)));
    });
}

void PortalAppearance::handleSettingChanged(const QDBusMessage& signal)
{
    const QVariantList arguments = signal.arguments();
    if (signal.signature() != "ssv"_L1 || arguments[0] != kGroup || arguments[1] != kKey)
        return;
    m_portal.dropAnswers(); // they are older
    setScheme(colorSchemeOf(arguments[2]));
}

void PortalAppearance::setScheme(platform::ColorScheme scheme)
{
    if (std::exchange(m_scheme, scheme) != scheme)
        Q_EMIT colorSchemeChanged();
}

platform::ColorScheme colorSchemeOf(const QVariant& value)
{
    QVariant inner = value;
    for (int depth = 0; depth < 2 && inner.metaType() == QMetaType::fromType<QDBusVariant>();
         ++depth)
        inner = inner.value<QDBusVariant>().variant();
    if (inner.typeId() != QMetaType::UInt)
        return platform::ColorScheme::NoPreference;
    switch (inner.toUInt()) {
    case 1:
        return platform::ColorScheme::Dark;
    case 2:
        return platform::ColorScheme::Light;
    default:
        return platform::ColorScheme::NoPreference;
    }
}

} // namespace netvane::desktop
