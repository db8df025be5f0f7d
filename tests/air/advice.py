#!/usr/bin/env python3
"""The rule of docs/decisions/air.md once more, over made-up tables: prints each with its advice as JSON."""
import json
import math
import random

FIVE = {20: list(range(36, 65, 4)) + list(range(100, 145, 4)) + list(range(149, 178, 4)),
        40: [38, 46, 54, 62, 102, 110, 118, 126, 134, 142, 151, 159, 167, 175],
        80: [42, 58, 106, 122, 138, 155, 171], 160: [50, 114, 163]}
SIX = {20: list(range(1, 234, 4)), 40: list(range(3, 228, 8)), 80: list(range(7, 216, 16)),
       160: list(range(15, 208, 32)), 320: [31, 63, 95, 127, 159, 191]}
BASE = {2: 2407, 5: 5000, 6: 5950}


def spectrum(centre, width):
    """The MHz that a channel covers."""
    return set(range(centre - width // 2, centre + width // 2))


def parts_of(network):
    width = max(20, network.get("width", 20))
    if "centre" not in network:
        return [spectrum(network["primary"], 20)]
    if "second" in network:
        return [spectrum(network[key], width // 2) for key in ("centre", "second")]
    return [spectrum(network["centre"], width)]


def common(one, other):
    return 1000 * len(one & other) // min(len(one), len(other))


def candidates(band, width):
    if band == 2:
        return [(number, spectrum(2407 + 5 * number, 20)) for number in (1, 6, 11)]
    found = []
    for centre in (FIVE if band == 5 else SIX)[width]:
        primaries = range(centre - width // 10 + 2, centre + width // 10, 4)
        if band == 6:
            primaries = [number for number in primaries if number in range(5, 234, 16)]
        if primaries:
            found.append((primaries[0], spectrum(BASE[band] + 5 * centre, width)))
    return found


def thousandths(share):
    return math.floor(share * 1000 + 0.5)


def advice(band, table):
    mine = [n for n in table["networks"] if n["band"] == band and n.get("ours")]
    if not mine:
        return {"kind": 0}
    ours, here = mine[0], parts_of(mine[0])[0]
    device = lambda n: (n["primary"], n["bssid"][3:14])
    others = [n for n in table["networks"] if n["band"] == band and not n.get("ours") and n["age"] <= 120000
              and n["signal"] >= -82 and device(n) != device(ours)]
    shared = lambda n, place: max(common(part, place) for part in parts_of(n))

    def airtime(place):
        measured = [thousandths(c["busy"]) for c in table["channels"] if "busy" in c
                    and min(place) < c["frequency"] <= max(place)]
        measured += [shared(n, place) * thousandths(n["load"]) // 1000 for n in others if "load" in n]
        own = thousandths(table["own"]) * common(here, place) // 1000
        assumed = sum(shared(n, place) * 40 // 1000 for n in others)
        return min(1000, max(max(measured, default=0) - own, assumed))

    result = {"kind": 1, "airtime": airtime(here)}
    if not table["scanned"] and all(shared(n, here) for n in others):
        return result
    rules = {c["frequency"]: c for c in table["channels"]}
    choices = []
    for number, place in candidates(band, 20 if band == 2 else len(here)):
        channels = [rules.get(middle) for middle in range(min(place) + 10, max(place), 20)]
        if place == here or not all(c and c["allowed"] and not c["passive"] for c in channels):
            continue
        radar = any(c["radar"] for c in channels)
        choices.append((airtime(place) + 100 * radar, min(place), number, radar))
    if not choices:
        return {**result, "kind": 2}
    cost, _, number, radar = min(choices)
    kind = 4 if result["airtime"] - cost >= 150 else 3
    return {**result, "kind": kind, "best": number, "bestAirtime": cost - 100 * radar, "radar": radar}


def table(seed):
    dice = random.Random(seed)
    networks, channels = [], []
    for band, widths in ((2, (20, 40)), (5, (20, 40, 80, 160)), (6, (20, 80, 160, 320))):
        numbers = {2: range(1, 14), 5: FIVE[20], 6: SIX[20]}[band]
        forbidden = dice.choice([0, 0.05, 0.2, 1])
        for number in numbers:
            channel = {"frequency": BASE[band] + 5 * number, "allowed": dice.random() >= forbidden,
                       "passive": dice.random() < 0.03, "radar": band == 5 and (number > 48 or dice.random() < 0.5)}
            if dice.random() < 0.3:
                channel["busy"] = dice.randrange(1001) / 1000 * dice.random()
            channels.append(channel)
        for index in range(dice.choice([1, 3, 12, 40])):
            width = dice.choice(widths)
            number, place = dice.choice(candidates(band, width))
            if band == 2:
                number = dice.choice(numbers)
                place = spectrum(2407 + 5 * number + dice.choice([-10, 10]) * (width == 40), width)
            network = {"band": band, "primary": BASE[band] + 5 * number, "width": width,
                       "centre": min(place) + len(place) // 2, "signal": dice.randrange(-95, -30),
                       "age": dice.choice([100, 30000, 119000, 121000]),
                       "bssid": "02:00:00:%02x:%02x:%02x" % (seed, index // 2 if index < 4 else index, index)}
            if index == 0 and dice.random() < 0.85:
                network["ours"] = True
            if dice.random() < 0.5:
                network["load"] = dice.randrange(256) / 255
            if dice.random() < 0.1:
                del network["centre"]
            elif band == 5 and width == 160 and not network.get("ours"):
                network.update(centre=5210, second=5290 + 5 * dice.choice([0, 43]))
            networks.append(network)
    made = {"seed": seed, "networks": networks, "channels": channels, "own": dice.choice([0, 0.1, 0.3]),
            "scanned": dice.random() < 0.5}
    made["advice"] = [advice(band, made) for band in (2, 5, 6)]
    return made


print(json.dumps([table(seed) for seed in range(30)]))
