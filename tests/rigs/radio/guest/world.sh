#!/bin/bash
# A small Wi-Fi world on simulated radios, ordered about by world.py, which also lists its networks.
# A line of standard input is a number and a command, which is run in this shell; the number and the
# command's status are written as a line to descriptor 3.
#
#   this network namespace   phy0, wlan0: the station, whose link Netvane reads
#   namespace "air"          phy1, wlan1 and so on: one access point each; the last is the second
#                            adapter, until it is plugged in
#
# The access point of radio N answers 192.168.N.1. There is no name service and no internet before
# `internet_up`.
logs=${NETVANE_RADIO_LOGS:?}
state=/run/radio-world
country=DE # opens channels 36 and 5 (6 GHz) without a wait for radar
mkdir -p $state
. ./internet.sh

wait_for() { # wait_for SECONDS 'condition'
    local end=$((SECONDS + $1))
    until eval "$2" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || return 1
        sleep 0.2
    done
}

# --- The air ---

radios_up() { # radios_up COUNT: phy0 to phy(COUNT-1), all but the first in the namespace "air"
    modprobe mac80211_hwsim radios="$1" || return 1
    iw reg set $country
    wait_for 30 "iw reg get | grep -q 'country $country'" || return 1
    ip netns add air
    ip -n air link set lo up
    local phy
    for phy in $(seq 1 $(($1 - 1))); do
        iw phy "phy$phy" set netns name air || return 1
    done
}
access_point_settings() { # access_point_settings PHY SSID_HEX FREQUENCY PASSPHRASE
    printf '%s\n' "interface=wlan$1" driver=nl80211 "ctrl_interface=$state/hostapd" "ssid2=$2" country_code=$country ieee80211d=1 \
        wmm_enabled=1
    if [ "$3" -lt 3000 ]; then
        printf '%s\n' hw_mode=g "channel=$((($3 - 2407) / 5))" ieee80211n=1
    elif [ "$3" -lt 5950 ]; then
        printf '%s\n' hw_mode=a "channel=$((($3 - 5000) / 5))" ieee80211n=1 ieee80211ac=1
    else # only WPA3 is allowed there
        printf '%s\n' hw_mode=a "channel=$((($3 - 5950) / 5))" op_class=131 ieee80211ax=1 wpa=2 \
            wpa_key_mgmt=SAE rsn_pairwise=CCMP ieee80211w=2 sae_pwe=1 "sae_password=$4"
    fi
    if [ "$3" -lt 5950 ] && [ -n "$4" ]; then
        printf '%s\n' wpa=2 wpa_key_mgmt=WPA-PSK rsn_pairwise=CCMP "wpa_passphrase=$4"
    fi
}
access_point() { # access_point PHY SSID_HEX FREQUENCY PASSPHRASE, which is empty for an open one
    local base=$state/ap$1
    access_point_settings "$@" >"$base.conf"
    ip netns exec air hostapd -B -P "$base.pid" -f "$logs/ap$1.log" "$base.conf" || return 1
    ip netns exec air iw dev "wlan$1" set txpower fixed 0 &&
        ip -n air addr replace "192.168.$1.1/24" dev "wlan$1"
}
access_point_end() { kill "$(<$state/ap$1.pid)"; }
access_point_does() { hostapd_cli -p $state/hostapd -i "wlan$1" "${@:2}" | grep -qx OK; }
heard_at() { # heard_at PHY DBM: how loud everybody hears this radio, -99 to -1
    # A receiver's signal is this plus the sender's power, which access_point has set to 0 dBm.
    # The kernel's file takes an unsigned number up to 6.1 and a signed one from 6.2.
    local file=/sys/kernel/debug/ieee80211/phy$1/hwsim/rx_rssi
    printf '%u\n' "$2" 2>/dev/null >"$file" || echo "$2" >"$file"
}
# Radios hear each other when they have a group, which is a bit, in common.
in_range() { echo 1 >"/sys/kernel/debug/ieee80211/phy$1/hwsim/group"; }
out_of_range() { echo $((1 << ($1 + 1))) >"/sys/kernel/debug/ieee80211/phy$1/hwsim/group"; }

