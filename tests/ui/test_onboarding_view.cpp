#include "support/test_main.h"
#include "world.h"

#include <QSignalSpy>
#include <QTest>

using namespace netvane;
using namespace netvane::test;
using Status = platform::AuthorizationStatus;
using ui::OnboardingState;

class TestOnboardingView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void grantingGoesOnFromThePermissionPageAlone()
    {
        World world;
        auto& state = *world.state.onboarding();
        QCOMPARE(state.currentStep(), int(OnboardingState::Welcome));
        world.permit(Status::Denied);
        state.goOn();
        world.permit(Status::AuthorizedWhenInUse);
        QCOMPARE(state.currentStep(), int(OnboardingState::Permission));
        world.permit(Status::AuthorizedAlways);
        QCOMPARE(state.currentStep(), int(OnboardingState::Ready));
    }

    void isCompletedOnceAndBeginsAnewAfterAReset()
    {
        World world;
        auto& state = *world.state.onboarding();
        auto& service = *world.services.onboardingService;
        QSignalSpy completed(&service, &insights::OnboardingService::isCompletedChanged);
        state.skip(); // not on this page
        QCOMPARE(state.currentStep(), int(OnboardingState::Welcome));
        for (int press = 0; press < 5; ++press)
            state.goOn();
        QVERIFY(service.isCompleted());
        QCOMPARE(completed.size(), 1);
        service.reset();
        QCOMPARE(state.currentStep(), int(OnboardingState::Welcome));
    }

    void goesThroughItsPages()
    {
        World world;
        world.permit(Status::Denied);
        ViewFixture view = world.show(u"OnboardingView"_s, *world.state.onboarding(), 420);
        QVERIFY(!view.find("text", u"Back"_s));
        QCOMPARE(view.problems(u"onboarding-welcome"_s), QStringList());
        view.click(u"Continue"_s);
        QTRY_VERIFY(!view.find("text", u"Welcome to Netvane"_s));
        QVERIFY(view.find("text", u"Back"_s));
        QCOMPARE(view.problems(u"onboarding-permission"_s), QStringList());
        view.click(u"Open System Settings"_s);
        QCOMPARE(world.simulated.opener.opened, QList<QUrl> {platform::kPrivacySettingsUrl});
        view.click(u"Skip"_s);
        QTRY_VERIFY(!view.find("text", u"Location Permission"_s));
        QCOMPARE(view.problems(u"onboarding-ready"_s), QStringList());
        view.click(u"Get Started"_s);
        QVERIFY(world.services.onboardingService->isCompleted());
    }

    void whoHasThePermissionIsNotSentToTheSettings()
    {
        World world;
        ViewFixture view = world.show(u"OnboardingView"_s, *world.state.onboarding(), 420);
        QTest::keyClick(view.root().window(), Qt::Key_Return);
        QTRY_VERIFY(!view.find("text", u"Welcome to Netvane"_s));
        QVERIFY(view.find("text", u"Permission Granted"_s));
        QVERIFY(!view.find("text", u"Open System Settings"_s));
        QCOMPARE(view.problems(u"onboarding-granted"_s), QStringList());
    }
};

NETVANE_TEST(TestOnboardingView)
#include "test_onboarding_view.moc"
