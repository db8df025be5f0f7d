# A small internet behind the access points, for world.sh: whom Netvane asks answers here, under an
# authority of our own.
#
#   namespace "air"   192.168.N.1  the routers
#   namespace "far"   1.1.1.1      the public resolver's address
#                     10.9.2.1     the name service, which gives every name the address 198.51.100.2
#                     198.51.100.2 the web: the probe for portals
pki=$state/pki

authority_up() { # trusted by every program that is started from now on
    local key=(-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes)
    mkdir -p $pki
    openssl req -x509 "${key[@]}" -keyout $pki/authority.key -out $pki/authority.pem -days 2 \
        -subj '/CN=Netvane test authority' || return 1
    openssl req "${key[@]}" -keyout $pki/web.key -out $pki/web.csr -subj '/CN=far' || return 1
    openssl x509 -req -in $pki/web.csr -CA $pki/authority.pem -CAkey $pki/authority.key \
        -CAcreateserial -days 2 -out $pki/web.pem \
        -extfile <(echo subjectAltName=DNS:captive.apple.com) || return 1
    cp $pki/authority.pem \
        "/etc/ssl/certs/$(openssl x509 -in $pki/authority.pem -noout -hash).0" &&
        cat $pki/authority.pem >>/etc/ssl/certs/ca-certificates.crt
}
internet_up() {
    local address
    ip netns add far && ip link add to-far netns air type veth peer name to-air netns far &&
        ip -n air addr add 10.9.0.1/30 dev to-far && ip -n air link set to-far up &&
        ip -n far addr add 10.9.0.2/30 dev to-air && ip -n far link set to-air up &&
        ip -n far link set lo up && ip -n far route add default via 10.9.0.1 &&
        ip -n air route add default via 10.9.0.2 || return 1
    for address in 1.1.1.1 10.9.2.1 198.51.100.2; do
        ip -n far addr add $address/32 dev lo || return 1
    done
    ip netns exec air sysctl -qw net.ipv4.ip_forward=1
    authority_up || return 1
    ip netns exec far dnsmasq --conf-file=/dev/null --no-resolv --no-hosts --bind-interfaces \
        --listen-address=10.9.2.1 --local=/#/ --address=/#/198.51.100.2 --user=root --pid-file= \
        --log-facility="$logs/dnsmasq.log" || return 1
    ip netns exec far /usr/bin/python3 web.py $pki $state/portal >"$logs/web.log" 2>&1 &
    # A router's own page: its reachability is timed by it.
    mkdir -p $state/page
    ip netns exec air /usr/bin/python3 -m http.server -d $state/page 80 >/dev/null 2>&1 &
    echo nameserver 10.9.2.1 >/etc/resolv.conf
    wait_for 60 'ip netns exec far curl -sf --resolve captive.apple.com:443:198.51.100.2 \
        https://captive.apple.com/hotspot-detect.html'
}
portal() { # portal on|off: whether a login page stands before the web
    if [ "$1" = on ]; then touch $state/portal; else rm -f $state/portal; fi
}
