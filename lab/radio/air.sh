# The lab's world of radios, read by world.sh of tests/rigs/radio: one network of two access points behind one router, of
# which the second is off at first, and a station that gets its address when it is let in and loses it with the link.
#
#   phy0, wlan0   the station      phy1, phy2   the access points      phy3, wlan3   another adapter, not there at first
radios=4
ssid=$(printf NetvaneHome | od -An -v -tx1 | tr -d ' \n')
key=netvane-radio-1
frequencies=('' 2437 2462)
bssid=02:00:00:00
settings='' # of the access points, beside those of world.sh

home_up() {
    radios_up $radios && ip -n air link add lan0 type bridge && ip -n air link set lan0 up || return 1
    ip -n air addr add 192.168.1.1/24 dev lan0
    point 1 && internet_up || return 1
    printf '%s\n' ctrl_interface=$state/control country=$country autoscan=periodic:3 >$state/supplicant.conf
    local psk
    for psk in $key not-the-passphrase; do
        printf '%s\n' 'network={' disabled=1 "ssid=$ssid" 'scan_freq=2437 2462' "psk=\"$psk\"" '}'
    done >>$state/supplicant.conf
    supplicant -t wpa_supplicant && wait_for 60 'cli status' || return 1
    leases &
}
leases() { # gives the station its address while it is let in, and takes it when it is not
    local idle was='' is operation
    exec {idle}<> <(:)
    while :; do
        read -rt 0.4 -u $idle
        operation='' is=''
        read -r operation </sys/class/net/wlan0/operstate
        [ "$operation" != up ] || [ -e $state/no-lease ] || is=let-in
        [ "$is" != "$was" ] || continue
        was=$is
        ip addr flush dev wlan0 scope global
        [ -z "$is" ] || { ip addr add 192.168.1.2/24 dev wlan0 && ip route add default via 192.168.1.1; }
    done 2>/dev/null
}
settle() { # all as it was at first
    stop_all
    rm -f $state/no-lease
    medium off
    echo 0 >/sys/kernel/debug/ieee80211/phy0/hwsim/ps
    ip netns exec air tc qdisc del dev lan0 root
    [ -e /sys/class/net/wlan0 ] || iw phy phy0 interface add wlan0 type managed
    iw phy phy3 set netns name air
    radio_switch unblock
    supplicant_signal CONT
    ip link set wlan0 up
    ip -n air link set to-far up && ip -n air route replace default via 10.9.0.2
    point_off 2
    [ -z "$settings" ] || point_off 1
    settings=''
    [ -e $state/ap1.pid ] || point 1
    access_point_does 1 deny_acl CLEAR
    in_range 1
    heard_at 1 -48
    choose 0
    linked
}
linked() { wait_for 60 'associated && ip route show default | grep -q wlan0 && ping -q -c 1 -W 1 1.1.1.1'; }

point() { # point NUMBER: an access point comes on the air
    local base=$state/ap$1
    {
        access_point_settings "$1" $ssid "${frequencies[$1]}" $key
        printf '%s\n' bridge=lan0 $settings
    } >"$base.conf"
    ip netns exec air hostapd -B -P "$base.pid" -f "$logs/ap$1.log" "$base.conf" || return 1
    ip netns exec air iw dev "wlan$1" set txpower fixed 0
    heard_at "$1" -48
}
point_off() { # point_off NUMBER: its power is cut, and it can tell nobody
    [ -e "$state/ap$1.pid" ] || return 0
    kill -KILL "$(<"$state/ap$1.pid")"
    rm "$state/ap$1.pid"
    ip -n air link set "wlan$1" down
}
deauthenticate() { access_point_does 1 deauthenticate $bssid:00:00 "reason=$1"; }
knows() { wait_for 30 "cli scan; cli bss $bssid:0$1:00 | grep -q ^bssid"; } # knows NUMBER: the station has heard it
move() { cli roam "$bssid:0$1:00"; } # move NUMBER: the station changes to that access point

medium() { # medium LOSS DBM, or off: see medium.py
    if [ "$1" != off ]; then
        echo "$*" >$state/medium
        [ -e $state/medium.pid ] && return
        /usr/bin/python3 medium.py $state/medium $radios >"$logs/medium.log" 2>&1 &
        echo $! >$state/medium.pid
    elif [ -e $state/medium.pid ]; then
        kill "$(<$state/medium.pid)"
        rm $state/medium.pid
    fi
}
loops=()
again() { # again SECONDS COMMAND: until stop_all, with a pause of so many seconds
    (
        while eval "$2" || true; do sleep "$1"; done
    ) &
    loops+=($!)
}
stop_all() {
    [ ${#loops[@]} = 0 ] || kill "${loops[@]}"
    loops=()
}
doze() { # the radio sleeps, and is awake for moments only
    echo 2 >/sys/kernel/debug/ieee80211/phy0/hwsim/ps
    sleep 0.3
    echo 0 >/sys/kernel/debug/ieee80211/phy0/hwsim/ps
}
second_adapter_in() { iw_in_air phy phy3 set netns 1 && ip link set wlan3 up; }
iw_in_air() { ip netns exec air iw "$@"; }
