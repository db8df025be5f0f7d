#pragma once

#include "shell/host_window.h"

#include <memory>

namespace netvane::app {

/// The window that explains the verdict. The window manager places it, and nothing about it is
/// remembered. Escape closes it. Main thread.
class VerdictWindow final : public QObject {
    Q_OBJECT

public:
    explicit VerdictWindow(std::unique_ptr<shell::HostWindow> host);
    ~VerdictWindow() override;

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
