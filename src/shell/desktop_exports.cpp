#include "shell/desktop_exports.h"

#include "base/background_work.h"
#include "base/log.h"
#include "base/replace_file.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QWindow>

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

Q_LOGGING_CATEGORY(logCategory, "netvane.shell")

QFileDialog* makeDialog(const QString& title, const QString& fileName)
{
    auto* dialog = new QFileDialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setMimeTypeFilters({u"text/plain"_s});
    dialog->setDefaultSuffix(u"txt"_s);
    dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog->selectFile(fileName);
    return dialog;
}

/// Absent when there is none, or one that is not on this machine.
std::optional<QString> chosenPath(const QFileDialog& dialog)
{
    const QString path = dialog.selectedUrls().value(0).toLocalFile();
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

std::optional<QPoint> anchor(const QWindow* window)
{
    if (window)
        return window->geometry().center();
    const auto* screen = QGuiApplication::primaryScreen();
    return screen ? std::optional(screen->geometry().center()) : std::nullopt;
}

QUrl mailWith(const QString& text)
{
    QString body = text;
    body.replace(u'\n', u"\r\n"_s);
    return QUrl::fromEncoded("mailto:?subject=" + QUrl::toPercentEncoding(u"Netvane Report"_s)
        + "&body=" + QUrl::toPercentEncoding(body));
}

void open(const QUrl& url)
{
    if (!QDesktopServices::openUrl(url))
        base::log(logCategory(),
            u"Netvane: The desktop has no program to share a report by "_s
                + (url.isLocalFile() ? u"text file"_s : u"mail"_s));
}

} // namespace

void DesktopClipboard::setText(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

void DesktopSavePanel::show(const QString& title, const QString& fileName, Answer chosen)
{
    auto* dialog = makeDialog(title, fileName);
    connect(dialog, &QDialog::finished, this, [dialog, chosen = std::move(chosen)](int result) {
        chosen(result == QDialog::Accepted ? chosenPath(*dialog) : std::nullopt);
    });
    connect(this, &QObject::destroyed, dialog, [dialog] { delete dialog; });
    dialog->show();
}

DesktopSharePicker::DesktopSharePicker(platform::Clipboard& clipboard, base::WorkQueue& queue)
    : m_clipboard(clipboard)
    , m_queue(queue)
{
}

DesktopSharePicker::~DesktopSharePicker() = default;

void DesktopSharePicker::show(const QString& text)
{
    auto* window = QGuiApplication::focusWindow();
    const auto place = anchor(window);
    if (!place)
        return;
    m_menu = std::make_unique<QMenu>();
    m_menu->addAction(u"Send by Mail"_s, this, [text] { open(mailWith(text)); });
    m_menu->addAction(u"Open in Text Editor"_s, this, [this, text] { openInEditor(text); });
    m_menu->addAction(u"Copy to Clipboard"_s, this, [this, text] { m_clipboard.setText(text); });
    // Wayland shows a menu only as the child of a window.
    m_menu->winId();
    m_menu->windowHandle()->setTransientParent(window);
    m_menu->popup(*place);
}

void DesktopSharePicker::openInEditor(const QString& text)
{
    if (!m_folder)
        m_folder = std::make_unique<QTemporaryDir>();
    const QString path = m_folder->filePath(u"Netvane-Report.txt"_s);
    base::runInBackground(
        m_queue, this, [path, bytes = text.toUtf8()] { return base::replaceFile(path, bytes); },
        [path](const QString& error) {
            if (error.isEmpty())
                open(QUrl::fromLocalFile(path));
            else
                base::log(logCategory(),
                    u"Netvane: A report could not be written for sharing: "_s + error);
        });
}

} // namespace netvane::shell
