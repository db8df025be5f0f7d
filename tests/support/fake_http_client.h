#pragma once

#include "platform/http_client.h"
#include "platform/url_opener.h"

#include <QList>
#include <QPointer>

#include <vector>

namespace netvane::test {

/// Keeps the requests until the test answers them.
class FakeHttpClient : public platform::HttpClient {
public:
    struct Pending {
        platform::HttpRequest request;
        QPointer<QObject> owner;
        std::function<void(const platform::HttpAnswer&)> deliver;
    };

    void get(const platform::HttpRequest& request, QObject* owner,
        std::function<void(const platform::HttpAnswer&)> deliver) override
    {
        pending.push_back({request, owner, std::move(deliver)});
    }

    /// Answers the request that has waited longest.
    void answer(const platform::HttpAnswer& answer)
    {
        const Pending first = std::move(pending.front());
        pending.erase(pending.begin());
        if (first.owner)
            first.deliver(answer);
    }

    std::vector<Pending> pending;
};

/// Only keeps what it is to open.
class FakeUrlOpener : public platform::UrlOpener {
public:
    bool openUrl(const QUrl& url) override
    {
        opened.append(url);
        return true;
    }

    QList<QUrl> opened;
};

} // namespace netvane::test
