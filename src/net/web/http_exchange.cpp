#include "net/web/http_exchange.h"

#include "net/web/curl_library.h"

#include <QCoreApplication>

#include <sys/select.h>

#include <algorithm>
#include <array>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

constexpr qsizetype kHeaderLimit = qsizetype(64) * 1024; // bytes, of one response
constexpr long kTransferBuffer = 128L * 1024; // bytes; libcurl's 16 KiB cost time on a fast link
constexpr long kLongestWaitMs = 60'000; // `cancel` ends the wait earlier
constexpr long kShortestWaitMs = 20;
constexpr long kBlindWaitMs = 100; // without a socket to watch
constexpr int kMostRedirects = 10;
constexpr std::array kRedirects {301, 302, 303, 305, 307, 308};

struct FreeEasy {
    void operator()(CURL* easy) const { curlLibrary()->easyCleanup(easy); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curlLibrary()->slistFreeAll(list); }
};

bool isAnyIn(const fd_set& descriptors, int highest)
{
    for (int each = 0; each <= highest; ++each) {
        if (FD_ISSET(each, &descriptors))
            return true;
    }
    return false;
}

/// One response, which may be a redirect. libcurl calls the static functions; a result other than
/// the number of bytes ends the transfer.
class Hop {
public:
    Hop(HttpExchange& exchange, const base::Clock& clock)
        : m_exchange(exchange)
        , m_clock(clock)
    {
    }

    /// Where the response leads to, if it is a redirect.
    std::optional<QUrl> run()
    {
        if (!m_easy) {
            m_exchange.errorText = u"Out of memory"_s;
            return {};
        }
        setRequest();
        setTrust();
        if (m_exchange.request.uploadSize)
            setUpload(*m_exchange.request.uploadSize);
        set(CURLOPT_HTTPHEADER, m_headers.get());
        noteError(perform());
        noteRefusal();
        // libcurl is content with an end inside the headers.
        if (!m_exchange.status && !m_exchange.errorText)
            m_exchange.errorText = u"The response headers are not complete"_s;
        return redirect();
    }

private:
    template <typename Value>
    void set(CURLoption option, Value value)
    {
        curlLibrary()->easySetopt(m_easy.get(), option, value);
    }

