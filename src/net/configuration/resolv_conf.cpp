#include "net/configuration/resolv_conf.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>

namespace netvane::net {
namespace {

const QByteArray kKeyword = QByteArrayLiteral("nameserver");
constexpr qsizetype kLongestAddress = 128; // room for any address and any interface name

bool isIPv4(const QByteArray& text)
{
    in_addr address {};
    return ::inet_aton(text.constData(), &address) != 0;
}

bool isIPv6(const QByteArray& text)
{
    const qsizetype percent = text.indexOf('%');
    in6_addr address {};
    return percent != text.size() - 1
        && ::inet_pton(AF_INET6, (percent < 0 ? text : text.first(percent)).constData(), &address)
        == 1;
}

bool isAddress(const QByteArray& text)
{
    const bool printable
        = std::ranges::all_of(text, [](char each) { return each > ' ' && each <= '~'; });
    return printable && !text.isEmpty() && text.size() <= kLongestAddress
        && (isIPv4(text) || isIPv6(text));
}

/// The text between the keyword, which must begin the line, and the next blank.
QByteArray addressOf(const QByteArray& line)
{
    if (!line.startsWith(kKeyword))
        return {};
    const QByteArray rest = line.sliced(kKeyword.size());
    if (!rest.startsWith(' ') && !rest.startsWith('\t'))
        return {};
    const QByteArray trimmed = rest.trimmed();
    const auto blank
        = std::ranges::find_if(trimmed, [](char each) { return each == ' ' || each == '\t'; });
    return trimmed.first(blank - trimmed.begin());
}

} // namespace

QStringList parseNameservers(const QByteArray& text)
{
    QStringList servers;
    for (const QByteArray& line : text.split('\n')) {
        if (const QByteArray address = addressOf(line); isAddress(address))
            servers.append(QString::fromLatin1(address));
    }
    return servers;
}

} // namespace netvane::net
