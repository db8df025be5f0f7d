"""A day with the whole program on a desktop: what it shows, says and notifies while the network
changes, beside what other programs say of the same at the same time."""
import re
import signal
import subprocess
import time

from desktop import Desktop, eventually
from iw_reading import iw, read_iw
from world import HOME, HOME_5_GHZ, shown

PROBE = 'https://captive.apple.com/hotspot-detect.html'
# 30 s between two notifications, and three looks at the link
PAST_THROTTLE_SECONDS = 45


class Day:
    """The steps, in their order. Each leaves the world as the next one wants it."""

    def __init__(self, report, world):
        self.report = report
        self.world = world
        self.desktop = Desktop()
        self.told_at = time.monotonic()

    def check(self, name, got, want=True):
        self.report.check(f'day: {name}', got, want)

    def becomes(self, name, condition, seconds=60):
        self.check(name, bool(eventually(condition, seconds)))

    def same(self, name, ours, theirs):
        """Both are asked, the other program before and after Netvane, until they agree."""
        seen = []

        def agree():
            seen[:] = theirs(), ours(), theirs()
            return seen[1] in (seen[0], seen[2])
        self.check(name, seen if not eventually(agree, 60) else True)

    def shows(self, name, panel, text, seconds=60):
        self.becomes(name, lambda: text in self.desktop.texts(panel), seconds)

    def notifies(self, title, text):
        self.becomes(f'"{title}" reaches the notification daemon',
                     lambda: (title, text) in self.desktop.notified())
        self.told_at = time.monotonic()

    def past_throttle(self):
        """Evaluations rest after a notification; the next of them has to see the good state."""
        time.sleep(max(0, self.told_at + PAST_THROTTLE_SECONDS - time.monotonic()))

    def link_agrees(self, when):
        def shown_here():
            return [text for text in self.desktop.texts('Connection')
                    if text != 'Connection' and not text.startswith('Signal: ')]
        self.same(f'{when}: name and signal are those of iw', shown_here, _connection_by_iw)

    def card(self, name):
        """The value that a card shows, without its unit."""
        texts = self.desktop.every_text(name)
        values = [text for text in texts if re.match(r'-?[\d.]+ ', text)]
        return values[0].split()[0] if values else None

    # --- The steps ---

    def connects(self):
        self.world.join(HOME)
        self.desktop.start()
        self.desktop.click_item()
        self.shows('the popover fills', 'Connection', shown(HOME.ssid), 120)
        self.link_agrees('connected')
        self.metrics_agree()
        for panel in ('Router', 'Internet'):
            self.becomes(f'{panel} is timed', lambda panel=panel: re.search(
                r'^[\d.]+ ms$', '\n'.join(self.desktop.every_text(panel)), re.M))
        self.becomes('the name service is the one of resolv.conf',
                     lambda: 'Router assigned: 10.9.2.1' in self.desktop.every_text('Netvane'))
        self.becomes('all is well',
                     lambda: self.desktop.every_text('Connection Summary').count('OK') == 4)

    def metrics_agree(self):
        """The cards follow a change of the signal; a rate is one of those meanwhile."""
        self.world.do('heard_at', HOME.phy, HOME.dbm + 3)
        rates = set()

        def followed():
            rates.add(str(max(read_iw().rates)))
            return self.card('Signal Strength') == str(HOME.dbm + 3)
        self.becomes('the signal strength follows', followed)
        rate = self.card('Link Rate')
        self.check('the link rate is one of iw', rate if rate in rates else rates, rate)
        self.same('the noise is that of iw', lambda: self.card('Noise Level'),
                  lambda: str(read_iw().noise))

    def roams(self):
        # In emulation it takes longer than from one look at the link to the next.
        self.desktop.netvane.send_signal(signal.SIGSTOP)
        self.world.join(HOME_5_GHZ)
        self.desktop.netvane.send_signal(signal.SIGCONT)
        self.notifies('Network Changed', f'Connected to {shown(HOME_5_GHZ.ssid)}')
        self.link_agrees('roamed')

    def loses(self):
        self.past_throttle()
        self.world.do('out_of_range', HOME_5_GHZ.phy)
        self.notifies('Disconnected', 'Lost connection to WiFi network')
        self.shows('the loss is on the dashboard', 'Connection', 'Not Connected')
        self.check('iw says the same', iw('dev', 'wlan0', 'link').strip(), 'Not connected.')
        self.world.do('in_range', HOME_5_GHZ.phy)
        self.world.join(HOME)
        self.shows('the link is back', 'Connection', shown(HOME.ssid))

    def meets_portal(self):
        self.world.do('portal', 'on')
        title = 'Captive Portal Detected'
        self.shows('a portal is noticed', title, title, 90)
        self.check('curl is sent to a login page', _http_status(), '302')
        self.world.do('portal', 'off')
        self.becomes('the portal is forgotten', lambda: not self.desktop.texts(title), 90)
        self.check('curl gets the page', _http_status(), '200')

    def ends(self):
        self.check('no notification but those', [title for title, _ in self.desktop.notified()],
                   ['Network Changed', 'Disconnected'])
        self.desktop.netvane.terminate()
        self.check('SIGTERM ends it with status 0', self.desktop.netvane.wait(60), 0)

    STEPS = (connects, roams, loses, meets_portal, ends)


def _connection_by_iw():
    reading = read_iw()
    if not reading.ssid:
        return ['Not Connected']
    band = '2.4 GHz' if reading.frequency < 3000 else '5 GHz'
    return [shown(reading.ssid), band, f'{max(reading.signals)} dBm']


def _http_status():
    return subprocess.run(['curl', '-s', '-o', '/dev/null', '-w', '%{http_code}', PROBE],
                          capture_output=True, text=True, timeout=60, check=False).stdout


def whole_day(report, world):
    world.start_manager()
    world.grant_scans('YES', 'yes')
    world.go_online()
    day = Day(report, world)
    try:
        for step in Day.STEPS:
            if not report.run(f'day: {step.__name__}', step, day):
                break
    finally:
        day.desktop.end()


SCENARIOS = (whole_day,)
