#include "insights/onboarding_service.h"
#include "simulated/desktop.h"
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
    /// Publishes before it stores, also when the value is the same again.
    void publishesAndStores()
    {
        simulated::UserDefaults defaults;
        OnboardingService service(defaults);
        QList<std::pair<bool, QVariant>> seen;
        connect(&service, &OnboardingService::isCompletedChanged, this, [&] {
            seen.append({service.isCompleted(), defaults.values.value(kKey)});
        });
        service.setIsCompleted(true);
        service.setIsCompleted(true);
        QCOMPARE(seen, (QList<std::pair<bool, QVariant>> {{true, {}}, {true, true}}));
        service.reset();
        QVERIFY(!service.isCompleted() && !defaults.values.contains(kKey));
    }
};

NETVANE_TEST(TestOnboardingService)
#include "test_onboarding_service.moc"
