#include "support/test_main.h"
#include "world.h"

#include <QAccessible>
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
        world.permit(Status::Denied);
        world.permit(Status::AuthorizedAlways);
        state.skip(); // not on this page
        QCOMPARE(state.currentStep(), int(OnboardingState::Welcome));
        world.permit(Status::Denied);
        state.goOn();
        world.permit(Status::AuthorizedWhenInUse);
        QCOMPARE(state.currentStep(), int(OnboardingState::Permission));
        world.permit(Status::AuthorizedAlways);
        QCOMPARE(state.currentStep(), int(OnboardingState::Ready));
    }

    void goesThroughItsPages()
    {
        World world;
        ViewFixture view = world.show(u"OnboardingView"_s, *world.state.onboarding(), 420);
        QVERIFY(!view.shows(u"Back"_s));
        QCOMPARE(view.problems(), QStringList());
        QTest::keyClick(view.root().window(), Qt::Key_Return);
        QTRY_VERIFY(!view.shows(u"Welcome to Netvane"_s));
        // Who has the permission is not sent to the settings.
        QVERIFY(view.shows(u"Permission Granted"_s) && !view.shows(u"Open System Settings"_s));
        world.permit(Status::Denied);
        QCOMPARE(view.problems(), QStringList());
        view.click(u"Open System Settings"_s);
        QCOMPARE(world.simulated.opener.opened, QList<QUrl> {platform::kPrivacySettingsUrl});
        view.click(u"Skip"_s);
        QTRY_VERIFY(!view.shows(u"Location Permission"_s));
        QCOMPARE(view.problems(), QStringList());
        // As a screen reader presses it.
        QAccessible::queryAccessibleInterface(view.find("text", u"Get Started"_s))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(world.services.onboardingService->isCompleted());
    }
};

NETVANE_TEST(TestOnboardingView)
#include "test_onboarding_view.moc"
