# The scenarios of `run`, in its shell. Every panel here has its tray at the left end of the lower edge.
item_x=15 item_y=885

# XEmbed: a click counts at its press, the second of two fast ones is a double one.
tint2_desktop tint2
picture start
popover_scenes
menu_scenes

# StatusNotifier: a click counts at its release, and the panel tells no geometry and draws the menu.
desktop xfce4-panel
mkdir -p "$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml"
cp "$here/xfce4-panel.xml" "$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml/"
start panel xfce4-panel --disable-wm-check
check "the panel watches for items" has_owner org.kde.StatusNotifierWatcher
run_program
check "the item is there" item_at_watcher
picture start
until_true says "Verdict: " || true # it changes the tool tip, and takes some rounds
check "the verdict is there" says "Verdict: "; settled
# Twelve seconds are more than two looks at the link.
signals=$(timeout 12 dbus-monitor --session "type='signal',path='/StatusNotifierItem'" | grep -c 'path=/StatusNotifierItem') || true
check "the item is silent while it stays the same" test "$signals" = 0
popover_scenes
menu_scenes

# No panel at all.
desktop bare
run_program
check "it says so" grep -q "no status area" "$log"
check "the window opens" window_count 1
window=$(of_width 600)
check "of the class that the desktop entry names" has_class_of_entry "$window"
xdotool windowmove "$window" 50 60
until_true saved "NetvaneWindow"
xdotool windowactivate --sync "$window" key alt+F4
check "the window closes" window_count 0
timeout 20 "$program" >"$folder/second.log" 2>&1
check "a second start says that there is a first" grep -q "Already running" "$folder/second.log"
check "and opens the first one's window" window_count 1
check "where it was" at "$(of_width 600)" 50 60
tint2_panel
check "the item is in a panel that comes later" item_in_tint2
at_item
check "and opens the popover" popover_shown; settled
timeout 20 "$program" >/dev/null 2>&1
settled; check "a second start now opens nothing" popover_shown
ends_on_sigterm

# A screen that is lower than the window: 640 by 450 points.
export QT_SCALE_FACTOR=2
tint2_desktop low
at_item 3; settled; xdotool key Down Return
check "the window is on the screen with its title bar" on_screen 1200
picture window
ends_on_sigterm
unset QT_SCALE_FACTOR

# A session bus that accepts and never answers, where Qt wants one for the screen reader.
desktop silent-bus
kill -STOP "$bus"
QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 run_program
check "it says so" says "session bus does not answer"
check "the window opens" window_count 1
timeout 20 "$program" >"$folder/second.log" 2>&1
check "a second start finds the first one" grep -q "Already running" "$folder/second.log"
ends_on_sigterm
kill -CONT "$bus"

# A display that hangs.
tint2_desktop hanging-display
at_item; check "the popover opens" popover_shown
kill -STOP "$xvfb"
kill "$netvane"; check "the program ends on SIGTERM" ended "$netvane"
kill -CONT "$xvfb"

# Services stop and start while the program runs.
desktop services
session_bus=$bus
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/system
start_system_bus() {
    start system-bus dbus-daemon --session --nofork --address="$DBUS_SYSTEM_BUS_ADDRESS"
    system_bus=$last
}
start_system_bus
tint2_panel
run_program
check "the item is there" item_in_tint2
stop "$system_bus"; check "calm without the system bus" is_calm "$netvane"
stop "$panel"; check "calm without a panel" is_calm "$netvane"
stop "$session_bus"; check "calm without any bus" is_calm "$netvane"
start_bus
check "its name is back on the bus" has_owner org.netvane.Netvane
timeout 20 "$program" >"$folder/second.log" 2>&1 || true
check "so that a second start finds it" grep -q "Already running" "$folder/second.log"
tint2_panel
check "the item comes back with the panel" item_in_tint2
at_item; check "and opens the popover" popover_shown; settled
at_item; check "and closes it" popover_hidden; settled
start_system_bus
check "calm with both buses again" is_calm "$netvane"
stop "$panel"
start panel xfce4-panel --disable-wm-check
check "calm with a panel of another kind" is_calm "$netvane"
ends_on_sigterm
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent

# The display goes away, with the popover open.
tint2_desktop lost-display
at_item; check "the popover opens" popover_shown
kill "$xvfb"
check "the program ends" ended "$netvane"
status=0; wait "$netvane" || status=$?
check "by itself" test "$status" = 1
check "and in order" says "The display is gone"

# What a screen reader finds, by the accessibility bus.
desktop accessibility
start registry /usr/libexec/at-spi-bus-launcher --launch-immediately
QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 start demo "${program}-demo" --scene home --popover
check "the upper part of the popover" "$here/accessible_tree" netvane-demo "push button: Verdict: Wi-Fi, router" \
    "heading: Netvane" "push button: Settings" \
    "panel: Connection" "label: -5" "panel: Signal Strength" "image: Signal: good" "image: Signal Strength history: Last " "panel: Router"
xdotool key End
check "the lower part" "$here/accessible_tree" netvane-demo "panel: Speed Test" "push button: Run Speed Test" \
    "panel: Traceroute" "text: " "push button: Run"
xdotool key Tab Return
check "the explanation of the verdict" "$here/accessible_tree" netvane-demo "heading: Wi-Fi, router" "list: The way" \
    "list item: Router: fine, 2 ms" "list: What was measured" "list item: The router answers in 2 ms, 2" "push button: Copy"