# --- The station ---

supplicant_network() { # supplicant_network SSID_HEX FREQUENCY PASSPHRASE: they count from 0
    {
        printf '%s\n' 'network={' disabled=1 "ssid=$1" "scan_freq=$2"
        [ "$2" -lt 5950 ] || printf '%s\n' key_mgmt=SAE ieee80211w=2
        if [ -n "$3" ]; then echo "psk=\"$3\""; else echo key_mgmt=NONE; fi
        echo '}'
    } >>$state/networks
}
supplicant() { # supplicant OPTION LOG
    wpa_supplicant -B "$1" -i wlan0 -D nl80211 -c $state/supplicant.conf \
        -P $state/supplicant.pid -f "$logs/$2.log"
}
supplicant_up() { # wpa_supplicant alone, without D-Bus
    printf '%s\n' ctrl_interface=$state/control country=$country sae_pwe=1 >$state/supplicant.conf
    cat $state/networks >>$state/supplicant.conf
    supplicant -t wpa_supplicant && wait_for 60 'cli status'
}
supplicant_on_bus() { # wpa_supplicant that other programs reach by D-Bus
    supplicant -u wpa_supplicant_alone && wait_for 60 'owns fi.w1.wpa_supplicant1'
}
iwd_up() {
    # It shall neither replace the interface nor scan by itself.
    printf '%s\n' '[General]' UseDefaultInterface=true '[Scan]' DisablePeriodicScan=true \
        >/etc/iwd/main.conf
    /usr/libexec/iwd >"$logs/iwd.log" 2>&1 &
    echo $! >$state/iwd.pid
    # Asked sooner, the bus would start another one.
    wait_for 60 'owns net.connman.iwd && gdbus call --system -d net.connman.iwd -o / \
        -m org.freedesktop.DBus.ObjectManager.GetManagedObjects | grep -q iwd.Station'
}
iwd_down() { kill "$(<$state/iwd.pid)" && wait_for 30 '! owns net.connman.iwd'; }
cli() { wpa_cli -p $state/control -i wlan0 "$@"; }
supplicant_down() {
    [ ! -s $state/supplicant.pid ] || kill "$(<$state/supplicant.pid)"
    wait_for 30 "[ ! -e $state/supplicant.pid ]"
}
supplicant_signal() { kill "-$1" "$(<$state/supplicant.pid)"; }
roam() { # roam BSSID: to another access point of the same network
    wait_for 30 "cli scan; cli bss $1 | grep -q ^bssid" && cli roam "$1" | grep -qx OK
}
choose() { cli select_network "$1" | grep -qx OK; }
leave() { cli disable_network all | grep -qx OK; }
associated() { cli status | grep -q wpa_state=COMPLETED; }
second_adapter() { # second_adapter in|out: wlan6 beside wlan0, and on, or not there
    if [ "$1" = in ]; then
        ip netns exec air iw phy phy6 set netns 1 && ip link set wlan6 up
    else
        iw phy phy6 set netns name air
    fi
}
radio_switch() { # radio_switch block|unblock: the station's alone, for rfkill knows no namespaces
    rfkill "$1" "$(cat /sys/class/ieee80211/phy0/rfkill*/index)"
}
traffic() { # traffic PHY: some frames to its access point, which let the driver choose a rate
    ip addr replace "192.168.$1.2/24" dev wlan0
    ping -q -c 30 -i 0.02 -W 1 "192.168.$1.1"
    ip addr del "192.168.$1.2/24" dev wlan0
}

# --- NetworkManager ---

