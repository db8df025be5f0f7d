#include "demo/script.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace netvane::demo {
namespace {

using platform::ChannelBand;

const QString kHomeName = u"Harbour Lane"_s;

platform::LinkReading link(const QString& name, ChannelBand band, int channel)
{
    return {.ssid = name,
        .band = band,
        .channel = platform::WiFiChannel {channel, band},
        .interfaceName = u"wlan0"_s};
}

/// Near the access point of the living room.
Scene home(const QString& name = u"home"_s, const QString& title = u"at home, all is well"_s)
{
    return {.name = name,
        .title = title,
        .link = link(kHomeName, ChannelBand::FiveGHz, 36),
        .signalDbm = {-51, -52, -50, -49, -51, -53, -52, -50, -48, -49, -51, -54, -52, -50, -51,
            -49, -47, -50, -52, -53, -51, -50, -49},
        .noiseDbm = {-94, -95, -94, -93, -94, -95, -95, -94, -93, -94, -94},
        .rateMbps = {866, 866, 866, 780, 866, 866, 866, 866, 780, 650, 780, 866, 866, 866, 866, 780,
            866, 866, 866},
        .routerTimes = {2.1, 2.4, 1.9, 2.2, 3.0, 2.3, 2.0, 2.6, 2.2, 2.1, 2.5},
        .providerTimes = {8.7, 9.4, 8.2, 10.1, 8.9},
        .internetTimes = {13.8, 14.6, 13.2, 15.9, 14.1, 13.6, 14.9, 16.8, 14.3, 13.9, 14.4},
        .timeUnderLoad = 3.5,
        .lookupTime = 18'400us,
        .downloadMbps = 238.6,
        .uploadMbps = 41.8,
        .router = u"192.168.1.1"_s,
        .dnsServers = {u"192.168.1.1"_s}};
}

/// On the way upstairs, still with the access point below.
Scene leaving()
{
    Scene scene = home(u"leaving"_s, u"walking away from the access point"_s);
    scene.duration = 30s;
    scene.signalDbm = {-57, -61, -64, -68, -72, -75, -77};
    scene.rateMbps = {780, 585, 520, 390, 263, 175, 117};
    scene.routerTimes = {3.4, 4.8, 4.1, 6.9, 9.3, 8.2, 14.6, 11.9, 21.7, 18.2};
    scene.internetTimes = {15.9, 17.2, 16.4, 21.8, 24.6, 22.3, 31.5, 27.4, 44.8, 36.1};
    scene.downloadMbps = 74.3;
    scene.uploadMbps = 22.6;
    return scene;
}

/// The access point upstairs took over, on the other band.
Scene upstairs()
{
    Scene scene = home(u"upstairs"_s, u"taken over by the access point upstairs"_s);
    scene.link = link(kHomeName, ChannelBand::TwoGHz, 6);
    scene.signalDbm = {-58, -56, -57, -55, -56, -58, -57};
    scene.noiseDbm = {-88, -89, -88, -87, -88};
    scene.rateMbps = {130, 144, 130, 144, 117, 130, 144};
    scene.routerTimes = {4.9, 5.6, 4.4, 7.8, 5.1, 6.3, 4.7, 9.2, 5.5};
    scene.internetTimes = {18.2, 17.6, 21.4, 18.9, 17.1, 24.6, 19.3, 18.0, 22.7};
    scene.timeUnderLoad = 11;
    scene.downloadMbps = 58.9;
    scene.uploadMbps = 27.4;
    return scene;
}

/// In the garden: hardly any signal, slow, and every seventh packet is lost.
Scene weak()
{
    Scene scene = home(u"weak"_s, u"a weak link"_s);
    scene.link = link(kHomeName, ChannelBand::TwoGHz, 6);
    scene.signalDbm = {-81, -83, -80, -84, -82, -85, -83, -81, -84};
    scene.noiseDbm = {-87, -86, -88, -87, -85, -86, -87, -88, -87};
    scene.rateMbps = {13, 6.5, 19.5, 6.5, 13, 6.5, 13, 19.5, 6.5, 26, 13, 19.5, 13};
    scene.routerTimes = {38.4, 71.2, 45.9, {}, 112.6, 64.3, 52.8, 141.7, {}, 88.1, 57.4};
    scene.failedPercent = 12;
    scene.providerTimes = {48.2, 79.6, {}, 61.3, 121.8, 72.4, {}, 96.7};
    scene.internetTimes = {62.5, 97.8, {}, 74.1, 158.3, 91.6, 80.2, {}, 171.9, 116.4, 83.7};
    scene.timeUnderLoad = 180;
    scene.lookupTime = 96'400us;
    scene.downloadMbps = 4.7;
    scene.uploadMbps = 1.9;
    return scene;
}

/// A good link with a page before the internet that wants to be accepted.
Scene cafe()
{
    return {.name = u"cafe"_s,
        .title = u"a café that wants a log-in"_s,
        .link = link(u"Café Meridian Guest"_s, ChannelBand::FiveGHz, 44),
        .signalDbm = {-62, -63, -61, -64, -63, -62, -65},
        .noiseDbm = {-91, -90, -91, -92, -91, -90, -91, -92, -93},
        .rateMbps = {260, 234, 260, 195, 234, 260, 234, 175, 195, 234, 260},
        .routerTimes = {6.4, 8.1, 7.2, 9.6, 6.9, 7.8, 12.3, 8.4, 7.1},
        .timeUnderLoad = 60,
        .lookupTime = 31'400us,
        .portal = QUrl(u"https://login.cafe-meridian.example/welcome"_s),
        .downloadMbps = 9.6,
        .uploadMbps = 3.1,
        .router = u"10.20.0.1"_s,
        .dnsServers = {u"10.20.0.1"_s}};
}

/// 6 GHz, a name server of its own, and a tunnel.
Scene office()
{
    return {.name = u"office"_s,
        .title = u"an office on 6 GHz, through a tunnel"_s,
        .link = link(u"Northwind Office"_s, ChannelBand::SixGHz, 37),
        .signalDbm = {-55, -54, -56, -55, -57, -54, -55},
        .noiseDbm = {-95, -95, -96, -95, -94, -95, -96, -96, -95, -95, -94},
        .rateMbps = {1921, 2161, 2161, 2161, 1921, 1729, 1921, 2161, 2161, 2402, 2161, 2161, 1921},
        .routerTimes = {1.4, 1.6, 1.3, 1.9, 1.5, 1.4, 2.2, 1.5, 1.3},
        .providerTimes = {4.8, 5.6, 4.3, 6.1},
        .internetTimes = {26.3, 27.1, 25.9, 29.4, 26.8, 26.1, 31.2, 27.6, 26.4},
        .timeUnderLoad = 2,
        .lookupTime = 9'400us,
        .downloadMbps = 512.4,
        .uploadMbps = 388.1,
        .router = u"192.0.2.1"_s,
        .dnsServers = {u"192.0.2.53"_s, u"192.0.2.54"_s},
        .interfaces = {u"lo"_s, u"wlan0"_s, u"ipsec0"_s}};
}

/// The router has crashed.
Scene routerDead()
{
    Scene scene = home(u"router-dead"_s, u"the router does not answer any more"_s);
    scene.routerTimes.clear();
    scene.providerTimes.clear();
    scene.internetTimes.clear();
    scene.lookupTime.reset();
    return scene;
}

/// Home and its router are fine; the provider is not.
Scene lineDown()
{
    Scene scene = routerDead();
    scene.name = u"line-down"_s;
    scene.title = u"the line to the provider is down"_s;
    scene.routerTimes = home().routerTimes;
    return scene;
}

/// The internet is there, but the router resolves no names.
Scene dnsDead()
{
    Scene scene = home(u"dns-dead"_s, u"the name server does not answer any more"_s);
    scene.lookupTime.reset();
    return scene;
}

/// By cable, with the radio switched off.
Scene cable()
{
    Scene scene = home(u"off"_s, u"Wi-Fi switched off, on a cable"_s);
    scene.duration = 30s;
    scene.hasRadio = false;
    scene.link = {};
    scene.routerTimes = {0.6, 0.7, 0.5, 0.6, 0.8, 0.6, 0.5};
    scene.interfaces.append(u"eth0"_s);
    return scene;
}

Scene withoutPermission()
{
    Scene scene = home(u"permission"_s, u"the permission is missing"_s);
    scene.duration = 0s;
    scene.link.ssid.reset();
    scene.permission = platform::AuthorizationStatus::Denied;
    return scene;
}

Scene firstStart()
{
    Scene scene = home(u"first-start"_s, u"the first start"_s);
    scene.duration = 0s;
    scene.isIntroduced = false;
    return scene;
}

} // namespace

