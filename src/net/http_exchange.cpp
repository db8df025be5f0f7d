#include "net/http_exchange.h"

#include "net/curl_library.h"

#include <algorithm>
#include <array>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

namespace netvane::net {
namespace {

/// No proxy, whatever the environment says: libcurl takes an empty text for that.
constexpr auto kProxy = "";
constexpr qsizetype kHeaderLimit = qsizetype(64) * 1024; // bytes, of one response
constexpr long kTransferBuffer = 128L * 1024; // bytes; libcurl's 16 KiB cost time on a fast link
constexpr int kLongestPollMs = 60'000; // `cancel` ends the wait earlier
constexpr std::array kRedirects {301, 302, 303, 305, 307, 308};

struct FreeEasy {
    void operator()(CURL* easy) const { curlLibrary()->easyCleanup(easy); }
};
struct FreeList {
    void operator()(curl_slist* list) const { curlLibrary()->slistFreeAll(list); }
};

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
        if (m_exchange.uploadSize)
            setUpload();
        set(CURLOPT_HTTPHEADER, m_headers.get());
        noteError(perform());
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
        set(CURLOPT_URL, m_exchange.url.toEncoded().constData());
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
        set(CURLOPT_PROXY, kProxy);
        set(CURLOPT_USERAGENT, "Mozilla/5.0"); // some portals refuse others
        set(CURLOPT_FORBID_REUSE, 1L);
        set(CURLOPT_NOSIGNAL, 1L);
        // A resolver that hangs is left behind with its thread.
        set(CURLOPT_QUICK_EXIT, 1L);
        set(CURLOPT_ERRORBUFFER, m_error.data());
        set(CURLOPT_HEADERFUNCTION, &Hop::takeHeader);
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Hop::takeBody);
        set(CURLOPT_WRITEDATA, this);
        if (!m_exchange.keepsBody)
            set(CURLOPT_BUFFERSIZE, kTransferBuffer);
        addHeader("Accept-Encoding: identity"); // a small body cannot become a large one
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

    void setUpload()
    {
        m_toSend = *m_exchange.uploadSize;
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, curl_off_t(m_toSend));
        set(CURLOPT_UPLOAD_BUFFERSIZE, kTransferBuffer);
        set(CURLOPT_READFUNCTION, &Hop::giveZeros);
        set(CURLOPT_READDATA, this);
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
        CURLM* multi = m_exchange.multi;
        if (curlLibrary()->multiAddHandle(multi, m_easy.get()) != CURLM_OK)
            return CURLE_FAILED_INIT;
        int running = 1;
        while (running > 0 && !m_exchange.isCancelled) {
            if (curlLibrary()->multiPerform(multi, &running) != CURLM_OK)
                break;
            if (running > 0)
                curlLibrary()->multiPoll(multi, nullptr, 0, kLongestPollMs, nullptr);
        }
        CURLcode result = CURLE_ABORTED_BY_CALLBACK;
        int left = 0;
        if (const CURLMsg* message = curlLibrary()->multiInfoRead(multi, &left))
            result = message->data.result;
        curlLibrary()->multiRemoveHandle(multi, m_easy.get());
        return result;
    }

    void noteError(CURLcode result)
    {
        if (m_exchange.isTooLong || result == CURLE_OK)
            return;
        if (m_headerBytes > kHeaderLimit)
            m_exchange.errorText = u"The response headers are too long"_s;
        else
            m_exchange.errorText = QString::fromLocal8Bit(
                m_error.front() != '\0' ? m_error.data() : curlLibrary()->easyStrerror(result));
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

    void noteProgress() { m_exchange.lastProgress = m_clock.monotonicNow(); }

    static size_t takeHeader(char* data, size_t, size_t size, void* self)
    {
        auto& hop = *static_cast<Hop*>(self);
        hop.noteProgress();
        hop.m_headerBytes += qsizetype(size);
        if (hop.m_headerBytes > kHeaderLimit)
            return 0;
        const std::string_view line(data, size);
        if (line == "\r\n" || line == "\n") {
            long status = 0;
            curlLibrary()->easyGetinfo(hop.m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
            hop.m_exchange.status = int(status);
        }
        return size;
    }

    static size_t takeBody(char* data, size_t, size_t size, void* self)
    {
        auto& hop = *static_cast<Hop*>(self);
        auto& exchange = hop.m_exchange;
        hop.noteProgress();
        exchange.receivedBytes += qint64(size);
        if (exchange.keepsBody)
            exchange.body.append(data,
                std::min(qsizetype(size), qsizetype(exchange.bodyLimit) - exchange.body.size()));
        exchange.isTooLong = exchange.receivedBytes > exchange.bodyLimit;
        return exchange.isTooLong ? 0 : size;
    }

    static size_t giveZeros(char* into, size_t, size_t size, void* self)
    {
        auto& hop = *static_cast<Hop*>(self);
        hop.noteProgress();
        const auto count = std::min(qint64(size), hop.m_toSend);
        std::memset(into, 0, size_t(count));
        hop.m_toSend -= count;
        return size_t(count);
    }

    HttpExchange& m_exchange;
    const base::Clock& m_clock;
    std::array<char, CURL_ERROR_SIZE> m_error {};
    std::unique_ptr<curl_slist, FreeList> m_headers;
    const std::unique_ptr<CURL, FreeEasy> m_easy {curlLibrary()->easyInit()};
    qsizetype m_headerBytes = 0;
    qint64 m_toSend = 0;
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
        if (redirects == exchange.maximumRedirects || !mayFollow(exchange.url, *next)) {
            exchange.errorText = u"The redirect is not followed"_s;
            return;
        }
        if (*exchange.status != 307 && *exchange.status != 308)
            exchange.uploadSize.reset();
        exchange.url = *next;
        exchange.status.reset();
        exchange.body.clear();
        exchange.receivedBytes = 0;
        exchange.isTooLong = false;
    }
}

} // namespace

HttpExchange::~HttpExchange()
{
    if (multi)
        curlLibrary()->multiCleanup(multi);
}

void HttpExchange::cancel()
{
    isCancelled = true;
    if (multi)
        curlLibrary()->multiWakeup(multi);
}

void runExchange(HttpExchange& exchange, const base::Clock& clock)
{
    if (!curlLibrary()) {
        exchange.errorText = u"libcurl cannot be loaded"_s;
    } else if (isWebAddress(exchange.url)) {
        exchange.multi = curlLibrary()->multiInit();
        followRedirects(exchange, clock);
    } else {
        exchange.errorText = u"Not an http or https address"_s;
    }
    exchange.endedAt = clock.monotonicNow();
}

} // namespace netvane::net
