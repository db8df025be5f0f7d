#include "app/views_library.h"
#include "faked_world.h"
#include "shell/popover_window.h"
#include "support/captured_log.h"
#include "support/test_main.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <algorithm>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

/// This program links no view.
class TestLoadedViews : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void libraryOfSomethingElse()
    {
        app::ViewsLibrary views(u"/proc/self/exe"_s);
        test::FakedWorld world(std::bind_front(&app::ViewsLibrary::makeViews, &views));
        open(world);
        QVERIFY(!world.delegate->popover()->isShown());
        QVERIFY(!world.delegate->windowController());
        QCOMPARE(m_log.take().filter(u"Netvane: The windows cannot be loaded: "_s).size(), 2);
        const auto shown = QGuiApplication::topLevelWindows();
        QCOMPARE(std::ranges::count_if(shown, &QWindow::isVisible), 1); // the message
        QApplication::closeAllWindows();
    }

    /// Before the first window, the package may have been updated or removed. (After the others:
    /// what is loaded once stays.)
    void libraryOfTheStart()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"views.so"_s);
        QVERIFY(QFile::copy(QStringLiteral(NETVANE_VIEWS), path));
        app::ViewsLibrary views(path);
        QVERIFY(QFile::remove(path));
        test::FakedWorld world(std::bind_front(&app::ViewsLibrary::makeViews, &views));
        open(world);
        QVERIFY2(world.delegate->windowController(), qPrintable(m_log.take().join(u'\n')));
        world.delegate->applicationWillTerminate();
    }

private:
    void open(test::FakedWorld& world)
    {
        world.host.setPresent(true);
        world.launchAll();
        m_log.take();
        world.clickItem();
        world.delegate->statusBarManager()->openInWindow();
    }

    test::CapturedLog m_log;
};

NETVANE_TEST(TestLoadedViews)
#include "test_loaded_views.moc"
