#include "app/status_bar_manager.h"
#include "launched_world.h"
#include "shell/detailed_window_controller.h"
#include "shell/popover_window.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QApplication>
#include <QQuickItem>
#include <QScreen>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString kFrameKey = u"NetvaneWindow"_s;

/// The shell on a desktop with a status area, with its services running.
struct Shell : test::LaunchedWorld {
    Shell()
    {
        host->setPresent(true);
        launchAll();
    }

    app::StatusBarManager& manager() { return *delegate->statusBarManager(); }
    shell::PopoverWindow& popover() { return *delegate->popover(); }
    shell::DetailedWindowController* controller() { return delegate->windowController(); }
    void click(QSystemTrayIcon::ActivationReason reason = QSystemTrayIcon::Trigger)
    {
        Q_EMIT manager().statusItem()->activated(reason);
        QCoreApplication::processEvents();
    }
    void openWindow()
    {
        manager().openInWindow();
        QVERIFY(QTest::qWaitForWindowActive(&controller()->window()));
    }
    void closeWindow()
    {
        controller()->window().close();
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
        QStringList entries;
        for (const auto* action : shell.manager().contextMenu().actions())
            entries.append(action->isSeparator()
                    ? u"-"_s
                    : action->text() + u' ' + action->shortcut().toString());
        QCOMPARE(
            entries, QStringList({u"Open in Window Ctrl+D"_s, u"-"_s, u"Quit Netvane Ctrl+Q"_s}));
        QCOMPARE(shell.manager().statusItem()->contextMenu(), &shell.manager().contextMenu());
        shell.manager().contextMenu().actions().first()->trigger();
        QVERIFY(shell.controller()->isWindowVisible());
    }

    void clickBeforeTheServicesRun()
    {
        test::LaunchedWorld world;
        world.host->setPresent(true);
        world.launch();
        Q_EMIT world.delegate->statusBarManager()->statusItem()->activated(
            QSystemTrayIcon::Trigger);
        world.delegate->statusBarManager()->openInWindow();
        QVERIFY(!world.views);
        world.settle();
        QVERIFY(!world.delegate->popover()->isShown());
    }

    void clicksToggle()
    {
        Shell shell;
        QVERIFY(!shell.delegate->popoverMonitor());
        // A tray calls the second of two fast clicks a double one.
        for (const auto reason : {QSystemTrayIcon::Trigger, QSystemTrayIcon::DoubleClick}) {
            shell.click();
            QVERIFY(shell.popover().isShown());
            QVERIFY(shell.delegate->popoverMonitor());
            shell.click(reason);
            QVERIFY(!shell.popover().isShown());
            QVERIFY(!shell.delegate->popoverMonitor());
        }
        shell.click(QSystemTrayIcon::Context);
        shell.click(QSystemTrayIcon::MiddleClick);
        QVERIFY(!shell.popover().isShown());
        QCOMPARE(shell.views->made, 1); // kept
    }

    /// Without X11 a click outside shows as the loss of the keyboard.
    void clickOutside()
    {
        Shell shell;
        shell.click();
        QVERIFY(QTest::qWaitForWindowActive(shell.popover().window()));
        QWindow other;
        other.show();
        other.requestActivate();
        QTRY_VERIFY(!shell.popover().isShown());
        QVERIFY(!shell.delegate->popoverMonitor());
        // The press may have been the beginning of a click on the item.
        shell.click();
        QVERIFY(!shell.popover().isShown());
        shell.clock->advance(250ms);
        shell.click();
        QVERIFY(shell.popover().isShown());
    }

    void keysInThePopover()
    {
        Shell shell;
        shell.click();
        QVERIFY(QTest::qWaitForWindowActive(shell.popover().window()));
        QTest::keyClick(shell.popover().window(), Qt::Key_Escape);
        QVERIFY(!shell.popover().isShown());
        shell.click();
        QVERIFY(QTest::qWaitForWindowActive(shell.popover().window()));
        QTest::keyClick(shell.popover().window(), Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!shell.popover().isShown());
        QVERIFY(shell.controller()->isWindowVisible());
    }

