"""A desktop of the unprivileged user: display, message bus, window manager, panel with a status area,
notification daemon and screen reader; and Netvane on it, as its user sees it and clicks on it."""
import json
import os
import pathlib
import re
import select
import subprocess
import time

from watcher import UNPRIVILEGED
from world import WorldError

HOME = pathlib.Path('/run/radio-desktop')
SETTINGS = {'networkNotificationsEnabled': True, 'netvane.onboarding.completed': True}
DISPLAY = ':7'
ITEM = ('15', '885')  # the panel's only icon
DUNST = '[global]\nfont = DejaVu Sans 10\n'


def eventually(condition, seconds):
    """Asks until the answer is true, and returns the last answer."""
    end = time.monotonic() + seconds
    while not (answer := condition()) and time.monotonic() < end:
        time.sleep(0.5)
    return answer


class Desktop:
    def __init__(self):
        self._logs = pathlib.Path(os.environ['NETVANE_RADIO_LOGS'])
        self._started = []
        self._make_home()
        bus = f'unix:path={HOME}/run/bus'
        self._environment = {
            'PATH': os.environ['PATH'], 'LANG': 'C.UTF-8', 'HOME': str(HOME), 'DISPLAY': DISPLAY,
            'XDG_RUNTIME_DIR': str(HOME / 'run'), 'XDG_CONFIG_HOME': str(HOME / 'config'),
            'DBUS_SESSION_BUS_ADDRESS': bus, 'XDG_SESSION_TYPE': 'x11', 'QT_QPA_PLATFORM': 'xcb',
            'QT_LINUX_ACCESSIBILITY_ALWAYS_ON': '1', 'PYTHONDONTWRITEBYTECODE': '1'}

    def _make_home(self):
        os.makedirs('/tmp/.X11-unix', exist_ok=True)
        os.chmod('/tmp/.X11-unix', 0o1777)
        for folder in (HOME, HOME / 'run', HOME / 'config', HOME / 'config/netvane'):
            folder.mkdir(mode=0o700)
        (HOME / 'config/netvane/settings.json').write_text(json.dumps(SETTINGS), 'utf-8')
        (HOME / 'dunstrc').write_text(DUNST, 'utf-8')
        for path in (HOME, *HOME.rglob('*')):
            os.chown(path, 65534, 65534)

    def start(self):
        self._run('xvfb', 'Xvfb', DISPLAY, '-screen', '0', '1280x900x24', '-nolisten', 'tcp',
                  '-noreset')
        self._await('a display', lambda: os.path.exists('/tmp/.X11-unix/X7'))
        self._run('bus', 'dbus-daemon', '--session', '--nofork',
                  f"--address={self._environment['DBUS_SESSION_BUS_ADDRESS']}")
        self._await('a bus', lambda: (HOME / 'run/bus').exists())
        self._run('openbox', 'openbox', '--sm-disable')
        self._run('at-spi', '/usr/libexec/at-spi-bus-launcher', '--launch-immediately')
        self._run('dunst', 'dunst', '-print', '-conf', str(HOME / 'dunstrc'))
        self._await('a notification daemon', lambda: self._owned('org.freedesktop.Notifications'))
        self._run('tint2', 'tint2', '-c', '/run/radio/tint2rc')
        self.netvane = self._run('netvane_day', '/run/radio/netvane')
        self._await('an item in the panel', lambda: 'add_icon' in self.log('tint2'), 120)
        self._reader = self._run('reader', '/usr/bin/python3', '/run/radio/screen_reader.py',
                                 'netvane', stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def _run(self, name, *command, stdin=subprocess.DEVNULL, stdout=None):
        with open(self._logs / f'{name}.log', 'wb') as log:
            process = subprocess.Popen([*UNPRIVILEGED, *command], stdin=stdin,
                                       stdout=stdout or log, stderr=log, cwd=HOME,
                                       env=self._environment)
        self._started.append(process)
        return process

    def tool(self, *command, seconds=60, **options):
        """What a program of this user's writes to standard output."""
        return subprocess.run([*UNPRIVILEGED, *command], capture_output=True, text=True,
                              timeout=seconds, check=False, env=self._environment, cwd=HOME,
                              **options).stdout

    def _await(self, what, condition, seconds=60):
        if not eventually(condition, seconds):
            raise WorldError(f'{what} did not come within {seconds} s')

    def _owned(self, name):
        return 'true' in self.tool('gdbus', 'call', '--session', '-d', 'org.freedesktop.DBus',
                                   '-o', '/', '-m', 'org.freedesktop.DBus.NameHasOwner', name)

    def log(self, name):
        return (self._logs / f'{name}.log').read_text('utf-8', 'replace')

    def notified(self):
        """What the daemon was given so far: title and text of each notification."""
        return re.findall(r"summary: '(.*)'\n\s*body: '(.*)'", self.log('dunst'))

    def click_item(self):
        self.tool('xdotool', 'mousemove', *ITEM, 'click', '1')

    def _read(self, name):
        self._reader.stdin.write(json.dumps(name).encode() + b'\n')
        self._reader.stdin.flush()
        if not select.select([self._reader.stdout], [], [], 120)[0]:
            raise WorldError(f'the screen reader was silent: {name}')
        return json.loads(self._reader.stdout.readline())

    def texts(self, name):
        """The visible texts of the item of that name and of what is in it."""
        return [text for _, text, visible in self._read(name) or () if visible and text]

    def every_text(self, name):
        """Those that one would have to scroll to as well, and those that are hidden."""
        return [text for _, text, _ in self._read(name) or () if text]

    def end(self):
        for process in reversed(self._started):
            process.terminate()
        for process in self._started:
            try:
                process.wait(20)
            except subprocess.TimeoutExpired:
                process.kill()
