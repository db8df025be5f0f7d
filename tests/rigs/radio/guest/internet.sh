# A small internet behind the access points, for world.sh: whom Netvane asks answers here, under an
# authority of our own.
#
#   namespace "air"   192.168.N.1  the routers
#   namespace "isp"   10.9.0.2     one hop more
#   namespace "far"   1.1.1.1      the public resolver's address, and that of the trace
#                     10.9.2.1     the name service, which gives every name the address 10.9.2.2
#                     10.9.2.2     the web: the probe for portals, and the speed test
pki=$state/pki
hosts='captive.apple.com speed.cloudflare.com'

wire() { # wire NAMESPACE ADDRESS NAMESPACE ADDRESS: joins the two
    ip link add "to-$3" netns "$1" type veth peer name "to-$1" netns "$3" &&
        ip -n "$1" addr add "$2/30" dev "to-$3" && ip -n "$1" link set "to-$3" up &&
        ip -n "$3" addr add "$4/30" dev "to-$1" && ip -n "$3" link set "to-$1" up
}
authority_up() { # trusted by every program that is started from now on
    local key=(-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes) names
    mkdir -p $pki
    openssl req -x509 "${key[@]}" -keyout $pki/authority.key -out $pki/authority.pem -days 2 \
        -subj '/CN=Netvane test authority' || return 1
    openssl req "${key[@]}" -keyout $pki/web.key -out $pki/web.csr -subj '/CN=far' || return 1
    names=$(printf ',DNS:%s' $hosts)
    openssl x509 -req -in $pki/web.csr -CA $pki/authority.pem -CAkey $pki/authority.key \
        -CAcreateserial -days 2 -out $pki/web.pem \
        -extfile <(echo "subjectAltName=${names#,}") || return 1
    cp $pki/authority.pem \
        "/etc/ssl/certs/$(openssl x509 -in $pki/authority.pem -noout -hash).0" &&
        cat $pki/authority.pem >>/etc/ssl/certs/ca-certificates.crt
}
internet_up() {
    ip netns add isp && ip netns add far || return 1
    wire air 10.9.0.1 isp 10.9.0.2 && wire isp 10.9.1.1 far 10.9.1.2 || return 1
    ip -n far link set lo up
    local address namespace
    for address in 1.1.1.1 10.9.2.1 10.9.2.2; do
        ip -n far addr add $address/32 dev lo || return 1
    done
    ip -n air route add default via 10.9.0.2 && ip -n isp route add default via 10.9.1.2 &&
        ip -n isp route add 192.168.0.0/16 via 10.9.0.1 &&
        ip -n far route add default via 10.9.1.1 || return 1
    for namespace in air isp far; do
        # Traced twice at once, a router would leave some probes without an answer.
        ip netns exec $namespace sysctl -qw net.ipv4.ip_forward=1 net.ipv4.icmp_ratelimit=0
    done
    authority_up || return 1
    ip netns exec far dnsmasq --conf-file=/dev/null --no-resolv --no-hosts --bind-interfaces \
        --listen-address=10.9.2.1 --local=/#/ --address=/#/10.9.2.2 --user=root --pid-file= \
        --log-facility="$logs/dnsmasq.log" || return 1
    ip netns exec far /usr/bin/python3 web.py $pki $state/portal >"$logs/web.log" 2>&1 &
    # A router's own page: its reachability is timed by it.
    mkdir -p $state/page
    ip netns exec air /usr/bin/python3 -m http.server -d $state/page 80 >/dev/null 2>&1 &
    echo nameserver 10.9.2.1 >/etc/resolv.conf
    wait_for 60 'ip netns exec far curl -sf --resolve speed.cloudflare.com:443:10.9.2.2 \
        "https://speed.cloudflare.com/__down?bytes=1"'
}
portal() { # portal on|off: whether a login page stands before the web
    if [ "$1" = on ]; then touch $state/portal; else rm -f $state/portal; fi
}
shape() { # shape RATE: of the wire to "far", both ways
    ip netns exec isp tc qdisc replace dev to-far root tbf rate "$1" burst 16kb latency 100ms &&
        ip netns exec far tc qdisc replace dev to-isp root tbf rate "$1" burst 16kb latency 100ms
}
