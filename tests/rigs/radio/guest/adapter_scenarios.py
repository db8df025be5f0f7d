"""The adapter itself: its switches, its interface taken away, and other interfaces beside it."""
from iw_reading import iw
from watcher import (AUTHORIZED, LOST, NO_INTERFACE, NO_SNAPSHOT, TURNED_OFF, UNREADABLE, Watcher,
                     agrees_with_iw, becomes)
from world import ELEVEN, HOME, NETWORKS, shown, uptime

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


def two_adapters(report, world, watchers):
    """The one with a link is read, whatever becomes of the other."""
    second = {'ssid': shown(ELEVEN.ssid), 'signal': ELEVEN.dbm, 'interface': 'wlan6', 'error': None}
    world.leave()
    world.start_eleven()
    world.do('second_adapter', 'in')
    becomes(report, 'neither has a link', watchers, {'ssid': None, 'error': UNREADABLE})
    world.do('iw', 'dev', 'wlan6', 'connect', '-w', shown(ELEVEN.ssid))
    for name, change in (('idle', 'true'), ('blocked', 'radio_switch block'),
                         ('renamed', 'ip link set wlan0 name aaa')):
        world.do(*change.split())
        becomes(report, f'the other adapter is {name}', watchers, second)
    late = Watcher('unprivileged', 'late.log')
    becomes(report, 'started with two adapters', [late], second)
    late.end()
    state = watchers[1].ask('scan')
    report.check('the second adapter scans', (state['error'], state['channel']),
                 (None, [11, 'twoPointFourGHz']))
    for change in ('ip link set aaa name wlan0', 'radio_switch unblock', 'ip link set wlan0 up'):
        world.do(*change.split())
    world.join(HOME)
    becomes(report, 'the second adapter keeps its link', watchers, second)
    world.do('second_adapter', 'out')
    becomes(report, 'and is pulled out', watchers, READ_AGAIN)


def joining(report, world, watchers):
    """A network that is asked, or refuses, is no link, although the kernel tells its name."""
    world.join(HOME)
    becomes(report, 'before it leaves', watchers, READ_AGAIN)
    world.leave()
    becomes(report, 'left the network', watchers, LOST | AUTHORIZED | {'error': UNREADABLE})
    for name, command, sign in (
            ('with a wrong passphrase', f'choose {len(NETWORKS)}', 'authorized:\tno'),
            ('that is not there', 'iw dev wlan0 connect Nowhere', 'ssid Nowhere')):
        world.do(*command.split())
        looks, seen, end = 0, set(), uptime() + 40
        while looks < 4 and uptime() < end:
            before, states = _joins(sign), [watcher.ask('link') for watcher in watchers]
            looks += before and _joins(sign)
            seen |= {state['ssid'] for state in states}
        report.check(f'a network {name} is no link', (looks > 0, seen), (True, {None}))
        world.leave()


def _joins(sign):
    return sign in iw('dev', 'wlan0', 'station', 'dump') + iw('dev', 'wlan0', 'info')


SCENARIOS = (turned_off, other_interfaces, two_adapters, joining)
