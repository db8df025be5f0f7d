"""The program wifi_watch, as one user, asked for sampling passes and scans."""
import json
import os
import select
import subprocess
import time

from iw_reading import read_iw
from world import NETWORKS, WorldError, shown

UNPRIVILEGED = ('setpriv', '--reuid=65534', '--regid=65534', '--clear-groups')
LINK = ('ssid', 'signal', 'noise', 'rate', 'band', 'interface')

NO_SNAPSHOT = dict.fromkeys(LINK)
UNREADABLE = 'Unable to read Wi-Fi network name. Please check your Wi-Fi connection.'
NOT_PERMITTED = 'Location permission required to access Wi-Fi network name.'
TURNED_OFF = 'Wi-Fi is turned off'
NO_INTERFACE = 'No Wi-Fi interface available'
# What is left of a link that was lost. Where there was none yet there is no snapshot at all, for
# an empty one is no change.
LOST = NO_SNAPSHOT | {'band': 'unknown', 'interface': 'wlan0'}
AUTHORIZED = {'needsPermission': False, 'authorization': 3, 'isAuthorized': True}


class Watcher:
    def __init__(self, user, log):
        self.user = user
        command = ['/run/radio/wifi_watch']
        if user != 'root':
            command = [*UNPRIVILEGED, *command]
        # What it publishes is logged beside what it writes to standard error itself.
        self._log = open(os.path.join(os.environ['NETVANE_RADIO_LOGS'], log), 'ab', buffering=0)
        self._process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=self._log)
        self._unread = b''
        self.first = self._line(60)

    def _line(self, seconds):
        output = self._process.stdout.fileno()
        end = time.monotonic() + seconds
        while b'\n' not in self._unread:
            if not select.select([output], [], [], max(0, end - time.monotonic()))[0]:
                raise WorldError(f'wifi_watch as {self.user} said nothing for {seconds} s')
            piece = os.read(output, 65536)
            if not piece:
                status = self._process.wait(10)
                raise WorldError(f'wifi_watch as {self.user} ended with status {status}')
            self._unread += piece
        line, _, self._unread = self._unread.partition(b'\n')
        self._log.write(line + b'\n')
        return json.loads(line)

    def sample(self, seconds=30):
        """The state that is published after one more pass."""
        return self._ask(b'link\n', seconds)

    def scan(self, seconds):
        """The networks that one more scan has found."""
        return self._ask(b'scan\n', seconds)

    def _ask(self, request, seconds):
        self._process.stdin.write(request)
        self._process.stdin.flush()
        return self._line(seconds)

    def settle(self, want, seconds=40):
        """Samples until the fields of want have those values, and returns what they are at last."""
        end = time.monotonic() + seconds
        while True:
            state = self.sample()
            got = {field: state.get(field, 'missing') for field in want}
            if got == want or time.monotonic() > end:
                return got
            time.sleep(0.3)

    def end(self):
        """Ends the program by the end of its input and returns its status."""
        self._process.stdin.close()
        try:
            return self._process.wait(30)
        except subprocess.TimeoutExpired:
            self._process.kill()
            return 'still running after 30 s'


def becomes(report, name, watchers, want):
    """Checks that every watcher comes to publish these values."""
    for watcher in watchers:
        report.check(f'{name} ({watcher.user})', watcher.settle(want), want)


def agrees_with_iw(report, name, watchers, world=None, phy=None):
    """Checks every value of the link against what iw reads immediately before and after.

    Rates change from one frame to the next, so a disagreement is looked at again a few times. With
    a world and the number of the access point's radio some traffic goes ahead of each look, so that
    the rates are not the lowest."""
    for watcher in watchers:
        for _ in range(12):
            if world:
                world.do('traffic', phy)
            before, state, after = read_iw(), watcher.sample(), read_iw()
            fields = (*LINK, 'error', 'needsPermission')
            got = {field: state.get(field, 'missing') for field in fields}
            want = _wanted_by_iw(got, before, after)
            if got == want:
                break
        for field, value in want.items():
            report.check(f'{name}: {field} ({watcher.user})', got[field], value)


def _wanted_by_iw(got, before, after):
    """What is to be published by iw's readings: where they differ, any of their values will do."""
    bands = {network.frequency: network.band for network in NETWORKS}
    values = {
        'ssid': {shown(reading.ssid) for reading in (before, after) if reading.ssid},
        'signal': before.signals | after.signals,
        'noise': {before.noise, after.noise},  # none before a scan has come by the channel
        'rate': before.rates | after.rates,
        'band': {bands.get(before.frequency), bands.get(after.frequency)} - {None},
    }
    want = {field: got[field] if got[field] in some else f'one of {sorted(some, key=str)}'
            for field, some in values.items()}
    return want | {'interface': 'wlan0', 'error': None, 'needsPermission': False}
