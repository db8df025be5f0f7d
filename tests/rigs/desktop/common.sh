# What the scripts of this folder share. Every scenario has a home, an X server and a message bus of its own.
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS SESSION_MANAGER
export LC_ALL=C.UTF-8 NO_AT_BRIDGE=1
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent
folder=$(mktemp -d)
started=()
faults=0

start() { # start NAME COMMAND...: in the background, its lines to $folder/NAME.log
    local name=$1; shift
    "$@" >"$folder/$name.log" 2>&1 &
    started+=($!)
    last=$!
}
stop() { kill "$1"; wait "$1" 2>/dev/null || true; } # stop PID
end() { # ends what `start` started, the last first
    local i
    for ((i = ${#started[@]} - 1; i >= 0; --i)); do kill "${started[i]}" 2>/dev/null || true; done
    for i in "${started[@]}"; do wait "$i" 2>/dev/null || true; done
    started=()
}
trap 'end; rm -rf "$folder"' EXIT

until_true() { # until_true CONDITION...: within ten seconds
    local i
    for i in {1..200}; do "$@" && return 0; sleep 0.05; done
    return 1
}
check() { # check WHAT CONDITION...
    local what=$1; shift
    until_true "$@" && echo "  ok: $what" && return
    echo "  FAILED: $scenario: $what"; faults=$((faults + 1)); picture "failed-$what"
}
picture() { [ -z "${PICTURES:-}" ] || import -window root "$PICTURES/$scenario-${1// /-}.png"; }

start_bus() {
    start bus dbus-daemon --session --nofork --address="$DBUS_SESSION_BUS_ADDRESS"
    bus=$last
    until_true test -S "$XDG_RUNTIME_DIR/bus"
}

cpu_ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }
is_calm() { # is_calm PID: alive, and under a twentieth of a core for two seconds
    local before after
    before=$(cpu_ticks "$1") || return 1
    sleep 2
    after=$(cpu_ticks "$1") || return 1
    [ $((after - before)) -le 10 ]
}
says() { grep -q "$1" "$log"; }
ended() { ! kill -0 "$1" 2>/dev/null; }
ended_well() { ended "$1" && wait "$1"; }
has_owner() { dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner "string:$1" | grep -q true; }
item_at_watcher() {
    dbus-send --session --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:RegisteredStatusNotifierItems | grep -q StatusNotifierItem
}

session() { # session NAME: begins a scenario
    end
    scenario=$1
    echo "$scenario"
    mkdir -p "$folder/$scenario/"{config,data,run,home}
    chmod 700 "$folder/$scenario/run"
    export HOME=$folder/$scenario/home XDG_CONFIG_HOME=$folder/$scenario/config
    export XDG_DATA_HOME=$folder/$scenario/data XDG_RUNTIME_DIR=$folder/$scenario/run
    rm -f "$folder/display" && mkfifo "$folder/display"
    exec 9<>"$folder/display"
    start xvfb Xvfb -displayfd 9 -screen 0 1280x900x24 -nolisten tcp -noreset
    xvfb=$last
    read -r -t 20 number <&9
    exec 9>&-
    export DISPLAY=:$number DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    start_bus
}
run_program() {
    start netvane "$program"
    netvane=$last
    log=$folder/netvane.log
    check "services run" grep -sq "All services started" "$log"
}

click() { xdotool mousemove "$1" "$2" click "${3:-1}"; }
at_item() { click "$item_x" "$item_y" "${1:-1}"; }
settled() { sleep 0.4; } # longer than what tells two clicks from a double click, and one click from the next
# What the popover does on any desktop. Leaves it open.
popover_opens_and_closes() {
    at_item; check "a click opens the popover" popover_shown
    check "it is wholly on the screen" on_screen
    check "it has the keyboard" is_active Netvane
    picture open; settled
    at_item; check "a second click closes it" popover_hidden
    settled; check "and does not open it again" popover_hidden
    at_item; check "the next one opens it" popover_shown; settled
}
ends_on_sigterm() { kill "$netvane"; check "the program ends on SIGTERM" ended_well "$netvane"; }
finish() { end; [ "$faults" = 0 ] && echo "$1: ok" || { echo "$1: $faults faults"; exit 1; }; }
