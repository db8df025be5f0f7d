"""Plays the scenarios in their order; the names in the file "only", if any, choose among them."""
import pathlib
import sys

import adapter_scenarios
import cost_scenarios
import day_scenarios
import event_scenarios
import link_scenarios
import permission_scenarios
import scan_scenarios
from report import Report
from world import World


def chosen(names):
    """The scenarios whose names hold one of these, or all of them if there is none."""
    modules = (link_scenarios, adapter_scenarios, event_scenarios, cost_scenarios,
               scan_scenarios, permission_scenarios, day_scenarios)
    every = {scenario.__name__: scenario for module in modules
             for scenario in (*module.SCENARIOS, *getattr(module, 'MANAGED_SCENARIOS', ()))}
    for name in names:
        if not any(name in known for known in every):
            sys.exit(f'no scenario is called {name}; there are {", ".join(every)}')
    return [scenario for known, scenario in every.items()
            if not names or any(name in known for name in names)]


def main():
    scenarios = chosen(pathlib.Path('only').read_text('utf-8').split())
    report = Report(verbose=pathlib.Path('verbose').read_text('utf-8').strip())

    def play(module, *arguments, of='SCENARIOS'):
        for scenario in getattr(module, of):
            if scenario in scenarios:
                report.run(scenario.__name__, scenario, report, *arguments)

    world, watchers = World(), []
    if report.run('build the world', world.build):
        report.run('start', link_scenarios.start, report, world, watchers)
    if len(watchers) == 2:
        play(link_scenarios, world, watchers)
        play(adapter_scenarios, world, watchers)
        play(event_scenarios, world, watchers[0])
    for watcher in watchers:
        report.check(f'ends at the end of its input ({watcher.user})', watcher.end(), 0)
    play(cost_scenarios, world)
    play(scan_scenarios, world)
    play(permission_scenarios, world)
    play(scan_scenarios, world, of='MANAGED_SCENARIOS')
    play(day_scenarios, world)
    report.step('done')
    return report.close()


sys.exit(main())
