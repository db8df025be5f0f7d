#pragma once

#include <QNetworkRequest>
#include <QUrl>

namespace netvane::net {

/// Whether an address may be asked at all: Qt would open files as well.
bool isWebAddress(const QUrl& url);

/// A request as a stranger would make it: nothing remembered, nothing unpacked, HTTP/1.1 over a
/// connection of its own, and no way from https back to http.
QNetworkRequest makeStrangersRequest(const QUrl& url, int maximumRedirects);

} // namespace netvane::net
