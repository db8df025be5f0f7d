"""The adapter itself: its switches, its interface taken away, and other interfaces beside it."""
from watcher import NO_INTERFACE, NO_SNAPSHOT, TURNED_OFF, agrees_with_iw, becomes
from world import HOME, shown

READ_AGAIN = {'ssid': shown(HOME.ssid), 'signal': HOME.dbm, 'band': HOME.band,
              'interface': 'wlan0', 'error': None}
NOTHING_TO_READ = NO_SNAPSHOT | {'error': NO_INTERFACE}


def turned_off(report, world, watchers):
    world.join(HOME)
    for name, switch, off, on in (
            ('radio blocked by rfkill', ('radio_switch',), 'block', 'unblock'),
            ('interface down', ('ip', 'link', 'set', 'wlan0'), 'down', 'up')):
        becomes(report, f'before: {name}', watchers, READ_AGAIN)
        world.do(*switch, off)
        becomes(report, name, watchers, NO_SNAPSHOT | {'error': TURNED_OFF})
        world.do(*switch, on)
        world.await_link(HOME)
        becomes(report, f'after: {name}', watchers, READ_AGAIN)


def _add(world, name):
    world.do('iw', 'phy', 'phy0', 'interface', 'add', f'{name}0', 'type', 'monitor')
    world.do('iw', 'phy', 'phy0', 'interface', 'add', f'{name}1', 'type', '__ap')
    world.do('ip', 'link', 'set', f'{name}0', 'up')


def _remove(world, *names):
    for name in names:
        world.do('iw', 'dev', name, 'del')


def other_interfaces(report, world, watchers):
    world.join(HOME)
    _add(world, 'later')
    agrees_with_iw(report, 'beside a later monitor and access point interface', watchers)
    _remove(world, 'later0', 'later1')
    becomes(report, 'before the interface is removed', watchers, READ_AGAIN)
    _remove(world, 'wlan0')
    becomes(report, 'interface removed', watchers, NOTHING_TO_READ)
    # These come first in the kernel's list, for the new wlan0 gets a number behind theirs.
    _add(world, 'early')
    becomes(report, 'only interfaces of other types', watchers, NOTHING_TO_READ)
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'wlan0', 'type', 'managed')
    world.await_link(HOME)
    becomes(report, 'interface added again', watchers, READ_AGAIN)
    agrees_with_iw(report, 'beside an earlier monitor and access point interface', watchers)
    _remove(world, 'early0', 'early1')


SCENARIOS = (turned_off, other_interfaces)
