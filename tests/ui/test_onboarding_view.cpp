#include "insights/onboarding_service.h"
#include "platform/url_opener.h"
#include "support/fake_http_client.h"
#include "support/fake_location_manager.h"
#include "support/fake_user_defaults.h"
#include "support/test_main.h"
#include "support/view_fixture.h"
#include "ui/state/onboarding_state.h"
#include "wifi/location_permission_service.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using test::FakeLocationManager;
using test::ViewFixture;

namespace {

struct World {
    test::FakeUserDefaults defaults;
    FakeLocationManager location;
    platform::ApplicationActivity activity;
    test::FakeUrlOpener opener;
    insights::OnboardingService onboarding {defaults};
    wifi::LocationPermissionService permission {location, activity};
    ui::OnboardingState state {onboarding, permission, opener};

    void grant()
    {
        location.change(FakeLocationManager::Status::AuthorizedAlways);
        QCoreApplication::processEvents();
    }
};

QStringList buttons(ViewFixture& view)
{
    QStringList labels;
    for (const auto& label : {u"Back"_s, u"Skip"_s, u"Continue"_s, u"Get Started"_s}) {
        if (view.find("text", label))
            labels.append(label);
    }
    return labels;
}

} // namespace

class TestOnboardingView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void grantingMovesOnFromThePermissionPageAlone()
    {
        World world;
        world.grant();
        QCOMPARE(world.state.currentStep(), int(ui::OnboardingState::Welcome));
        world.location.change(FakeLocationManager::Status::Denied);
        QCoreApplication::processEvents();
        world.state.goOn();
        world.location.change(FakeLocationManager::Status::AuthorizedWhenInUse);
        QCoreApplication::processEvents();
        QCOMPARE(world.state.currentStep(), int(ui::OnboardingState::Permission));
        world.grant();
        QCOMPARE(world.state.currentStep(), int(ui::OnboardingState::Ready));
    }

    void isCompletedOnceAndBeginsAnewAfterAReset()
    {
        World world;
        QSignalSpy completed(&world.onboarding, &insights::OnboardingService::isCompletedChanged);
        world.state.skip(); // not on this page
        QCOMPARE(world.state.currentStep(), int(ui::OnboardingState::Welcome));
        for (int press = 0; press < 5; ++press)
            world.state.goOn();
        QVERIFY(world.onboarding.isCompleted());
        QCOMPARE(completed.size(), 1);
        world.onboarding.reset();
        QCOMPARE(world.state.currentStep(), int(ui::OnboardingState::Welcome));
    }

    void goesThroughItsPages()
    {
        World world;
        ViewFixture view(
            u"OnboardingView"_s, {{u"viewState"_s, QVariant::fromValue(&world.state)}});
        QCOMPARE(view.root().implicitWidth(), 420.0);
        QCOMPARE(view.root().implicitHeight(), 500.0);
        QCOMPARE(view.texts(),
            QStringList({u"Welcome to Netvane"_s,
                u"Diagnose and monitor your Wi\u2011Fi connection with comprehensive real-time diagnostics."_s,
                u"Real-time signal strength & quality"_s,
                u"Router & internet performance metrics"_s, u"Live graphs and history"_s,
                u"Smart recommendations"_s, u"Continue"_s}));
        view.picture(u"onboarding-welcome"_s);

        view.click(view.find("text", u"Continue"_s));
        QTRY_VERIFY(!view.texts().contains(u"Welcome to Netvane"_s));
        QCOMPARE(view.texts(),
            QStringList({u"Location Permission"_s,
                u"Netvane needs Location Services permission to display your Wi\u2011Fi network name (SSID)."_s,
                u"Required by macOS for security reasons"_s, u"Your location is NOT tracked"_s,
                u"Only Wi\u2011Fi network information is accessed"_s, u"Open System Settings"_s,
                u"Back"_s, u"Skip"_s, u"Continue"_s}));
        view.click(view.find("text", u"Open System Settings"_s));
        QCOMPARE(world.opener.opened, QList<QUrl> {platform::kPrivacySettingsUrl});
        view.picture(u"onboarding-permission"_s);

        view.click(view.find("text", u"Skip"_s));
        QTRY_VERIFY(!view.texts().contains(u"Location Permission"_s));
        QCOMPARE(view.texts(),
            QStringList({u"You're All Set!"_s,
                u"Start monitoring your Wi\u2011Fi connection. Click the menu bar icon anytime to view diagnostics."_s,
                u"Key Features:"_s, u"Wi\u2011Fi metrics: Signal, noise, link rate"_s,
                u"Performance: Ping, jitter, packet loss"_s, u"DNS diagnostics & speed tests"_s,
                u"Historical graphs & trends"_s, u"Back"_s, u"Get Started"_s}));
        view.picture(u"onboarding-ready"_s);
        view.click(view.find("text", u"Get Started"_s));
        QVERIFY(world.onboarding.isCompleted());
        QCOMPARE(view.problems(), QStringList());
    }

    void whoHasThePermissionIsNotSentToTheSettings()
    {
        World world;
        world.grant();
        ViewFixture view(
            u"OnboardingView"_s, {{u"viewState"_s, QVariant::fromValue(&world.state)}});
        QCOMPARE(buttons(view), QStringList({u"Continue"_s}));
        QTest::keyClick(view.root().window(), Qt::Key_Return);
        QTRY_VERIFY(!view.texts().contains(u"Welcome to Netvane"_s));
        QVERIFY(view.texts().contains(u"Permission Granted"_s));
        QVERIFY(!view.find("text", u"Open System Settings"_s));
        QCOMPARE(buttons(view), QStringList({u"Back"_s, u"Skip"_s, u"Continue"_s}));
        view.picture(u"onboarding-granted"_s);
        view.click(view.find("text", u"Back"_s));
        QCOMPARE(buttons(view), QStringList({u"Continue"_s}));
        QCOMPARE(view.problems(), QStringList());
    }
};

NETVANE_TEST(TestOnboardingView)
#include "test_onboarding_view.moc"
