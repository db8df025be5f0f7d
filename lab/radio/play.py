"""Plays the lab's scenarios inside the virtual machine, one after another. Prints one JSON object for each."""
import json
import pathlib
import random
import re
import subprocess
import sys
import threading
import time

from world import World, WorldError

SUBJECT = ['setpriv', '--reuid=65534', '--regid=65534', '--clear-groups', 'env', '-i', 'HOME=/tmp', 'LC_ALL=C.UTF-8',
           'PATH=/usr/bin:/bin', 'DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere', 'DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere']
LEAD, FAULT, REPAIRED, HEALTHY = 20, 34, 32, 60  # seconds
FIRST_WORD = 60  # the subject starts slowly in an emulated machine


def read_scenario(path):
    """A list of values for each key, in order."""
    keys = {}
    for line in path.read_text('utf-8').splitlines():
        key, _, value = line.partition(':')
        if value and not line.startswith('#'):
            keys.setdefault(key.strip(), []).append(value.strip())
    return keys


class Subject:
    """The program that is tried; its lines with the times when they came."""

    def __init__(self, words):
        self.said = []
        self.has_spoken = threading.Event()
        with open('/run/share/logs/subject.log', 'ab') as log:
            self.process = subprocess.Popen([*SUBJECT, *words], stdout=subprocess.PIPE, stderr=log, text=True)
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def read(self):
        for line in self.process.stdout:
            try:
                said = json.loads(line)['verdict']
            except (ValueError, KeyError, TypeError):
                said = {'cause': 'nonsense', 'sentence': line[:200]}
            self.said.append((time.monotonic(), said))
            self.has_spoken.set()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.reader.join(30)
        self.process.kill()


def act(world, chance, lines):
    for line in lines:
        line = re.sub(r'\{(-?\d+)_(-?\d+)\}', lambda found: str(chance.randint(int(found[1]), int(found[2]))), line)
        world.do('eval', line)


def play(world, path, seed, words):
    keys, chance = read_scenario(path), random.Random(seed)
    result = {'scenario': path.stem, 'seed': seed, 'expect': keys.get('expect', ['healthy'])[0].split()}
    world.do('settle')
    act(world, chance, keys.get('setup', []))
    with Subject(words) as subject:
        subject.has_spoken.wait(FIRST_WORD)
        watch(world, chance, keys, result)
    return result | {'said': subject.said}


def watch(world, chance, keys, result):
    """Brings about the fault and takes it back; writes down when."""
    seconds = float(keys.get('seconds', [FAULT if 'fault' in keys else HEALTHY])[0])
    if 'fault' in keys:
        time.sleep(float(keys.get('lead', [LEAD])[0]) + chance.random() * 3)
        result['onset'] = time.monotonic()
        act(world, chance, keys['fault'])
        time.sleep(max(0, result['onset'] + seconds - time.monotonic()))
    else:
        act(world, chance, keys.get('then', []))
        time.sleep(seconds)
    result['end'] = time.monotonic()
    if 'repair' in keys:
        act(world, chance, keys['repair'])
        world.do('linked')  # an access point takes a while to start, a station to join
        result['repaired'] = time.monotonic()
        time.sleep(REPAIRED)
        result['over'] = time.monotonic()


def played(world, path, seed, words):
    """The result, at the second attempt if the world could not be brought about at the first."""
    for _ in range(2):
        try:
            return play(world, path, seed, words)
        except WorldError as problem:
            result = {'scenario': path.stem, 'seed': seed, 'broken': str(problem)}
    return result


def main():
    options = json.loads(pathlib.Path('options.json').read_text('utf-8'))
    world = World()
    world.do('.', './air.sh')
    world.do('home_up', seconds=300)
    for name, seed in options['games']:
        print(json.dumps(played(world, pathlib.Path(name), seed, options['subject'])), flush=True)


if __name__ == '__main__':
    sys.exit(main())
