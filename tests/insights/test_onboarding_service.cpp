#include "insights/onboarding_service.h"
#include "simulated/desktop.h"
#include "support/test_main.h"

#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

class TestOnboardingService : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Publishes before it stores, also when the value is the same again.
    void publishesAndStores()
    {
        const QString key = u"netvane.onboarding.completed"_s;
        simulated::UserDefaults defaults;
        insights::OnboardingService service(defaults);
        QList<std::pair<bool, QVariant>> seen;
        connect(&service, &insights::OnboardingService::isCompletedChanged, this, [&] {
            seen.append({service.isCompleted(), defaults.values.value(key)});
        });
        service.setIsCompleted(true);
        service.setIsCompleted(true);
        QCOMPARE(seen, (QList<std::pair<bool, QVariant>> {{true, {}}, {true, true}}));
        service.reset();
        QVERIFY(!service.isCompleted() && !defaults.values.contains(key));
    }
};

NETVANE_TEST(TestOnboardingService)
#include "test_onboarding_service.moc"
