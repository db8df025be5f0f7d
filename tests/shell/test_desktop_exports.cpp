#include "shell/antenna_icon.h"
#include "shell/desktop_exports.h"
#include "support/settle.h"
#include "support/test_main.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
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

    void init() { m_opened.clear(); }

    void savePanel()
    {
        const QString path = QDir::temp().filePath(u"mine.txt"_s);
        std::vector<std::optional<QString>> chosen;
        for (const bool accepts : {true, false}) {
            shell::DesktopSavePanel panel;
            panel.show(u"Save it"_s, u"proposed-1.5.txt"_s,
                [&chosen](const auto& to) { chosen.push_back(to); });
            auto* dialog = shown<QFileDialog>();
            QVERIFY(dialog);
            QCOMPARE(QFileInfo(dialog->selectedFiles().value(0)).fileName(), u"proposed-1.5.txt"_s);
            dialog->selectFile(path);
            static_cast<QDialog*>(dialog)->done(accepts ? QDialog::Accepted : QDialog::Rejected);
            QTRY_VERIFY(!shown<QFileDialog>());
        }
        QCOMPARE(chosen, (std::vector {std::optional(path), {}}));
        shell::DesktopSavePanel().show({}, u"a.txt"_s, [&](const auto&) { chosen.clear(); });
        QVERIFY(
            !shown<QFileDialog>()); // it was closed with its panel, without a call of the handler
        QCOMPARE(chosen.size(), 2U);
    }

    void shareByClipboardAndMail()
    {
        share(2);
        QCOMPARE(QGuiApplication::clipboard()->text(), kText);
        share(0);
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened[0].scheme(), u"mailto"_s);
        const QUrlQuery query(m_opened[0]);
        QCOMPARE(query.queryItemValue(u"body"_s, QUrl::FullyDecoded),
            QString(kText).replace(u'\n', u"\r\n"_s));
    }

    /// In a file that only the user can read and that is removed with the picker.
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

    /// A panel that looks only for the name shows nothing if no theme has it.
    void iconWithoutATheme()
    {
        const QTemporaryDir themes;
        QIcon::setThemeSearchPaths({themes.path()});
        QVERIFY(shell::antennaIcon(false).name().isEmpty());
        const auto mast = [](bool isDark) {
            return shell::antennaIcon(isDark).pixmap(32, 32).toImage().pixelColor(16, 24);
        };
        QVERIFY(mast(true).lightness() > 200 && mast(false).lightness() < 80);
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
    shell::DesktopClipboard m_clipboard;
    std::unique_ptr<shell::DesktopSharePicker> m_picker;
};

NETVANE_TEST(TestDesktopExports)
#include "test_desktop_exports.moc"
