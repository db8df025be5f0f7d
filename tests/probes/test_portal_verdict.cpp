#include "probes/portal_verdict.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

using Failure = std::optional<QString>;

const QUrl kLogin(u"https://portal.test/login"_s);

platform::HttpAnswer page(int status, const QByteArray& body)
{
    return {.status = status, .body = body, .finalUrl = kLogin};
}

} // namespace

Q_DECLARE_METATYPE(platform::HttpAnswer)

class TestPortalVerdict : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void verdict_data()
    {
        QTest::addColumn<platform::HttpAnswer>("answer");
        QTest::addColumn<bool>("isCaptive");
        const auto row = [](const char* name, bool isCaptive, const platform::HttpAnswer& answer) {
            QTest::newRow(name) << answer << isCaptive;
        };
        const Failure failure = u"why"_s;
        row("no response, error", true, {.errorText = failure});
        row("the probe page", false, page(200, "<BODY>Success</BODY>"));
        row("another page", true, page(200, "<form>log in</form>"));
        row("broken off", false, {.status = 200, .finalUrl = kLogin, .errorText = failure});
        for (const int status : {201, 299, 400, 511})
            row(qPrintable(u"status %1"_s.arg(status)), false, page(status, "log in"));
        for (const int status : {300, 399})
            row(qPrintable(u"status %1"_s.arg(status)), true, page(status, "Success"));
    }
    void verdict()
    {
        QFETCH(platform::HttpAnswer, answer);
        const auto verdict = probes::judgePortal(answer);
        QTEST(verdict.isCaptive, "isCaptive");
        const bool leadsToLogin = verdict.isCaptive && answer.status;
        QCOMPARE(verdict.redirectAddress, leadsToLogin ? std::optional(kLogin) : std::nullopt);
    }

    void aBodyThatWasCutOffMayEndInsideACharacter()
    {
        for (const bool truncated : {true, false}) {
            auto answer = page(200, "log in \xf0\x9f\x98");
            answer.truncated = truncated;
            QCOMPARE(probes::judgePortal(answer).isCaptive, truncated);
        }
    }

    void addressesFromTheNetwork()
    {
        const QString start = u"https://portal.test/"_s;
        const std::pair<QString, bool> addresses[] = {{u"http://10.0.0.1/"_s, true},
            {u"file:///etc/passwd"_s, false}, {start + QString(2029, u'x'), false}};
        for (const auto& [address, isSafe] : addresses) {
            const auto verdict = probes::judgePortal({.status = 302, .finalUrl = QUrl(address)});
            QVERIFY(verdict.isCaptive);
            QVERIFY2(verdict.redirectAddress.has_value() == isSafe, qPrintable(address));
        }
    }
};

NETVANE_TEST(TestPortalVerdict)
#include "test_portal_verdict.moc"