    void setRequest()
    {
        set(CURLOPT_URL, m_exchange.request.url.toEncoded().constData());
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        if (m_exchange.proxy)
            set(CURLOPT_PROXY, m_exchange.proxy->constData());
        set(CURLOPT_USERAGENT, "Mozilla/5.0"); // some portals refuse others
        set(CURLOPT_NOSIGNAL, 1L);
        // A resolver that hangs is left behind with its thread.
        set(CURLOPT_QUICK_EXIT, 1L);
        set(CURLOPT_ERRORBUFFER, m_error.data());
        set(CURLOPT_HEADERFUNCTION, &Hop::takeHeader);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Hop::takeBody);
        set(CURLOPT_WRITEDATA, this);
        if (!m_exchange.request.keepsBody)
            set(CURLOPT_BUFFERSIZE, kTransferBuffer);
        addHeader("Accept-Encoding: identity"); // a small body cannot become a large one
        if (m_exchange.request.keepsConnection)
            return;
        set(CURLOPT_FORBID_REUSE, 1L);
        addHeader("Connection: close");
    }

    void setTrust()
    {
        set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
        if (!m_exchange.authorityFile.isEmpty()) {
            set(CURLOPT_CAINFO, m_exchange.authorityFile.constData());
            set(CURLOPT_CAPATH, nullptr);
        } else if (curlLibrary()->versionInfo(CURLVERSION_NOW)->capath) {
            // The folder is searched for one authority. Reading the file of all takes 20 ms.
            set(CURLOPT_CAINFO, nullptr);
        }
    }

    void setUpload(qint64 size)
    {
        m_toSend = size;
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(size));
        set(CURLOPT_UPLOAD_BUFFERSIZE, kTransferBuffer);
        set(CURLOPT_READFUNCTION, &Hop::giveZeros);
        set(CURLOPT_READDATA, this);
        // A connection that was kept may turn out to be closed: libcurl begins anew on another.
        set(CURLOPT_SEEKFUNCTION, &Hop::seek);
        set(CURLOPT_SEEKDATA, this);
        addHeader("Content-Type: application/octet-stream");
        addHeader("Expect:"); // do not wait for a permission to send
    }

    void addHeader(const char* line)
    {
        if (curl_slist* longer = curlLibrary()->slistAppend(m_headers.get(), line)) {
            (void)m_headers.release(); // it is part of the longer one
            m_headers.reset(longer);
        }
    }

    CURLcode perform()
    {
        CURLM* multi = m_exchange.session.get();
        if (curlLibrary()->multiAddHandle(multi, m_easy.get()) != CURLM_OK)
            return CURLE_FAILED_INIT;
        int running = 1;
        while (running > 0 && !m_exchange.isCancelled) {
            if (curlLibrary()->multiPerform(multi, &running) != CURLM_OK)
                break;
            if (running > 0 && wait(multi))
                m_exchange.lastProgress = m_clock.monotonicNow();
        }
        CURLcode result = CURLE_ABORTED_BY_CALLBACK;
        int left = 0;
        if (const CURLMsg* message = curlLibrary()->multiInfoRead(multi, &left))
            result = message->data.result;
        curlLibrary()->multiRemoveHandle(multi, m_easy.get());
        return result;
    }

    /// Whether something happened on a socket, a handshake included. libcurl's own wait ends every
    /// millisecond or two while a name is resolved or a connection is made, although a socket
    /// shows the end of either.
    bool wait(CURLM* multi)
    {
        fd_set readable;
        fd_set writable;
        fd_set other;
        for (fd_set* descriptors : {&readable, &writable, &other})
            FD_ZERO(descriptors);
        int highest = -1;
        long due = -1; // ms; negative: nothing is
        curlLibrary()->multiFdset(multi, &readable, &writable, &other, &highest);
        curlLibrary()->multiTimeout(multi, &due);
        m_awaitsBytes = isAnyIn(readable, highest) && !isAnyIn(writable, highest);
        if (due == 0)
            return false;
        const int wake = m_exchange.wake.get();
        const bool canWake = wake >= 0 && wake < FD_SETSIZE;
        const long longest = canWake && highest >= 0 ? kLongestWaitMs : kBlindWaitMs;
        if (canWake)
            FD_SET(wake, &readable);
        const long ms = due < 0 ? longest : std::clamp(due, kShortestWaitMs, longest);
        timeval limit {.tv_sec = ms / 1000, .tv_usec = ms % 1000 * 1000};
        const int ready
            = ::select(std::max(highest, wake) + 1, &readable, &writable, &other, &limit);
        return ready > (canWake && ready > 0 && FD_ISSET(wake, &readable) ? 1 : 0);
    }

    void noteError(CURLcode result)
    {
        if (m_exchange.isTooLong || result == CURLE_OK)
            return;
        // libcurl quotes the address of a proxy that it does not like, password included.
        const bool isTold = m_error.front() != '\0' && !std::strchr(m_error.data(), '@');
        m_exchange.failure = failureOf(result);
        if (m_headerBytes > kHeaderLimit)
            m_exchange.errorText = u"The response headers are too long"_s;
        else
            m_exchange.errorText = QString::fromLocal8Bit(
                isTold ? m_error.data() : curlLibrary()->easyStrerror(result));
    }

    platform::HttpFailure failureOf(CURLcode result) const
    {
        using platform::HttpFailure;
        switch (result) {
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return HttpFailure::NotResolved;
        case CURLE_COULDNT_CONNECT:
            return HttpFailure::NotConnected;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CONNECT_ERROR:
            return HttpFailure::NotTrusted;
        case CURLE_ABORTED_BY_CALLBACK: // it took too long: how far did it come?
            break;
        default:
            return HttpFailure::Other;
        }
        double lookUp = 0;
        curlLibrary()->easyGetinfo(m_easy.get(), CURLINFO_NAMELOOKUP_TIME, &lookUp);
        if (lookUp <= 0)
            return HttpFailure::NotResolved;
        return m_awaitsBytes ? HttpFailure::Silent : HttpFailure::NotConnected;
    }

    /// A proxy that does not lead to the server has answered all the same.
    void noteRefusal()
    {
        long status = 0;
        curlLibrary()->easyGetinfo(m_easy.get(), CURLINFO_HTTP_CONNECTCODE, &status);
        if (!m_exchange.status && status >= 300)
            m_exchange.status = int(status);
    }

    std::optional<QUrl> redirect()
    {
        const char* next = nullptr;
        curlLibrary()->easyGetinfo(m_easy.get(), CURLINFO_REDIRECT_URL, &next);
        if (m_exchange.errorText || !next
            || std::ranges::find(kRedirects, m_exchange.status.value_or(0)) == kRedirects.end())
            return {};
        return QUrl::fromEncoded(next);
    }

    static size_t takeHeader(char* data, size_t, size_t size, void* self)
    {
        auto& hop = *static_cast<Hop*>(self);
        hop.m_headerBytes += qsizetype(size);
        if (hop.m_headerBytes > kHeaderLimit)
            return 0;
        const std::string_view line(data, size);
        if (line == "\r\n" || line == "\n") {
            long status = 0;
            curlLibrary()->easyGetinfo(hop.m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
            if (status != 0) // of a proxy's "connected" otherwise
                hop.m_exchange.status = int(status);
        }
        return size;
    }

    static size_t takeBody(char* data, size_t, size_t size, void* self)
    {
        auto& exchange = static_cast<Hop*>(self)->m_exchange;
        const auto& request = exchange.request;
        const bool wasNoticed = exchange.receivedBytes >= request.noticeBytes;
        exchange.receivedBytes += qint64(size);
        if (!wasNoticed && exchange.receivedBytes >= request.noticeBytes)
            exchange.tell(&HttpExchange::notice);
        if (request.keepsBody)
            exchange.body.append(data,
                std::min(qsizetype(size), qsizetype(request.bodyLimit) - exchange.body.size()));
        exchange.isTooLong = exchange.receivedBytes > request.bodyLimit;
        return exchange.isTooLong ? 0 : size;
    }

    static size_t giveZeros(char* into, size_t, size_t size, void* self)
    {
        auto& hop = *static_cast<Hop*>(self);
        const auto count = std::min(qint64(size), hop.m_toSend);
        std::memset(into, 0, size_t(count));
        hop.m_toSend -= count;
        return size_t(count);
    }

    static int seek(void* self, curl_off_t offset, int)
    {
        auto& hop = *static_cast<Hop*>(self);
        hop.m_toSend = *hop.m_exchange.request.uploadSize - offset;
        return CURL_SEEKFUNC_OK;
    }

    HttpExchange& m_exchange;
    const base::Clock& m_clock;
    std::array<char, CURL_ERROR_SIZE> m_error {};
    std::unique_ptr<curl_slist, FreeList> m_headers;
    const std::unique_ptr<CURL, FreeEasy> m_easy {curlLibrary()->easyInit()};
    qsizetype m_headerBytes = 0;
    qint64 m_toSend = 0;
    /// It is connected, and all is sent. libcurl's own time of the connection includes that of TLS.
    bool m_awaitsBytes = false;
};

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty()
        && (url.scheme() == u"https"_s || url.scheme() == u"http"_s);
}

