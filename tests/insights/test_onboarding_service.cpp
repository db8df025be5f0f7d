#include "insights/onboarding_service.h"
#include "support/fake_user_defaults.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

using insights::OnboardingService;

namespace {

const QString kKey = u"netvane.onboarding.completed"_s;

} // namespace

class TestOnboardingService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Also when the value is the same again.
    void publishesBeforeItStores()
    {
        test::FakeUserDefaults defaults;
        OnboardingService service(defaults);
        QList<std::pair<bool, QVariant>> seen;
        connect(&service, &OnboardingService::isCompletedChanged, this, [&] {
            seen.append({service.isCompleted(), defaults.values.value(kKey)});
        });
        service.setIsCompleted(true);
        service.setIsCompleted(true);
        QCOMPARE(seen, (QList<std::pair<bool, QVariant>> {{true, {}}, {true, true}}));
    }

    void reset()
    {
        test::FakeUserDefaults defaults;
        OnboardingService service(defaults);
        service.setIsCompleted(true);
        service.reset();
        QVERIFY(!service.isCompleted());
        QVERIFY(!defaults.values.contains(kKey));
    }
};

NETVANE_TEST(TestOnboardingService)
#include "test_onboarding_service.moc"
