"""One line a check, and the closing line."""
import sys
import traceback

from world import uptime


class Report:
    def __init__(self, verbose):
        self._verbose = verbose
        self.passed = 0
        self.failed = 0

    def check(self, name, got, want):
        """A check passes when both are equal. Of records only the fields that differ are shown."""
        if got == want:
            self.passed += 1
            print(f'ok   {name}', flush=True)
            return
        self.failed += 1
        if isinstance(got, dict) and isinstance(want, dict) and got.keys() == want.keys():
            fields = [field for field in want if got[field] != want[field]]
            got, want = ({field: record[field] for field in fields} for record in (got, want))
        print(f'FAIL {name}: got {got!r}, want {want!r}', flush=True)

    def step(self, text):
        if self._verbose:
            print(f'[{uptime():6.1f}] {text}', file=sys.stderr, flush=True)

    def run(self, name, scenario, *arguments):
        """Plays a scenario and says whether it came to its end. One that did not counts as a failed
        check, and those after it are still tried."""
        self.step(name)
        try:
            scenario(*arguments)
            return True
        except Exception:  # pylint: disable=broad-except  # it must not hide the other checks
            self.check(f'{name}: can be played to its end', traceback.format_exc(), 'no fault')
            return False

    def close(self):
        print(f'{self.passed} passed, {self.failed} failed', flush=True)
        return 1 if self.failed or not self.passed else 0
