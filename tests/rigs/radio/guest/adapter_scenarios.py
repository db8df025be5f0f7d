"""The adapter itself: its switches, its interface taken away, and other interfaces beside it."""
from watcher import NO_INTERFACE, NO_SNAPSHOT, TURNED_OFF, agrees_with_iw, becomes
from world import HOME, shown

READ_AGAIN = {'ssid': shown(HOME.ssid), 'signal': HOME.dbm, 'band': HOME.band,
              'interface': 'wlan0', 'error': None}
NOTHING_TO_READ = NO_SNAPSHOT | {'error': NO_INTERFACE}


def radio_switch(report, world, watchers):
    world.join(HOME)
    becomes(report, 'before the radio is switched off', watchers, READ_AGAIN)
    world.do('radio_switch', 'block')
    becomes(report, 'radio blocked by rfkill', watchers, NO_SNAPSHOT | {'error': TURNED_OFF})
    world.do('radio_switch', 'unblock')
    world.await_link(HOME)
    becomes(report, 'radio unblocked', watchers, READ_AGAIN)


def interface_down(report, world, watchers):
    world.join(HOME)
    world.do('ip', 'link', 'set', 'wlan0', 'down')
    becomes(report, 'interface down', watchers, NO_SNAPSHOT | {'error': TURNED_OFF})
    world.do('ip', 'link', 'set', 'wlan0', 'up')
    world.await_link(HOME)
    becomes(report, 'interface up again', watchers, READ_AGAIN)


def other_interfaces(report, world, watchers):
    world.join(HOME)
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'later0', 'type', 'monitor')
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'later1', 'type', '__ap')
    world.do('ip', 'link', 'set', 'later0', 'up')
    agrees_with_iw(report, 'beside a later monitor and access point interface', watchers)
    world.do('iw', 'dev', 'later0', 'del')
    world.do('iw', 'dev', 'later1', 'del')


def interface_removed(report, world, watchers):
    world.join(HOME)
    becomes(report, 'before the interface is removed', watchers, READ_AGAIN)
    world.do('iw', 'dev', 'wlan0', 'del')
    becomes(report, 'interface removed', watchers, NOTHING_TO_READ)
    # These come first in the kernel's list, for the new wlan0 gets a number behind theirs.
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'early0', 'type', 'monitor')
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'early1', 'type', '__ap')
    world.do('ip', 'link', 'set', 'early0', 'up')
    becomes(report, 'only interfaces of other types', watchers, NOTHING_TO_READ)
    world.do('iw', 'phy', 'phy0', 'interface', 'add', 'wlan0', 'type', 'managed')
    world.await_link(HOME)
    becomes(report, 'interface added again', watchers, READ_AGAIN)
    agrees_with_iw(report, 'beside an earlier monitor and access point interface', watchers)
    world.do('iw', 'dev', 'early0', 'del')
    world.do('iw', 'dev', 'early1', 'del')


SCENARIOS = (radio_switch, interface_down, other_interfaces, interface_removed)