scan_permission() { # scan_permission YES|NO|AUTH_ADMIN: polkit's answer to the unprivileged user
    cat >$state/rule <<RULE
polkit.addRule(function(action, subject) {
    if (action.id == "org.freedesktop.NetworkManager.wifi.scan" && subject.user == "nobody")
        return polkit.Result.$1;
});
RULE
    install -m 644 $state/rule /etc/polkit-1/rules.d/10-netvane-radio.rules
}
bus_up() { # the system bus and polkit
    [ ! -S /run/dbus/system_bus_socket ] || return 0
    local folder # the machine's own settings of polkit and NetworkManager do not count here
    for folder in /etc/polkit-1 /etc/NetworkManager /var/lib/NetworkManager; do
        mkdir -p $folder && mount -t tmpfs -o mode=755 tmpfs $folder || return 1
    done
    mkdir /etc/polkit-1/rules.d
    scan_permission AUTH_ADMIN
    mkdir -p /run/dbus && dbus-daemon --system --fork --nopidfile || return 1
    # Started by the bus on demand, its first answer takes many seconds.
    /usr/lib/polkit-1/polkitd --no-debug >"$logs/polkitd.log" 2>&1 &
    wait_for 60 'owns org.freedesktop.PolicyKit1'
}
owns() { # owns NAME: somebody has it on the system bus
    gdbus call --system -d org.freedesktop.DBus -o / -m org.freedesktop.DBus.NameHasOwner "$1" |
        grep -q true
}
manager_up() {
    /lib/systemd/systemd-udevd --daemon
    udevadm trigger --type=devices --subsystem-match=net --subsystem-match=ieee80211
    udevadm settle -t 60
    mkdir -p /run/NetworkManager /run/wpa_supplicant
    printf '%s\n' '[main]' plugins=keyfile rc-manager=unmanaged '[connectivity]' enabled=false \
        '[device]' wifi.scan-rand-mac-address=no >/etc/NetworkManager/NetworkManager.conf
    wpa_supplicant -B -u -s -O /run/wpa_supplicant -f "$logs/wpa_supplicant_dbus.log" || return 1
    # --debug: it stays in the foreground and logs to standard error.
    NetworkManager --debug --log-level=INFO >"$logs/NetworkManager.log" 2>&1 &
    echo $! >$state/manager.pid
    wait_for 90 'nmcli -t -f DEVICE,STATE device | grep -qx wlan0:disconnected'
}
manager_pauses() { # manager_pauses SECONDS: it answers nobody meanwhile
    kill -STOP "$(<$state/manager.pid)"
    (sleep "$1"; kill -CONT "$(<$state/manager.pid)") &
}
manager_permission() { # what NetworkManager answers to the unprivileged user: 'yes' and so on
    setpriv --reuid=65534 --regid=65534 --clear-groups gdbus call --system \
        -d org.freedesktop.NetworkManager -o /org/freedesktop/NetworkManager \
        -m org.freedesktop.NetworkManager.GetPermissions |
        grep -o "'org.freedesktop.NetworkManager.wifi.scan': '[a-z]*'"
}
manager_joins() { # manager_joins SSID PASSPHRASE [PHY]: with PHY through its access point online
    local addresses=(ipv4.method disabled)
    [ -z "${3:-}" ] || addresses=(ipv4.method manual ipv4.addresses "192.168.$3.2/24"
        ipv4.gateway "192.168.$3.1" ipv4.dns 10.9.2.1)
    wait_for 60 "nmcli -t -f SSID device wifi list --rescan auto | grep -qx '$1'" || return 1
    ! nmcli connection show test || nmcli connection delete test || return 1
    nmcli connection add save no type wifi ifname wlan0 con-name test ssid "$1" autoconnect no \
        "${addresses[@]}" ipv6.method disabled wifi-sec.key-mgmt wpa-psk wifi-sec.psk "$2" &&
        nmcli --wait 90 connection up test
}

while read -r number command; do
    eval "$command" </dev/null >>"$logs/world.log" 2>&1
    echo "$number $?" >&3
done
