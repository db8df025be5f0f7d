#!/usr/bin/env python3
"""Installs the build below a temporary folder and removes it again. Usage: run.py SOURCES BUILD VERSION"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sources, build, version = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
PREFIX = "/opt/a prefix"
MANIFEST = set("""
bin/netvane
bin/netvane-report
lib/netvane/netvane-views.so
share/applications/org.netvane.Netvane.desktop
share/doc/netvane/examples/autostart/org.netvane.Netvane.desktop
share/bash-completion/completions/netvane-report
share/doc/netvane/netvane-report.schema.json
share/doc/netvane/recordings.md
share/doc/netvane/examples/README.md
share/doc/netvane/examples/netvane-line
share/doc/netvane/examples/node_exporter/netvane-metrics.service
share/doc/netvane/examples/node_exporter/netvane-metrics.timer
share/doc/netvane/examples/waybar/config.jsonc
share/doc/netvane/examples/waybar/style.css
share/icons/hicolor/scalable/apps/org.netvane.Netvane.svg
share/icons/hicolor/symbolic/apps/org.netvane.Netvane-symbolic.svg
share/man/man1/netvane-report.1
share/man/man1/netvane.1
share/metainfo/org.netvane.Netvane.metainfo.xml
share/netvane/installed
""".split())


def script(name, *words, top, status=0):
    done = subprocess.run([sources / "scripts" / name, *words], env={**os.environ, "DESTDIR": str(top)},
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    assert done.returncode == status, f"{name} ended with {done.returncode}: {done.stderr}"


def below(top):
    return {str(path.relative_to(top)) for path in top.rglob("*")}


def key(entry, name):
    return re.search(rf"^{name}=(.*)$", entry.read_text(), re.M)[1]


def check_installed(prefix):
    files = {str(path.relative_to(prefix)) for path in prefix.rglob("*") if path.is_file()}
    assert files == MANIFEST, files ^ MANIFEST
    for entry in prefix.rglob("*.desktop"):
        for name in ("Exec", "TryExec"):
            assert shutil.which(key(entry, name), path=prefix / "bin"), f"{entry.name}: {name} leads nowhere"
        assert list(prefix.glob(f"share/icons/hicolor/*/apps/{key(entry, 'Icon')}.svg")), f"{entry.name}: no icon"
    # The status item asks for its icon by this name.
    name = re.search(r'u"(org\.netvane\.Netvane[^"]*)"', (sources / "src/shell/antenna_icon.cpp").read_text())[1]
    assert (prefix / f"share/icons/hicolor/symbolic/apps/{name}.svg").exists(), name


def check_program(prefix, name):
    """What the installed program says of itself without a display, and whether its manual page knows all of it."""
    def say(option):
        return subprocess.run([prefix / "bin" / name, option], env={"PATH": "", "HOME": "/nonexistent"}, timeout=60,
                              capture_output=True, text=True)
    assert say("--version").stdout == f"{name} {version}\n", say("--version")
    odd = say("--no-such-option")
    assert odd.returncode == 2 and not odd.stdout and "no-such-option" in odd.stderr, odd
    page = (prefix / f"share/man/man1/{name}.1").read_text().replace("\\-", "-")
    options = set(re.findall(r"--[a-z-]+", say("--help").stdout))
    assert len(options) > 1 and all(option in page for option in options), f"{name}.1 does not know all of {options}"


with tempfile.TemporaryDirectory() as folder:
    top = pathlib.Path(folder) / "a root"
    (top / PREFIX[1:] / "share/applications").mkdir(parents=True)  # not ours, although empty
    before = below(top)
    os.umask(0o077)
    for _ in range(2):  # the second time over the first
        script("install", build, PREFIX, top=top)
        check_installed(top / PREFIX[1:])
    assert all(path.stat().st_mode & 4 for path in (top / PREFIX[1:]).rglob("*")), "not for everybody"
    for program in ("netvane", "netvane-report"):
        check_program(top / PREFIX[1:], program)
    (top / PREFIX[1:] / "bin/neighbour").touch()
    script("uninstall", PREFIX, top=top)
    left = below(top) - before
    assert left == {"opt/a prefix/bin", "opt/a prefix/bin/neighbour"}, left
    assert below(top) >= before, before - below(top)
    script("uninstall", PREFIX, top=top, status=1)
    script("install", build, "relative", top=top, status=2)
print("packaging: ok")