std::vector<Scene> scenes()
{
    return {home(), leaving(), upstairs(), weak(), cafe(), office(), routerDead(), lineDown(),
        dnsDead(), cable(), withoutPermission(), firstStart()};
}

/// A house of flats: a few own channels, and everybody else's on 1, 6 and 11.
std::vector<platform::NearbyNetwork> nearbyNetworks()
{
    struct Row {
        QStringView name; ///< empty: hidden
        int channel;
        ChannelBand band;
        int signalDbm;
    };
    constexpr auto two = ChannelBand::TwoGHz;
    constexpr auto five = ChannelBand::FiveGHz;
    constexpr auto six = ChannelBand::SixGHz;
    static constexpr Row kRows[] = {{u"Harbour Lane", 36, five, -51},
        {u"Harbour Lane", 6, two, -58}, {u"Harbour Lane", 37, six, -63},
        {u"Birch & Sons", 1, two, -61}, {u"Attic", 1, two, -66}, {u"Flat 4b", 1, two, -70},
        {{}, 1, two, -74}, {u"printer-9a41", 1, two, -77}, {u"Solveig", 1, two, -83},
        {u"Third floor", 3, two, -79}, {u"kitchen radio", 6, two, -64}, {u"Okonkwo", 6, two, -69},
        {u"Nordlys", 6, two, -72}, {{}, 6, two, -75}, {u"Flat 2a", 6, two, -80},
        {u"Casa Lima", 6, two, -82}, {u"guest-of-5c", 6, two, -86}, {u"Birch guests", 9, two, -81},
        {u"Moreau", 11, two, -67}, {u"Petrov home", 11, two, -73}, {u"Teahouse", 11, two, -76},
        {u"Flat 6c", 11, two, -84}, {u"Birch & Sons", 36, five, -68}, {u"Okonkwo", 36, five, -78},
        {u"Moreau", 44, five, -71}, {u"Nordlys", 44, five, -80}, {u"Casa Lima", 52, five, -82},
        {u"Flat 4b", 100, five, -77}, {u"Teahouse", 100, five, -85}, {u"Solveig", 149, five, -88},
        {u"Petrov home", 5, six, -79}};
    std::vector<platform::NearbyNetwork> networks;
    for (const auto& row : kRows) {
        networks.push_back({.ssid
            = row.name.isEmpty() ? std::nullopt : std::optional(row.name.toString()),
            .bssid = QString::asprintf("02:00:00:00:%02x:%02x", row.channel, int(networks.size())),
            .channel = platform::WiFiChannel {row.channel, row.band},
            .signalDbm = row.signalDbm});
    }
    return networks;
}

std::vector<Hop> hops()
{
    return {{u"192.168.1.1"_s, 2.2}, {u"198.51.100.1"_s, 8.7}, {}, {u"198.51.100.66"_s, 10.4},
        {u"203.0.113.9"_s, 11.8}, {u"203.0.113.130"_s, 13.5}};
}

std::vector<diagnostics::SpeedTestResult> earlierSpeedTests(
    std::chrono::system_clock::time_point now)
{
    const auto test = [now](std::chrono::minutes ago, double down, double up) {
        return diagnostics::SpeedTestResult {
            .id = QUuid::createUuidV5(QUuid(), QString::number(ago.count())),
            .timestamp = std::chrono::floor<std::chrono::seconds>(now) - ago,
            .downloadSpeed = down,
            .uploadSpeed = up,
            .pingBefore = 2.3,
            .pingDuring = 4.1,
            .pingAfter = 2.4};
    };
    return {test(47min, 231.9, 40.6), test(5h, 96.4, 39.2), test(27h, 242.7, 42.1)};
}

} // namespace netvane::demo
