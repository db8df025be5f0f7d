#include "probes/captive_portal_service.h"
#include "simulated/desktop.h"
#include "simulated/http.h"
#include "simulated/manual_clock.h"
#include "support/test_main.h"

#include <QtTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace netvane;
using platform::HttpAnswer;

namespace {

const QUrl kProbe(u"https://probe.test/hotspot-detect.html"_s);
const QUrl kLogin(u"http://portal.test/login"_s);
const HttpAnswer kCaptive {.status = 200, .body = "log in"_ba, .finalUrl = kLogin};
const HttpAnswer kFree {.status = 200, .body = "Success"_ba, .finalUrl = kProbe};

} // namespace

class TestCaptivePortalService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void checksAtOnceAndEveryHalfMinute()
    {
        m_service.start();
        QCOMPARE(m_http.pending[0].request.url, kProbe);
        QCOMPARE(m_http.pending[0].request.silenceLimit, 5000ms);
        QCOMPARE(m_http.pending[0].request.timeLimit, std::optional(15000ms));
        m_clock.advance(29999ms);
        QCOMPARE(m_http.pending.size(), size_t(1));
        m_clock.advance(1ms);
        QCOMPARE(m_http.pending.size(), size_t(2)); // the first one is not ended
        m_service.stop();
        m_clock.advance(30s);
        QCOMPARE(m_http.pending.size(), size_t(2));
        m_http.pending.clear();
    }

    void publishesEachVerdict()
    {
        QSignalSpy flag(&m_service, &probes::CaptivePortalService::isCaptiveChanged);
        QSignalSpy address(&m_service, &probes::CaptivePortalService::loginURLChanged);
        QVERIFY(!m_service.isCaptive() && !m_service.loginURL());
        m_service.openLoginPage();
        QCOMPARE(m_opener.opened, QList {kProbe});

        check(kFree);
        QVERIFY(!m_service.isCaptive());
        QCOMPARE(m_service.loginURL(), kProbe);
        check(kCaptive);
        check(kCaptive);
        QVERIFY(m_service.isCaptive());
        QCOMPARE(m_service.loginURL(), kLogin);
        m_service.openLoginPage();
        QCOMPARE(m_opener.opened.last(), kLogin);

        check({.finalUrl = kLogin, .errorText = u"offline"_s});
        QVERIFY(m_service.isCaptive());
        QCOMPARE(m_service.loginURL(), kProbe);
        check(kFree);
        QVERIFY(!m_service.isCaptive());
        QCOMPARE(flag.size(), 2);
        QCOMPARE(address.size(), 3);
    }

private:
    void check(const HttpAnswer& answer)
    {
        m_service.checkForCaptivePortal();
        m_http.answer(answer);
    }

    simulated::ManualClock m_clock;
    simulated::HttpClient m_http {m_clock};
    simulated::UrlOpener m_opener;
    probes::CaptivePortalService m_service {m_http, &m_opener, m_clock, kProbe};
};

NETVANE_TEST(TestCaptivePortalService)
#include "test_captive_portal_service.moc"
