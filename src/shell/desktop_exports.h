#pragma once

#include "base/work_queues.h"
#include "platform/exports.h"

#include <QMenu>
#include <QObject>

#include <memory>

class QTemporaryDir;

namespace netvane::shell {

/// The desktop's clipboard, not the selection that the middle mouse button pastes.
class DesktopClipboard : public platform::Clipboard {
public:
    void setText(const QString& text) override;
};

/// The desktop's own file dialogue where it has one for Qt programs (the FileChooser portal, that
/// of the toolkit), else Qt's.
class DesktopSavePanel : public QObject, public platform::SavePanel {
    Q_OBJECT

public:
    void show(const QString& title, const QString& fileName, Answer chosen) override;
};

/// A menu in the place of the share sheet that Linux desktops lack: a new message in the user's
/// mail program (mailto, RFC 6068), a file in the program for text files, or the clipboard.
class DesktopSharePicker : public QObject, public platform::SharePicker {
    Q_OBJECT

public:
    /// Both outlive this; the file is written on `queue`.
    DesktopSharePicker(platform::Clipboard& clipboard, base::WorkQueue& queue);
    ~DesktopSharePicker() override;

    void show(const QString& text) override;

private:
    void openInEditor(const QString& text);

    platform::Clipboard& m_clipboard;
    base::WorkQueue& m_queue;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QTemporaryDir> m_folder; ///< nobody else may look into it; goes with this
};

} // namespace netvane::shell
