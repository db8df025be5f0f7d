#pragma once

#include "shell/host_window.h"

#include <memory>

namespace netvane::app {

/// The window that explains the verdict, over its one life, from being shown to being closed. The
/// window manager places it, and nothing about it is remembered. Escape closes it. Main thread.
class VerdictWindow final : public QObject {
    Q_OBJECT

public:
    explicit VerdictWindow(std::unique_ptr<shell::HostWindow> host);
    ~VerdictWindow() override;

    QWindow& window() { return m_host->window(); }
    /// False once it was closed; it is empty from then on.
    bool isVisible() const { return m_host->window().isVisible(); }
    /// In front of the others.
    void show();

private:
    void handleVisible(bool isVisible);

    std::unique_ptr<shell::HostWindow> m_host;
};

} // namespace netvane::app
