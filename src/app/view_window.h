#pragma once

#include "shell/host_window.h"

#include <memory>

namespace netvane::app {

/// A window beside the dashboard: what explains the verdict, the time line. The window manager
/// places it, and nothing about it is remembered. Escape closes it. Main thread.
class ViewWindow final : public QObject {
    Q_OBJECT

public:
    struct Look {
        QString title;
        QSize size;
        QSize minimumSize;
    };

    ViewWindow(std::unique_ptr<shell::HostWindow> host, const Look& look);
    ~ViewWindow() override;

    QWindow& window() { return m_host->window(); }
    /// In front of the others.
    void show();

Q_SIGNALS:
    /// However it came about.
    void closed();

private:
    std::unique_ptr<shell::HostWindow> m_host;
};

} // namespace netvane::app
