"""The link to one access point after another, with wpa_supplicant alone: no NetworkManager, no
system bus."""
from watcher import AUTHORIZED, Watcher, agrees_with_iw, becomes
from world import AWKWARD, HOME, HOME_5_GHZ, HOME_6_GHZ, shown


def start(report, _world, watchers):
    for user in ('unprivileged', 'root'):
        watcher = Watcher(user, f'link_{user}.log')
        watchers.append(watcher)
        report.check(f'says that it is ready ({user})', watcher.first, {'event': 'ready'})


def associated(report, world, watchers):
    world.join(HOME)
    becomes(report, 'authorised without a system bus', watchers, AUTHORIZED)
    agrees_with_iw(report, 'link as iw reads it', watchers)
    agrees_with_iw(report, 'link as iw reads it, after traffic', watchers, world, HOME.phy)


def roaming(report, world, watchers):
    world.join(HOME)
    for network in (HOME_5_GHZ, HOME_6_GHZ, HOME):
        world.join(network)
        name = shown(network.ssid)
        want = {'ssid': name, 'band': network.band, 'signal': network.dbm, 'error': None}
        becomes(report, f'roamed to {name}', watchers, want)
        agrees_with_iw(report, f'roamed to {name}', watchers, world, network.phy)


def awkward_name(report, world, watchers):
    world.join(AWKWARD)
    want = {'ssid': '<b>ne\\xffv\N{GRINNING FACE}', 'signal': AWKWARD.dbm, 'error': None}
    becomes(report, 'a name of awkward bytes', watchers, want)
    agrees_with_iw(report, 'a name of awkward bytes', watchers)


SCENARIOS = (associated, roaming, awkward_name)
