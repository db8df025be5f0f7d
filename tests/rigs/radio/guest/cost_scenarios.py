"""What reading the link costs, beside the tool that one would otherwise run. The guest is emulated:
only the relation of two figures taken in it means anything."""
import os
import re
import resource
import subprocess

from watcher import UNPRIVILEGED
from world import HOME

RUNS = 20


def sampling_cost(report, world):
    program = '/run/radio/sampling_pass'
    if not os.path.exists(program):  # a benchmark, built only for that
        return
    world.join(HOME)
    tool = _tool_ms()
    text = subprocess.run([*UNPRIVILEGED, program, '50'], capture_output=True, text=True,
                          timeout=300, check=False).stdout
    report.check('the benchmark reads the real interface', 'real interface' in text, True)
    whole = float(re.search(r'whole pass +([0-9.]+)', text)[1])
    print(f'CPU of one reading, emulated: {whole:.1f} ms; of iw link and iw survey dump: {tool:.1f} ms')
    report.check('a pass costs at most 10 times what iw does', whole <= 10 * tool, True)


def _tool_ms():
    """User and system time of what iw needs for the same values, the mean of some runs."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    for what in (['link'], ['survey', 'dump']) * RUNS:
        subprocess.run(['iw', 'dev', 'wlan0', *what], stdout=subprocess.DEVNULL, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    spent = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return 1000 * spent / RUNS


SCENARIOS = (sampling_cost,)
