#include "shell/desktop_save_panel.h"

#include <QFileDialog>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace netvane::shell {
namespace {

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

} // namespace

void DesktopSavePanel::show(const QString& title, const QString& fileName, Answer chosen)
{
    auto* dialog = makeDialog(title, fileName);
    connect(dialog, &QDialog::finished, this, [dialog, chosen = std::move(chosen)](int result) {
        chosen(result == QDialog::Accepted ? chosenPath(*dialog) : std::nullopt);
    });
    connect(this, &QObject::destroyed, dialog, [dialog] { delete dialog; });
    dialog->show();
}

} // namespace netvane::shell
