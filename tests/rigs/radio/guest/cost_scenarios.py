"""What reading the link costs, beside the tool that one would otherwise run. The guest is emulated:
only the relation of two figures taken in it means anything."""
import pathlib
import re
import resource
import subprocess

from watcher import UNPRIVILEGED
from world import HOME

TOOL_RUNS = 20
MOST_TIMES_THE_TOOL = 10


def sampling_cost(report, world):
    program = pathlib.Path('/run/radio/sampling_pass')
    if not program.exists():  # a benchmark, built only for that
        return
    world.join(HOME)
    tool = _tool_ms()
    text = subprocess.run([*UNPRIVILEGED, str(program), '50'], capture_output=True, text=True,
                          timeout=300, check=False).stdout
    report.check('the benchmark reads the real interface', 'real interface' in text, True)
    whole = float(re.search(r'whole pass +([0-9.]+)', text)[1])
    print(f'CPU of one reading, emulated: {whole:.1f} ms; of iw link and iw survey dump: {tool:.1f} ms')
    report.check(f'a pass costs at most {MOST_TIMES_THE_TOOL} times what iw does',
                 whole <= MOST_TIMES_THE_TOOL * tool, True)


def _tool_ms():
    """User and system time of what iw needs for the same values, the mean of some runs."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    for _ in range(TOOL_RUNS):
        for what in (['link'], ['survey', 'dump']):
            subprocess.run(['iw', 'dev', 'wlan0', *what], stdout=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return 1000 * spent / TOOL_RUNS


SCENARIOS = (sampling_cost,)
