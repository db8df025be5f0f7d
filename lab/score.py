"""The score of a run of the lab, as Markdown."""
import collections
import datetime
import re

NUMBER = re.compile(r"-?\d+(?:\.\d+)?")


def named_values(verdict):
    values = [item.get("value") for item in verdict.get("evidence", [])]
    numbers = [float(text) for text in NUMBER.findall(verdict.get("sentence", ""))]
    return sum(any(isinstance(value, (int, float)) and abs(value - number) <= 0.5 for value in values) for number in numbers)


def at(result, moment):
    """The verdict that stood at a moment."""
    return next((verdict for time, verdict in reversed(result["said"]) if time <= moment), {"cause": "silence"})


def stays_from(result, since, until, causes):
    """When the verdict became one of these causes and stayed so; absent if it did not."""
    begin = since if at(result, since)["cause"] in causes else None
    for time, verdict in result["said"]:
        if since < time <= until:
            if verdict["cause"] not in causes:
                begin = None
            elif begin is None:
                begin = time
    return begin


class Score:
    def __init__(self, results):
        self.broken = [result for result in results if "broken" in result]
        results = [result for result in results if "broken" not in result]
        self.faults = [result for result in results if "onset" in result]
        self.worlds = [result for result in results if "onset" not in result]
        self.confused = collections.Counter()
        self.misses, self.onsets, self.repairs = [], [], []
        self.missed = {(result["scenario"], result["seed"]) for result in self.broken}
        self.right = self.among_two = self.called_healthy = self.blames = self.unnamed = 0
        for result in sorted(self.faults, key=lambda each: (each["scenario"], str(each["seed"]))):
            self.count_fault(result)
        for result in self.worlds:
            self.count_world(result)

    def count_fault(self, result):
        verdict, wanted = at(result, result["end"]), result["expect"]
        others = [other["cause"] for other in verdict.get("others", [])][:1]
        is_right = verdict["cause"] in wanted
        self.right += is_right
        self.among_two += is_right or any(other in wanted for other in others)
        self.called_healthy += verdict["cause"] == "healthy"
        if verdict["cause"] not in ("healthy", "unsure", "silence") and named_values(verdict) < 2:
            self.unnamed += 1
            self.miss(result, f"fewer than two measured values: {verdict['sentence']}")
        begin = stays_from(result, result["onset"], result["end"], wanted)
        if begin is not None:
            self.onsets.append(begin - result["onset"])
        if not is_right:
            self.confused[wanted[0], verdict["cause"]] += 1
            self.miss(result, f"wanted {'/'.join(wanted)}, said {verdict['cause']}"
                      f" (then {', '.join(others) or 'nothing'}): {verdict.get('sentence', '')}")
        if "over" in result:
            repaired = result.get("repaired", result["end"])
            healthy = stays_from(result, repaired, result["over"], ("healthy",))
            self.repairs.append(healthy - repaired if healthy is not None else float("inf"))
            if healthy is None:
                self.miss(result, f"not healthy after the repair: {at(result, result['over']).get('sentence', '')}")

    def count_world(self, result):
        blamed = [verdict for _, verdict in result["said"] if verdict["cause"] not in ("healthy", "unsure")]
        self.blames += bool(blamed)
        if blamed or at(result, result["end"])["cause"] != "healthy":
            last = blamed[0] if blamed else at(result, result["end"])
            self.miss(result, f"a healthy world, but: {last['cause']}: {last.get('sentence', '')}")

    def miss(self, result, text):
        self.missed.add((result["scenario"], result["seed"]))
        self.misses.append(f"- `{result['scenario']}` seed {result['seed']}: {text}")


def missed(results):
    """The pairs of scenario and seed that something was wrong with."""
    return Score(results).missed


def percentile(values, share):
    return sorted(values)[min(len(values) - 1, int(len(values) * share))] if values else float("nan")


def table(results, options, written_by="lab/run"):
    score = Score(results)
    faults, worlds = max(1, len(score.faults)), len(score.worlds)

    def share(count):
        return 100 * count / faults
    rows = [
        ("top cause right", f"{share(score.right):.1f} %", ">= 95 %", share(score.right) >= 95),
        ("right one among the first two", f"{share(score.among_two):.1f} %", ">= 99 %", share(score.among_two) >= 99),
        ("\"healthy\" for a fault", f"{share(score.called_healthy):.1f} %", "<= 1 %", share(score.called_healthy) <= 1),
        ("healthy worlds with a blame", f"{score.blames} of {worlds}", "0", score.blames == 0),
        ("from onset to verdict, p50", f"{percentile(score.onsets, 0.5):.1f} s", "<= 10 s", percentile(score.onsets, 0.5) <= 10),
        ("from onset to verdict, p95", f"{percentile(score.onsets, 0.95):.1f} s", "<= 30 s", percentile(score.onsets, 0.95) <= 30),
        ("from repair to healthy, longest", f"{max(score.repairs, default=0):.1f} s", "<= 30 s", max(score.repairs, default=0) <= 30),
        ("sentences with fewer than two measured values", str(score.unnamed), "0", score.unnamed == 0),
    ]
    is_good = all(row[3] for row in rows) and not score.broken
    names = {result["scenario"] for result in score.faults}
    lines = ["# The fault lab's score", "",
             f"{datetime.date.today()}, `{' '.join(options.subject.split('/')[-1:])}`, seeds {options.first_seed} to "
             f"{options.first_seed + options.seeds - 1}: {len(names)} faults, {len({w['scenario'] for w in score.worlds})} healthy "
             f"worlds, {len(results)} runs. Written by `{written_by}`.", "",
             "| measure | measured | wanted |", "|---|---:|---:|"]
    lines += [f"| {name} | {value if good else f'**{value}**'} | {wanted} |" for name, value, wanted, good in rows]
    if score.confused:
        lines += ["", "| fault | taken for | times |", "|---|---|---:|"]
        lines += [f"| {wanted} | {found} | {count} |" for (wanted, found), count in score.confused.most_common()]
    if score.misses:
        lines += ["", "## Every miss", "", *score.misses]
    if score.broken:
        lines += ["", "## Not played", "", *(f"- `{each['scenario']}` seed {each['seed']}: {each['broken']}" for each in score.broken)]
    return "\n".join(lines) + "\n", is_good