    void popoverHeight()
    {
        Shell shell;
        shell.click();
        auto& window = *shell.popover().window();
        QCOMPARE(window.size(), QSize(420, 500));
        for (const auto& [wanted, height] :
            {std::pair(640, 640), std::pair(2000, 650), std::pair(300, 300), std::pair(0, 600)}) {
            windows::rootOf(window).setProperty("wantedHeight", wanted);
            QTRY_COMPARE(window.size(), QSize(420, height));
            QVERIFY(window.screen()->availableGeometry().contains(window.geometry()));
        }
    }

    void detailedWindow()
    {
        Shell shell;
        shell.click();
        shell.openWindow();
        QVERIFY(!shell.popover().isShown());
        const auto& window = shell.controller()->window();
        QCOMPARE(window.title(), u"Netvane"_s);
        QCOMPARE(window.size(), QSize(600, 800).boundedTo(window.screen()->availableSize()));
        QCOMPARE(window.minimumSize(), QSize(400, 600));

        const auto* first = shell.controller();
        shell.openWindow(); // only brings it to the front
        QCOMPARE(shell.controller(), first);
        QCOMPARE(shell.views->made, 2);

        shell.closeWindow();
        QVERIFY(!shell.controller()->isWindowVisible());
        QVERIFY(shell.views->windowState.expired());
        shell.openWindow();
        QCOMPARE(shell.views->made, 3);
        QVERIFY(shell.controller()->isWindowVisible());
    }

    void windowFrameIsRemembered()
    {
        Shell shell;
        shell.openWindow();
        shell.controller()->window().setGeometry(120, 40, 500, 650);
        QCoreApplication::processEvents();
        QVERIFY(!shell.defaults->text(kFrameKey));
        shell.clock->advance(1s);
        const auto stored = shell.defaults->text(kFrameKey);
        QVERIFY(stored);
        QVERIFY2(stored->endsWith(u" 500 650"_s), qPrintable(*stored));
        shell.controller()->window().resize(520, 660);
        QCoreApplication::processEvents();
        shell.closeWindow(); // at once
        QVERIFY(shell.defaults->text(kFrameKey)->endsWith(u" 520 660"_s));
        shell.openWindow();
        QCOMPARE(shell.controller()->window().size(), QSize(520, 660));
        QCOMPARE(shell.controller()->window().geometry().topLeft(), QPoint(120, 40));
    }

    void noStatusArea()
    {
        test::LaunchedWorld world;
        world.host->setPresent(false);
        world.launchAll();
        QVERIFY(!world.delegate->statusBarManager()->statusItem());
        const auto said = [this] { return m_log.take().filter(u"no status area"_s).size(); };
        world.clock->advance(2'999ms);
        QCOMPARE(said(), 0);
        world.clock->advance(1ms);
        QCOMPARE(said(), 1);
        QVERIFY(world.delegate->windowController()->isWindowVisible());
        world.delegate->windowController()->window().close();
        world.delegate->applicationStartedAgain();
        QVERIFY(world.delegate->windowController()->isWindowVisible());
        world.delegate->windowController()->window().close();
        world.clock->advance(60s);
        QCOMPARE(said(), 0);

        world.host->setPresent(true); // a panel that comes later
        QVERIFY(world.delegate->statusBarManager()->statusItem());
        world.delegate->applicationStartedAgain();
        QVERIFY(!world.delegate->windowController()->isWindowVisible());
    }

    void statusAreaInTime()
    {
        test::LaunchedWorld world;
        world.launchAll();
        QVERIFY(!world.delegate->statusBarManager()->statusItem()); // not even asked Qt about it
        world.clock->advance(1s);
        world.host->setPresent(true);
        world.clock->advance(60s);
        QVERIFY(m_log.take().filter(u"no status area"_s).isEmpty());
        QVERIFY(!world.delegate->windowController());
    }

    /// Nobody closes the windows before the program ends.
    void endWithOpenWindows()
    {
        Shell shell;
        shell.openWindow();
        shell.click();
        shell.delegate->applicationWillTerminate();
        shell.delegate.reset();
    }

private:
    test::CapturedLog m_log;
};

NETVANE_TEST(TestShell)
#include "test_shell.moc"
