# The scenarios of `run`, in its shell.

# XEmbed: a click counts at its press, the second of two fast ones is a double one.
desktop tint2
start panel tint2 -c "$here/tint2rc"
run_program
item_x=15 item_y=885
check "the item is there" item_in_tint2
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
item_x=15 item_y=885
check "the item is there" item_at_watcher
picture start
popover_scenes
menu_scenes

# No panel at all.
desktop bare
run_program
check "it says so" grep -q "no status area" "$log"
check "the window opens" window_count 1
window=$(of_width 600)
xdotool windowmove "$window" 50 60
until_true saved "NetvaneWindow"
xdotool windowactivate --sync "$window" key alt+F4
check "the window closes" window_count 0
timeout 20 "$program" >"$folder/second.log" 2>&1
check "a second start says that there is a first" grep -q "Already running" "$folder/second.log"
check "and opens the first one's window" window_count 1
check "where it was" at "$(of_width 600)" 50 60
start panel tint2 -c "$here/tint2rc"
item_x=15 item_y=885
check "the item is in a panel that comes later" item_in_tint2
at_item
check "and opens the popover" popover_shown; settled
timeout 20 "$program" >/dev/null 2>&1
settled; check "a second start now opens nothing" popover_shown
kill "$netvane"
check "the program ends on SIGTERM" ended_well "$netvane"

# What a screen reader finds, by the accessibility bus.
desktop accessibility
start registry /usr/libexec/at-spi-bus-launcher --launch-immediately
QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 start demo "${program}-demo" --scene home --popover
check "the upper part of the popover" "$here/accessible_tree" netvane-demo "heading: Netvane" "push button: Settings" \
    "panel: Connection" "label: -5" "panel: Signal Strength" "image: Signal Strength history: Last " "panel: Router"
xdotool key End
check "the lower part" "$here/accessible_tree" netvane-demo "panel: Speed Test" "push button: Run Speed Test" \
    "panel: Traceroute" "text: " "push button: Run"
