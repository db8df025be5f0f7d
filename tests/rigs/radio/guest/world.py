"""The Wi-Fi world: its networks, and the shell of world.sh that makes and changes it."""
import dataclasses
import os
import select
import shlex
import subprocess
import time

PASSPHRASE = 'netvane-radio-1'


@dataclasses.dataclass(frozen=True)
class Network:
    """One access point: its radio's number, its name's bytes, its frequency in MHz, the signal in
    dBm that the station has of it."""
    phy: int
    ssid: bytes
    frequency: int
    band: str
    dbm: int
    passphrase: str = ''


HOME = Network(1, b'NetvaneHome', 2437, 'twoPointFourGHz', -48, PASSPHRASE)
HOME_5_GHZ = Network(2, b'NetvaneHome5', 5180, 'fiveGHz', -61, PASSPHRASE)
HOME_6_GHZ = Network(3, b'NetvaneHome6', 5975, 'sixGHz', -55, PASSPHRASE)
AWKWARD = Network(4, b'<b>ne\xffv\xf0\x9f\x98\x80', 2412, 'twoPointFourGHz', -70)
# Comes on the air when it is wanted.
ELEVEN = Network(5, b'NetvaneEleven', 2462, 'twoPointFourGHz', -66)
NETWORKS = (HOME, HOME_5_GHZ, HOME_6_GHZ, AWKWARD)


def shown(ssid):
    """A network's name for people: bytes that are not UTF-8 as four visible characters each."""
    return ssid.decode('utf-8', 'backslashreplace')


def uptime():
    return time.clock_gettime(time.CLOCK_BOOTTIME)


class WorldError(Exception):
    """The world could not be brought into the state that a scenario wants."""


class World:
    def __init__(self):
        reader, writer = os.pipe()
        self._answers = os.fdopen(reader, 'rb', buffering=0)
        self._shell = subprocess.Popen(['bash', '-c', '. ./world.sh 3>&"$0"', str(writer)],
                                       text=True, stdin=subprocess.PIPE, pass_fds=[writer])
        os.close(writer)
        self._asked = 0
        self._chosen = None
        self._managed = False
        self._online = False
        self._has_eleven = False

    def do(self, *command, seconds=120):
        """Runs a command of world.sh, which must succeed."""
        self._asked += 1
        text = shlex.join(map(str, command))
        self._shell.stdin.write(f'{self._asked} {text}\n')
        self._shell.stdin.flush()
        end = time.monotonic() + seconds
        while select.select([self._answers], [], [], max(0, end - time.monotonic()))[0]:
            number, status = self._answers.readline().split() or (self._asked, 'the shell ended')
            if int(number) < self._asked:
                continue  # the late answer of a command that was given up
            if status != b'0':
                raise WorldError(f'failed with {status}: {text}')
            return
        raise WorldError(f'took more than {seconds} s: {text}')

    def wait_for(self, seconds, condition):
        self.do('wait_for', seconds, condition, seconds=seconds + 120)

    def build(self):
        self.do('radios_up', len(NETWORKS) + 4)  # the station, ELEVEN, the second adapter, a spare one
        for network in NETWORKS:
            self.start(network)
            self.do('supplicant_network', network.ssid.hex(), network.frequency,
                    network.passphrase)
        self.do('supplicant_network', HOME.ssid.hex(), HOME.frequency, 'not-the-passphrase')
        self.do('supplicant_up', seconds=240)

    def start(self, network):
        self.do('access_point', network.phy, network.ssid.hex(), network.frequency,
                network.passphrase)
        self.do('heard_at', network.phy, network.dbm)

    def start_eleven(self):
        if not self._has_eleven:
            self.start(ELEVEN)
        self._has_eleven = True

    def grant_scans(self, answer, word):
        """polkit's answer to the unprivileged user, and NetworkManager's word for it."""
        self.do('scan_permission', answer)
        self.wait_for(30, f'manager_permission | grep -q "\'{word}\'$"')

    def start_manager(self):
        """Hands the station from wpa_supplicant alone to NetworkManager, if that is still due."""
        if not self._managed:
            self.do('supplicant_down')
            self.do('bus_up')
            self.do('manager_up', seconds=240)
            self._managed = True
            self._chosen = None

    def go_online(self):
        """From now on the networks that are joined give an address, and the small internet."""
        self.do('internet_up')
        self._online = True
        self._chosen = None

    def join(self, network):
        """Associates with this network, if that is not so already."""
        if self._chosen != network and self._managed:
            router = [network.phy] if self._online else []
            self.do('manager_joins', shown(network.ssid), network.passphrase, *router, seconds=240)
        elif self._chosen != network:
            self.do('choose', NETWORKS.index(network))
        self._chosen = network
        self.await_link(network)

    def await_link(self, network):
        up = '' if self._managed else '&& associated'
        self.wait_for(60, f'iw dev wlan0 link | grep -q "freq: {network.frequency}" {up}')

    def leave(self):
        self.do('leave')
        self._chosen = None
        self.wait_for(30, 'iw dev wlan0 link | grep -q "Not connected"')
