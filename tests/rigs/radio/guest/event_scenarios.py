"""What the kernel says without being asked, and its counters, beside what iw says of the same."""
import os
import re
import subprocess
import time

from iw_reading import iw
from world import HOME, NETWORKS

# What is done, how the last of the events about it begins, and what is done then.
STEPS = (
    ('another program scans', ['iw dev wlan0 scan trigger'], 'ScanEnded', []),
    ('sent away', ['access_point_does 1 deauthenticate 02:00:00:00:00:00 reason=5'],
     'Disconnected 5 by AP wlan0 02:00:00:00:01:00', []),
    ('connects again', [], 'Connected wlan0 02:00:00:00:01:00', ['wait_for 30 associated']),
    ('the group key is not renewed', ['supplicant_signal STOP', 'access_point_does 1 raw REKEY_GTK'],
     'Disconnected 16 by AP', ['supplicant_signal CONT']),
    ('connects once more', [], 'Connected', []),
    ('a wrong passphrase', [f'choose {len(NETWORKS)}'], 'Disconnected 15 by AP', ['choose 0']),
    ('connects at last', [], 'Connected', ['wait_for 30 associated']),
    ('roams', [f'access_point 7 {HOME.ssid.hex()} 2462 {HOME.passphrase}', 'heard_at 7 -50',
               'roam 02:00:00:00:07:00'], 'Roamed wlan0 02:00:00:00:07:00', []),
    ('roams back', ['roam 02:00:00:00:01:00'], 'Roamed wlan0 02:00:00:00:01:00',
     ['access_point_end 7']),
    ('the access point is gone', ['out_of_range 1'], 'Disconnected 4 wlan0', ['in_range 1']),
)


def _by_iw(text):
    """The lines of "iw event" in our words."""
    kinds = ((r'scan started', 'ScanStarted'), (r'scan (finished|aborted)', 'ScanEnded'),
             (r'connected to (\S+)', 'Connected wlan0 {1}'),
             (r'disconnected \(by AP\) reason: (\d+)', 'Disconnected {1} by AP wlan0'),
             (r'disconnected \(local request\) reason: (\d+)', 'Disconnected {1} wlan0'))
    lines = [line.partition('): ')[2] for line in text.splitlines()]
    return [words.format(*match.group(0, *range(1, match.re.groups + 1))) for line in lines
            for pattern, words in kinds if (match := re.match(pattern, line))]


def _in_words_of_iw(event):
    return re.sub(r'^(Disconnected.*wlan0|Scan\w+).*', r'\1', event.replace('Roamed', 'Connected'))


def _wait_until_it_listens(pid):
    """It joins its groups one after the other, and a slow machine takes seconds until the first."""
    end = time.monotonic() + 60
    while time.monotonic() < end:
        with open('/proc/net/netlink', encoding='ascii') as sockets:
            lines = [line.split() for line in sockets]
        if any(line[1] == '16' and int(line[2]) & 0x3FFFFF == pid and int(line[3], 16) != 0 for line in lines[1:]):
            break
        time.sleep(0.1)
    time.sleep(1)


def radio_events(report, world, watcher):
    world.join(HOME)
    watcher.ask('link')
    path = os.path.join(os.environ['NETVANE_RADIO_LOGS'], 'iw_event.log')
    with open(path, 'wb') as log, subprocess.Popen(['iw', 'event'], stdout=log) as other:
        _wait_until_it_listens(other.pid)
        every, later = [], []
        for name, before, last, after in STEPS:
            for command in before:
                world.do(*command.split())
            told, end = later, time.monotonic() + 60
            while not any(event.startswith(last) for event in told) and time.monotonic() < end:
                told += watcher.ask('link')['events']
            # On a slow machine the events of the next step are among them already.
            length = next((i for i, event in enumerate(told, 1) if event.startswith(last)), 0)
            told, later = (told[:length], told[length:]) if length else (told, [])
            report.check(f'{name}: {", ".join(told)}', length > 0, True)
            every += told
            for command in after:
                world.do(*command.split())
        other.terminate()
    with open(path, encoding='utf-8') as log:
        ours = [_in_words_of_iw(event) for event in every]
        report.check('as iw tells it', ours, _by_iw(log.read())[:len(ours)])
    # The kernel remembers the access point that has ended for a while.
    subprocess.run(['iw', 'dev', 'wlan0', 'scan', 'flush'], stdout=subprocess.DEVNULL, check=False)
    world.leave()


def counters(report, world, watcher):
    """The access point is out of reach for a moment, too short to lose the link."""
    for _ in range(5):
        world.join(HOME)
        world.do('out_of_range', HOME.phy)
        subprocess.run(['bash', '-c', 'until iw dev wlan0 station dump | grep -q "beacon loss:.*[1-9]"'
                        '; do [ $SECONDS -lt 5 ] || exit; done'], check=False)
        world.do('in_range', HOME.phy)
        before, reading, after = _counters(), watcher.ask('link')['reading'], _counters()
        if before and before == after and before['beaconsLost']:
            break
        world.leave()
    report.check('the counters are those of iw', {name: reading[name] for name in before}, before)
    report.check('lost packets and beacons are counted', before['beaconsLost'] > 0, True)
    for state in ('off', 'on'):
        world.do('iw', 'dev', 'wlan0', 'set', 'power_save', state)
        reading = watcher.ask('link')['reading']
        report.check(f'power saving is {state}', (reading['powerSave'], reading['bssid']),
                     (state == 'on', '02:00:00:00:01:00'))
    world.do('iw', 'dev', 'wlan0', 'scan', 'trigger')
    world.wait_for(30, 'iw dev wlan0 survey dump | grep -A9 2437 | grep -q busy')
    before, reading, after = _times(), watcher.ask('link')['reading'], _times()
    report.check('the times of the channel are those of iw',
                 before <= [reading['active'], reading['busy']] <= after, True)


def _times():
    channel = iw('dev', 'wlan0', 'survey', 'dump').partition('2437 MHz')[2].partition('Survey')[0]
    return [int(ms) for ms in re.findall(r'channel (?:active|busy) time:\s*(\d+)', channel)]


def _counters():
    names = {'sent': 'tx packets', 'retries': 'tx retries', 'failed': 'tx failed',
             'beaconsLost': 'beacon loss', 'rx': 'rx bitrate'}
    dump = iw('dev', 'wlan0', 'station', 'dump')
    return {name: float(match[1]) for name, text in names.items()
            if (match := re.search(rf'\b{text}:\s*([\d.]+)', dump))}


SCENARIOS = (radio_events, counters)
