#include "probes/portal_verdict.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

const QUrl kLogin(u"https://portal.test/login"_s);

} // namespace

class TestPortalVerdict : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void verdict_data()
    {
        QTest::addColumn<int>("status"); // 0: none
        QTest::addColumn<QByteArray>("body"); // null: none
        QTest::addColumn<bool>("isError");
        QTest::addColumn<bool>("isCaptive");
        QTest::addColumn<bool>("leadsToLogin");
        const auto row = [](const char* name, int status, const QByteArray& body, bool isError,
                             bool isCaptive, bool leadsToLogin) {
            QTest::newRow(name) << status << body << isError << isCaptive << leadsToLogin;
        };
        const QByteArray page = "<BODY>Success</BODY>";
        row("no response, error", 0, {}, true, true, false);
        row("no response, no error", 0, {}, false, false, false);
        row("the probe page", 200, page, false, false, false);
        row("another page", 200, "<form>log in</form>", false, true, true);
        row("another case", 200, "success SUCCESS", false, true, true);
        row("no body", 200, {}, false, false, false);
        row("broken off", 200, {}, true, false, false);
        row("not UTF-8", 200, "log in \xff", false, false, false);
        row("the word, not UTF-8", 200, "Success \xff", false, false, false);
        row("ends inside a character", 200, "log in \xc3", false, false, false);
        for (const int status : {100, 199, 201, 204, 299, 400, 404, 407, 500, 511, 999})
            row(qPrintable(u"status %1"_s.arg(status)), status, "log in", status >= 400, false,
                false);
        for (const int status : {300, 302, 304, 399})
            row(qPrintable(u"status %1"_s.arg(status)), status, page, status == 302, true, true);
    }
    void verdict()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(bool, isError);
        QFETCH(bool, isCaptive);
        QFETCH(bool, leadsToLogin);
        platform::HttpAnswer answer {.finalUrl = kLogin};
        if (status != 0)
            answer.status = status;
        if (!body.isNull())
            answer.body = body;
        if (isError)
            answer.errorText = u"why"_s;
        const probes::PortalVerdict expected {.isCaptive = isCaptive,
            .redirectAddress = leadsToLogin ? std::optional(kLogin) : std::nullopt};
        QCOMPARE(probes::judgePortal(answer), expected);
    }

    void aBodyThatWasCutOffMayEndInsideACharacter()
    {
        platform::HttpAnswer answer {.status = 200, .truncated = true, .finalUrl = kLogin};
        for (const char* body : {"x", "x\xf0\x9f\x98", "x\xf0\x9f", "x\xf0"}) {
            answer.body = body;
            QVERIFY(probes::judgePortal(answer).isCaptive);
        }
        answer.body = "x\xff\xff\xff\xff";
        QVERIFY(!probes::judgePortal(answer).isCaptive);
    }

    void addressesFromTheNetwork_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("isSafe");
        QTest::newRow("https") << u"https://portal.test/?a=b"_s << true;
        QTest::newRow("http") << u"http://10.0.0.1:8080/"_s << true;
        QTest::newRow("file") << u"file:///etc/passwd"_s << false;
        QTest::newRow("script") << u"javascript:alert(1)"_s << false;
        QTest::newRow("other program") << u"steam://run/1"_s << false;
        QTest::newRow("no host") << u"http:///x"_s << false;
        QTest::newRow("relative") << u"/login"_s << false;
        QTest::newRow("broken") << u"http://[::1/"_s << false;
        QTest::newRow("long") << u"https://portal.test/"_s + QString(2028, u'x') << true;
        QTest::newRow("longer") << u"https://portal.test/"_s + QString(2029, u'x') << false;
    }
    void addressesFromTheNetwork()
    {
        QFETCH(QString, address);
        const QUrl url(address);
        QTEST(probes::isSafeAddress(url), "isSafe");
        const platform::HttpAnswer answer {.status = 302, .finalUrl = url};
        QVERIFY(probes::judgePortal(answer).isCaptive);
        QTEST(probes::judgePortal(answer).redirectAddress.has_value(), "isSafe");
    }
};

NETVANE_TEST(TestPortalVerdict)
#include "test_portal_verdict.moc"
