"""The whole program, without a display, while there is a link."""
import os
import pathlib
import signal
import subprocess
import time

from watcher import UNPRIVILEGED
from world import HOME

LAUNCHED = 'Netvane: Application launched successfully'
RUNNING = 'running'


def whole_program(report, world):
    program = pathlib.Path('/run/radio/netvane')
    if not report.check('netvane was built', program.exists(), True):
        return
    world.join(HOME)
    process, log = _start(program)
    end = time.monotonic() + 60
    while process.poll() is None and LAUNCHED not in _text(log) and time.monotonic() < end:
        time.sleep(0.5)
    report.check(f'netvane writes "{LAUNCHED}"', LAUNCHED in _text(log), True)
    report.check('netvane keeps running', _status(process, 15), RUNNING)
    process.send_signal(signal.SIGTERM)
    report.check('netvane ends with status 0 on SIGTERM', _status(process, 30), 0)
    if process.poll() is None:
        process.kill()


def _start(program):
    home = pathlib.Path('/run/radio-home')
    (home / 'run').mkdir(parents=True, mode=0o700)
    for folder in (home, home / 'run'):
        os.chown(folder, 65534, 65534)
    log = pathlib.Path(os.environ['NETVANE_RADIO_LOGS'], 'netvane.log')
    environment = {'PATH': os.environ['PATH'], 'LANG': 'C.UTF-8', 'HOME': str(home),
                   'XDG_RUNTIME_DIR': str(home / 'run'), 'QT_QPA_PLATFORM': 'offscreen'}
    with open(log, 'wb') as errors:
        process = subprocess.Popen([*UNPRIVILEGED, str(program)], stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=errors, env=environment,
                                   cwd=home)
    return process, log


def _text(log):
    return log.read_text('utf-8', 'replace')


def _status(process, seconds):
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return RUNNING


SCENARIOS = (whole_program,)
