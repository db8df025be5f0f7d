"""What the program `iw` says of an interface: the other opinion to compare with."""
import dataclasses
import re
import subprocess


@dataclasses.dataclass(frozen=True)
class IwReading:
    """None, or an empty set, stands for what iw does not show."""
    ssid: bytes | None
    frequency: int | None
    signals: frozenset[int]
    rates: frozenset[int]
    noise: int | None


def iw(*arguments):
    return subprocess.run(['iw', *arguments], capture_output=True, text=True, timeout=60,
                          check=False).stdout


def read_iw(interface='wlan0'):
    """The link's signal and rate are given twice, by the link and by the list of stations."""
    link = iw('dev', interface, 'link')
    both = link + iw('dev', interface, 'station', 'dump')
    name = re.search(r'^\tSSID: (.*)$', link, re.M)
    frequency = re.search(r'^\tfreq: (\d+)', link, re.M)
    rates = re.findall(r'tx bitrate:\s*([\d.]+) MBit/s', both)
    return IwReading(
        ssid=_unescaped(name[1]) if name else None,
        frequency=int(frequency[1]) if frequency else None,
        signals=frozenset(int(dbm) for dbm in re.findall(r'\bsignal:\s*(-?\d+)', both)),
        rates=frozenset(int(float(rate)) for rate in rates),
        noise=_noise(interface, frequency[1]) if frequency else None)


@dataclasses.dataclass(frozen=True)
class IwNetwork:
    """One of the kernel's table."""
    ssid: bytes
    frequency: int
    signal: float
    seen_ms_ago: int


def read_iw_scan(interface='wlan0'):
    """The networks of the kernel's table by their BSSID; makes no scan."""
    networks = {}
    for text in re.split(r'^BSS ', iw('dev', interface, 'scan', 'dump'), flags=re.M)[1:]:
        name = re.search(r'^\tSSID: (.*)$', text, re.M)
        networks[text[:17]] = IwNetwork(
            ssid=_unescaped(name[1]) if name else b'',
            frequency=int(re.search(r'^\tfreq: (\d+)', text, re.M)[1]),
            signal=float(re.search(r'^\tsignal: (-?[\d.]+) dBm', text, re.M)[1]),
            seen_ms_ago=int(re.search(r'^\tlast seen: (\d+) ms ago', text, re.M)[1]))
    return networks


def _noise(interface, frequency):
    for channel in iw('dev', interface, 'survey', 'dump').split('Survey data'):
        noise = re.search(r'\bnoise:\s*(-?\d+) dBm', channel)
        if noise and re.search(rf'\bfrequency:\s*{frequency} MHz', channel):
            return int(noise[1])
    return None


def _unescaped(text):
    """The bytes of a name that iw has written with \\xNN for whatever is not plain ASCII."""
    return re.sub(rb'\\x([0-9a-f]{2})', lambda match: bytes([int(match[1], 16)]), text.encode())
