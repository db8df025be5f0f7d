#include "app/status_bar_manager.h"
#include "app/views_library.h"
#include "faked_world.h"
#include "shell/popover_window.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

/// This program links no view.
class TestLoadedViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noLibrary_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << u"/nonexistent/views.so"_s;
        QTest::newRow("of something else") << u"/proc/self/exe"_s;
        QTest::newRow("no library") << u"/proc/self/status"_s;
    }

    void noLibrary()
    {
        QFETCH(QString, path);
        test::FakedWorld world;
        app::ViewsLibrary views(path);
        open(world, views);
        QVERIFY(!world.delegate->popover()->isShown());
        QVERIFY(!world.delegate->popoverMonitor());
        QCOMPARE(m_log.take().filter(u"Netvane: The windows cannot be loaded: "_s).size(), 1);
        world.delegate->statusBarManager()->openInWindow();
        QVERIFY(!world.delegate->windowController());
        std::vector<QMessageBox*> messages;
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (auto* message = qobject_cast<QMessageBox*>(widget))
                messages.push_back(message);
        }
        QCOMPARE(messages.size(), 1U);
        QVERIFY(messages[0]->isVisible());
        QVERIFY(messages[0]->informativeText().endsWith(path));
        delete messages[0];
        world.delegate.reset();
    }

    /// Before the first window, the package may have been updated or removed. (After the others:
    /// what is loaded once stays.)
    void libraryOfTheStart()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"views.so"_s);
        QVERIFY(QFile::copy(QStringLiteral(NETVANE_VIEWS), path));
        test::FakedWorld world;
        app::ViewsLibrary views(path);
        QVERIFY(QFile::remove(path));
        open(world, views);
        QVERIFY2(world.delegate->popover()->isShown(), qPrintable(m_log.take().join(u'\n')));
        world.delegate->statusBarManager()->openInWindow();
        QVERIFY(world.delegate->windowController());
        world.delegate->applicationWillTerminate();
        world.delegate.reset();
    }

private:
    void open(test::FakedWorld& world, app::ViewsLibrary& views)
    {
        world.makeDelegate(std::bind_front(&app::ViewsLibrary::makeViews, &views));
        world.host->setPresent(true);
        world.launchAll();
        m_log.take();
        Q_EMIT world.delegate->statusBarManager()->statusItem()->activated(
            QSystemTrayIcon::Trigger);
    }

    test::CapturedLog m_log;
};

NETVANE_TEST(TestLoadedViews)
#include "test_loaded_views.moc"
