#include "program_world.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QPointer>
#include <QScreen>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString kFrameKey = u"NetvaneWindow"_s;

struct Shell : test::Program {
    explicit Shell(bool isOpened = false)
        : Program(true, isOpened)
    {
    }
    bool hasWindow() { return delegate->windowController()->isWindowVisible(); }
    QWindow& window() { return delegate->windowController()->window(); }
    void closeWindow()
    {
        window().close();
        QCoreApplication::processEvents();
    }
};

} // namespace

class TestShell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void contextMenu()
    {
        Shell shell;
        auto& manager = *shell.delegate->statusBarManager();
        QStringList entries;
        for (const auto* action : manager.contextMenu().actions())
            entries.append(action->text() + u'|' + action->shortcut().toString());
        QCOMPARE(
            entries, QStringList({u"Open in Window|Ctrl+D"_s, u"|"_s, u"Quit Netvane|Ctrl+Q"_s}));
        QCOMPARE(manager.statusItem()->contextMenu(), &manager.contextMenu());
        manager.contextMenu().actions().first()->trigger();
        QVERIFY(shell.hasWindow());
    }

    void clickBeforeTheServicesRun()
    {
        test::FakedWorld world(windows::makeQuickViews);
        world.host.setPresent(true);
        world.launch();
        world.clickItem();
        world.delegate->statusBarManager()->openInWindow();
        world.settle();
        QVERIFY(!world.delegate->popover()->isShown());
        QVERIFY(!world.delegate->windowController());
    }

    void clicksToggle()
    {
        Shell shell;
        QPointer<QQuickItem> root;
        // A tray calls the second of two fast clicks a double one.
        for (const auto reason : {QSystemTrayIcon::Trigger, QSystemTrayIcon::DoubleClick}) {
            QVERIFY(!shell.delegate->popoverMonitor());
            shell.click();
            QVERIFY(shell.popover().isShown());
            QVERIFY(shell.delegate->popoverMonitor());
            QVERIFY(!root || root == &shell.root()); // the view is kept
            root = &shell.root();
            shell.clickItem(reason);
            QVERIFY(!shell.popover().isShown());
        }
        shell.clickItem(QSystemTrayIcon::Context);
        shell.clickItem(QSystemTrayIcon::MiddleClick);
        QVERIFY(!shell.popover().isShown());
    }

    void popoverHeight()
    {
        Shell shell(true);
        const auto& window = *shell.popover().window();
        for (const auto& [wanted, height] :
            {std::pair(640, 640), {2000, 650}, {300, 300}, {0, 600}}) {
            shell.root().setImplicitHeight(wanted);
            QTRY_COMPARE(window.size(), QSize(420, height));
            QVERIFY(window.screen()->availableGeometry().contains(window.geometry()));
        }
    }

    void detailedWindow()
    {
        Shell shell(true);
        shell.key(Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!shell.popover().isShown());
        QVERIFY(shell.hasWindow());
        QPointer<QQuickItem> root = &shell.windowRoot(); // only brings it to the front
        QCOMPARE(root, &shell.windowRoot());
        const QPointer<QObject> state = root->property("viewState").value<QObject*>();
        QVERIFY(state);
        QCOMPARE(shell.window().title(), u"Netvane"_s);
        QCOMPARE(shell.window().size(),
            QSize(600, 800).boundedTo(shell.window().screen()->availableSize()));
        QCOMPARE(shell.window().minimumSize(), QSize(400, 600));
        shell.closeWindow();
        QVERIFY(!shell.hasWindow());
        QVERIFY(!root);
        QVERIFY(!state);
    }

    void windowFrameIsRemembered()
    {
        Shell shell;
        shell.windowRoot();
        shell.window().setGeometry(120, 40, 500, 650);
        QCoreApplication::processEvents();
        QVERIFY(!shell.defaults.text(kFrameKey));
        shell.clock->advance(1s);
        QVERIFY(shell.defaults.text(kFrameKey).value_or(u""_s).endsWith(u" 500 650"_s));
        shell.window().resize(520, 660);
        QCoreApplication::processEvents();
        shell.closeWindow(); // stores at once
        QVERIFY(shell.defaults.text(kFrameKey)->endsWith(u" 520 660"_s));
        shell.windowRoot();
        QCOMPARE(shell.window().geometry(), QRect(120, 40, 520, 660));
        shell.click(); // the program ends with both windows open
        QVERIFY(shell.popover().isShown());
    }

    void statusAreaHasThreeSeconds()
    {
        for (const auto& [comesAfter, late] : {std::pair(2'999ms, 0), {3'000ms, 1}}) {
            test::FakedWorld world(windows::makeQuickViews);
            world.launchAll();
            QVERIFY(!world.delegate->statusBarManager()->statusItem());
            world.clock->advance(comesAfter);
            world.host.setPresent(true);
            QVERIFY(world.delegate->statusBarManager()->statusItem());
            world.clock->advance(60s);
            QCOMPARE(m_log.take().filter(u"no status area"_s).size(), late);
            QCOMPARE(world.delegate->windowController() ? 1 : 0, late);
        }
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestShell)
#include "test_shell.moc"