bool mayFollow(const QUrl& from, const QUrl& to)
{
    return isWebAddress(to) && (to.scheme() == u"https"_s || from.scheme() == u"http"_s);
}

void followRedirects(HttpExchange& exchange, const base::Clock& clock)
{
    for (int redirects = 0; !exchange.isCancelled; ++redirects) {
        const auto next = Hop(exchange, clock).run();
        if (!next)
            return;
        if (redirects == kMostRedirects || !mayFollow(exchange.request.url, *next)) {
            exchange.errorText = u"The redirect is not followed"_s;
            return;
        }
        if (*exchange.status != 307 && *exchange.status != 308)
            exchange.request.uploadSize.reset();
        exchange.request.url = *next;
        exchange.status.reset();
        exchange.body.clear();
        exchange.receivedBytes = 0;
        exchange.isTooLong = false;
    }
}

} // namespace

void HttpExchange::cancel()
{
    isCancelled = true;
    (void)::eventfd_write(wake.get(), 1);
}

void HttpExchange::tell(Handler HttpExchange::*handler)
{
    const auto told = [exchange = shared_from_this(), handler] {
        if (const auto handle = std::exchange((*exchange).*handler, {}))
            handle();
    };
    // Nobody waits once there is no application.
    QMetaObject::invokeMethod(QCoreApplication::instance(), told, Qt::QueuedConnection);
}

void runExchange(HttpExchange& exchange, const base::Clock& clock)
{
    if (!curlLibrary()) {
        exchange.errorText = u"libcurl cannot be loaded"_s;
    } else if (isWebAddress(exchange.request.url)) {
        if (!exchange.session)
            exchange.session
                = std::shared_ptr<CURLM>(curlLibrary()->multiInit(), curlLibrary()->multiCleanup);
        followRedirects(exchange, clock);
    } else {
        exchange.errorText = u"Not an http or https address"_s;
    }
    if (!exchange.request.keepsConnection)
        exchange.session.reset(); // connections that are still to be closed are closed now
    exchange.endedAt = clock.monotonicNow();
}

} // namespace netvane::net
