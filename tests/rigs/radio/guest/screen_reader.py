"""What a screen reader finds in the visible windows of a program: screen_reader.py PROGRAM. Each line
of its input is the name of an item as JSON, answered by one line of JSON: a list of
[role, name, whether visible] of that item and all below it, or null if there is none."""
import json
import sys

import gi

gi.require_version('Atspi', '2.0')
from gi.repository import Atspi, GLib  # noqa: E402  pylint: disable=wrong-import-position

DEPTH = 40


def children(item):
    found = (item.get_child_at_index(index) for index in range(item.get_child_count()))
    return [child for child in found if child is not None]


def visible(item):
    return item.get_state_set().contains(Atspi.StateType.VISIBLE)


def walk(item, depth=DEPTH):
    yield item
    for child in children(item) if depth else ():
        yield from walk(child, depth - 1)


class Reader:
    def __init__(self, program):
        self._program = program
        self._found = {}

    def _windows(self):
        for application in children(Atspi.get_desktop(0)):
            if application.get_name() == self._program:
                return [window for window in children(application) if visible(window)]
        return []

    def find(self, name):
        """Looks in the windows that are shown; what was found there once is asked at once."""
        for window in self._windows():
            key = (window.path, name)
            if key not in self._found:
                items = (item for item in walk(window) if item.get_name() == name)
                self._found[key] = next(items, None)
            if self._found[key]:
                return self._found[key]
            del self._found[key]
        return None

    def read(self, name):
        item = self.find(name)
        if not item:
            return None
        item.clear_cache()
        return [[each.get_role_name(), each.get_name(), visible(each)] for each in walk(item)]


def main():
    reader = Reader(sys.argv[1])
    for line in sys.stdin:
        try:
            answer = reader.read(json.loads(line))
        except GLib.Error as error:  # an item that went away meanwhile
            print(f'screen reader: {error}', file=sys.stderr, flush=True)
            answer = None
        print(json.dumps(answer), flush=True)


main()
