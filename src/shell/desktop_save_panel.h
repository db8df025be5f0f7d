#pragma once

#include "platform/save_panel.h"

#include <QObject>

namespace netvane::shell {

/// The desktop's own file dialogue where it has one for Qt programs (the FileChooser portal, that
/// of the toolkit), else Qt's.
class DesktopSavePanel : public QObject, public platform::SavePanel {
    Q_OBJECT

public:
    void show(const QString& title, const QString& fileName, Answer chosen) override;
};

} // namespace netvane::shell
