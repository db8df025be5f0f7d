"""NetworkManager, and its permission to scan as polkit grants it to the unprivileged user."""
from watcher import (AUTHORIZED, NO_SNAPSHOT, NOT_PERMITTED, UNREADABLE, Watcher, agrees_with_iw,
                     becomes)
from world import HOME, shown

# polkit's answer, NetworkManager's word for it, the status of the permission.
ANSWERS = (('AUTH_ADMIN', 'auth', 0), ('NO', 'no', 2), ('YES', 'yes', 3))


def _published(status):
    """What is published where there was no link yet, under this status of the permission."""
    allowed = status == 3
    return NO_SNAPSHOT | {
        'error': UNREADABLE if allowed else NOT_PERMITTED,
        'needsPermission': not allowed,
        'authorization': status,
        'isAuthorized': allowed,
    }


def permissions(report, world):
    world.do('supplicant_down')
    world.do('bus_up')
    running = Watcher('unprivileged', 'running.log')
    becomes(report, 'a system bus without NetworkManager', [running], AUTHORIZED)
    world.start_manager()
    for answer, word, status in ANSWERS:
        world.grant_scans(answer, word)
        want = _published(status)
        becomes(report, f'permission changes to "{word}" while running', [running], want)
        fresh = Watcher('unprivileged', f'{word}.log')
        becomes(report, f'permission "{word}" from the start', [fresh], want)
        report.check(f'permission "{word}": ends at the end of its input', fresh.end(), 0)
    report.check('permissions: ends at the end of its input', running.end(), 0)


def managed_link(report, world):
    """A readable name proves that it may be read, whatever NetworkManager says of scans."""
    world.start_manager()
    world.grant_scans('NO', 'no')
    watcher = Watcher('unprivileged', 'managed.log')
    becomes(report, 'refused before NetworkManager associates', [watcher], _published(2))
    world.join(HOME)
    want = AUTHORIZED | {'ssid': shown(HOME.ssid), 'signal': HOME.dbm, 'error': None}
    becomes(report, 'a readable name corrects a refusal', [watcher], want)
    agrees_with_iw(report, 'link by NetworkManager as iw reads it', [watcher])
    report.check('link by NetworkManager: end of input', watcher.end(), 0)


SCENARIOS = (permissions, managed_link)
