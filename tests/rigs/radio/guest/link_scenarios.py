"""The link to one access point after another, with wpa_supplicant alone: no NetworkManager, no
system bus."""
from iw_reading import iw
from watcher import AUTHORIZED, LOST, UNREADABLE, Watcher, agrees_with_iw, becomes
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


def signal(report, world, watchers):
    world.join(HOME)
    for dbm in (-80, -33, HOME.dbm):
        world.do('heard_at', HOME.phy, dbm)
        want = {'signal': dbm, 'ssid': shown(HOME.ssid)}
        becomes(report, f'signal follows to {dbm} dBm', watchers, want)


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


def not_associated(report, world, watchers):
    world.leave()
    becomes(report, 'left the network', watchers, LOST | AUTHORIZED | {'error': UNREADABLE})


def out_of_range(report, world, watchers):
    world.join(HOME)
    becomes(report, 'before the link is lost', watchers, {'ssid': shown(HOME.ssid), 'error': None})
    world.do('out_of_range', HOME.phy)
    becomes(report, 'out of range', watchers, LOST | {'error': UNREADABLE})
    link = iw('dev', 'wlan0', 'link').strip()
    report.check('out of range: iw says the same', link, 'Not connected.')
    world.do('in_range', HOME.phy)
    world.await_link(HOME)
    want = {'ssid': shown(HOME.ssid), 'signal': HOME.dbm, 'error': None}
    becomes(report, 'in range again', watchers, want)


SCENARIOS = (associated, signal, roaming, awkward_name, not_associated, out_of_range)
