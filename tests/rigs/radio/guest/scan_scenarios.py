"""Scans through each that can own the radio, compared with the kernel's table as iw reads it."""
import re
import subprocess
import time

from iw_reading import read_iw_scan
from watcher import Watcher
from world import ELEVEN, HOME, NETWORKS, shown

CHANNELS = {2412: [1, 'twoPointFourGHz'], 2437: [6, 'twoPointFourGHz'],
            2462: [11, 'twoPointFourGHz'], 5180: [36, 'fiveGHz'], 5975: [5, 'sixGHz']}
# Whether 6 GHz is scanned is up to whoever scans.
ALWAYS_HEARD = {(shown(network.ssid), *CHANNELS[network.frequency], network.dbm)
                for network in (*NETWORKS, ELEVEN) if network.frequency < 5950}
NO_RIGHTS = 'Scanning takes NetworkManager, iwd or wpa_supplicant, or more rights'


def _watcher(user):
    return Watcher(user, f'scan_{user}.log')


def _scans(report, name, watcher, keeps_table=True):
    """Checks one scan: the networks that are in the air, heard by this scan, and nothing that iw
    does not list. iwd makes the kernel drop the results of each partial scan at the end of the next
    one, so iw lists only the last; there the networks that iwd itself found must not be missing.

    In this slow machine an access point can answer a probe too late, and is then missing or known
    from an earlier scan only. Then the scan is repeated."""
    for _ in range(4):
        state, got, table, took_ms = _scan(watcher)
        missing = ALWAYS_HEARD - set(got.values())
        old = {bssid for bssid, network in table.items()
               if keeps_table and network.seen_ms_ago > took_ms and network.frequency < 5950}
        if not missing and not old:
            break
        if not keeps_table:
            _has_what_iwd_found(report, name, got)
    report.check(f'{name}: no error', state['error'], None)
    report.check(f'{name}: each once', len(state['networks']), len(got))
    report.check(f'{name}: all that is in the air', missing, set())
    listed = {bssid: (shown(network.ssid) or None, *CHANNELS[network.frequency],
                      round(network.signal)) for bssid, network in table.items()}
    report.check(f'{name}: as iw lists them', got, listed if keeps_table else got | listed)
    if keeps_table:
        report.check(f'{name}: heard by this scan', old, set())
    else:
        _has_what_iwd_found(report, name, got)
    return state


def _scan(watcher):
    begin = time.monotonic()
    state = watcher.ask('scan')
    table = read_iw_scan()
    got = {network['bssid']: (network['ssid'], *network['channel'], network['signal'])
           for network in state['networks']}
    return state, got, table, 1000 * (time.monotonic() - begin)


def _has_what_iwd_found(report, name, got):
    objects = subprocess.run(
        ['gdbus', 'call', '--system', '-d', 'net.connman.iwd', '-o', '/',
         '-m', 'org.freedesktop.DBus.ObjectManager.GetManagedObjects'],
        capture_output=True, text=True, timeout=60, check=True).stdout
    found = set(re.findall(r"iwd\.Network': \{[^}]*'Name': <'([^']*)'>", objects))
    missing = found - {network[0] for network in got.values()}
    report.check(f'{name}: what iwd found', (bool(found), missing), (True, set()))


def _refused(report, name, watcher, error):
    state = watcher.ask('scan')
    report.check(name, (state['error'], state['networks']), (error, []))


def _end(report, name, *watchers):
    for watcher in watchers:
        report.check(f'{name}: ends at the end of its input ({watcher.user})', watcher.end(), 0)


def scan_by_kernel(report, world):
    world.do('supplicant_down')
    world.start_eleven()
    world.do('ip', 'link', 'set', 'wlan0', 'up')
    root, nobody = _watcher('root'), _watcher('unprivileged')
    state = _scans(report, 'scan by the kernel', root)
    report.check('scan by the kernel: no current channel', state['channel'], None)
    _refused(report, 'scan by the kernel: not by just anybody', nobody, NO_RIGHTS)
    world.do('radio_switch', 'block')
    _refused(report, 'scan without a radio', root, 'Wi-Fi is turned off')
    world.do('radio_switch', 'unblock')
    world.do('ip', 'link', 'set', 'wlan0', 'up')
    _scans(report, 'scan with the radio on again', root)
    _end(report, 'scan by the kernel', root, nobody)


def _scan_by_service(report, world, name, up, down, keeps_table):
    world.do('supplicant_down')
    world.start_eleven()
    world.do('bus_up')
    world.do(up, seconds=240)
    root, nobody = _watcher('root'), _watcher('unprivileged')
    _scans(report, f'scan by {name}', root, keeps_table)
    _refused(report, f'scan by {name}: policy', nobody, f'{name} does not allow this user to scan')
    _end(report, f'scan by {name}', root, nobody)
    world.do(down)


def scan_by_supplicant(report, world):
    _scan_by_service(report, world, 'wpa_supplicant', 'supplicant_on_bus', 'supplicant_down', True)


def scan_by_iwd(report, world):
    _scan_by_service(report, world, 'iwd', 'iwd_up', 'iwd_down', False)


def scan_by_manager(report, world):
    world.start_manager()
    world.start_eleven()
    nobody = _watcher('unprivileged')
    world.grant_scans('YES', 'yes')
    _scans(report, 'scan by NetworkManager', nobody)
    world.grant_scans('NO', 'no')
    _refused(report, 'scan by NetworkManager: permission', nobody,
             'NetworkManager does not allow this user to scan')
    world.grant_scans('YES', 'yes')
    world.join(HOME)
    state = _scans(report, 'scan while associated', nobody)
    report.check('scan while associated: current channel', state['channel'], CHANNELS[2437])
    _end(report, 'scan by NetworkManager', nobody)


def scan_of_silent_manager(report, world):
    """It is stopped while the user scans, for less and for more than a scan may take."""
    world.start_manager()
    world.start_eleven()
    world.grant_scans('YES', 'yes')
    nobody = _watcher('unprivileged')
    world.do('manager_pauses', 5)
    _scans(report, 'NetworkManager answers late', nobody)
    world.do('manager_pauses', 40)
    _refused(report, 'NetworkManager does not answer', nobody,
             'NetworkManager did not answer within 30 seconds')
    world.wait_for(30, 'manager_permission')
    _scans(report, 'NetworkManager answers again', nobody)
    _end(report, 'NetworkManager was silent', nobody)


SCENARIOS = (scan_by_kernel, scan_by_supplicant, scan_by_iwd)
MANAGED_SCENARIOS = (scan_by_manager, scan_of_silent_manager)
