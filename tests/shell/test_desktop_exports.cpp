#include "shell/desktop_exports.h"
#include "simulated/desktop.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QUrlQuery>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

namespace {

const QString kText = u"# Report\n- SSID: a&b=c%20#é 🛜"_s;

template <typename Widget>
Widget* shown()
{
    for (auto* widget : QApplication::topLevelWidgets()) {
        auto* found = qobject_cast<Widget*>(widget);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

} // namespace

class TestDesktopExports : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void keepUrl(const QUrl& url) { m_opened.append(url); }

private Q_SLOTS:
    void initTestCase()
    {
        QDesktopServices::setUrlHandler(u"mailto"_s, this, "keepUrl");
        QDesktopServices::setUrlHandler(u"file"_s, this, "keepUrl");
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(u"mailto"_s);
        QDesktopServices::unsetUrlHandler(u"file"_s);
    }

    void init() { m_opened.clear(); }

    void clipboard()
    {
        shell::DesktopClipboard().setText(kText);
        QCOMPARE(QGuiApplication::clipboard()->text(), kText);
    }

    void savePanel_data()
    {
        QTest::addColumn<bool>("accepts");
        QTest::newRow("confirmed") << true;
        QTest::newRow("cancelled") << false;
    }

    void savePanel()
    {
        QFETCH(bool, accepts);
        const QTemporaryDir folder;
        shell::DesktopSavePanel panel;
        std::vector<std::optional<QString>> chosen;
        panel.show(u"Save it"_s, u"proposed-1.5.txt"_s,
            [&chosen](const auto& path) { chosen.push_back(path); });
        auto* dialog = shown<QFileDialog>();
        QVERIFY(dialog);
        QVERIFY(!dialog->isModal());
        QCOMPARE(dialog->windowTitle(), u"Save it"_s);
        QCOMPARE(QFileInfo(dialog->selectedFiles().value(0)).fileName(), u"proposed-1.5.txt"_s);
        QVERIFY(chosen.empty());
        const QString path = folder.filePath(u"mine.txt"_s);
        dialog->selectFile(path);
        if (accepts)
            static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
        else
            dialog->reject();
        QCOMPARE(chosen, std::vector {accepts ? std::optional(path) : std::nullopt});
        QTRY_VERIFY(!shown<QFileDialog>());
    }

    void savePanelThatTheEndOvertakes()
    {
        bool isCalled = false;
        {
            shell::DesktopSavePanel panel;
            panel.show({}, u"a.txt"_s, [&isCalled](const auto&) { isCalled = true; });
        }
        QVERIFY(!shown<QFileDialog>());
        QVERIFY(!isCalled);
    }

    void shareByClipboard()
    {
        share(2);
        QCOMPARE(m_clipboard.text, kText);
    }

    void shareByMail()
    {
        share(0);
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened[0].scheme(), u"mailto"_s);
        const QUrlQuery query(m_opened[0]);
        QString body = kText;
        QCOMPARE(
            query.queryItemValue(u"body"_s, QUrl::FullyDecoded), body.replace(u'\n', u"\r\n"_s));
        QCOMPARE(query.queryItems().size(), 2);
    }

    /// In a file that nobody else can read, and that goes with the program.
    void shareByEditor()
    {
        share(1);
        QTRY_COMPARE(m_opened.size(), 1);
        QFile file(m_opened[0].toLocalFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), kText);
        const auto folder = QFileInfo(file).dir();
        QCOMPARE(QFile::permissions(folder.path()) & (QFile::ReadGroup | QFile::ReadOther),
            QFile::Permissions());
        m_picker.reset();
        QVERIFY(!folder.exists());
    }

private:
    void share(qsizetype choice)
    {
        m_picker = std::make_unique<shell::DesktopSharePicker>(m_clipboard, m_queue);
        m_picker->show(kText);
        auto* menu = shown<QMenu>();
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 3);
        menu->actions().at(choice)->trigger();
        test::settle(m_queue);
    }

    base::WorkQueue m_queue;
    QList<QUrl> m_opened;
    simulated::Clipboard m_clipboard;
    std::unique_ptr<shell::DesktopSharePicker> m_picker;
};

NETVANE_TEST(TestDesktopExports)
#include "test_desktop_exports.moc"
