#pragma once

#include "base/clock.h"
#include "platform/user_defaults.h"
#include "shell/host_window.h"

#include <QRect>
#include <QWindow>

#include <memory>

namespace netvane::shell {

/// The detailed window over its one life, from being shown to being closed. It fits the screen with
/// its title bar, even one that is smaller than its least size. Its frame is remembered under
/// "NetvaneWindow". Main thread.
class DetailedWindowController final : public QObject {
    Q_OBJECT

public:
    /// `defaults` and `clock` outlive the controller.
    DetailedWindowController(
        std::unique_ptr<HostWindow> host, platform::UserDefaults& defaults, base::Clock& clock);
    ~DetailedWindowController() override;

    QWindow& window() { return m_host->window(); }
    /// False once it was closed; it is empty from then on.
    bool isWindowVisible() const { return m_host->window().isVisible(); }
    /// At the remembered frame, else in the middle of the screen.
    void showWindow();
    /// And takes the keyboard.
    void bringToFront();
    /// See `HostWindow::setNote`.
    void setNote(const QString& text) { m_host->setNote(text); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitFrame(const QRect& wanted, const QMargins& margins);
    void noteFrame();
    void storeFrame();
    void handleVisible(bool isVisible);

    platform::UserDefaults& m_defaults;
    base::Clock& m_clock;
    std::unique_ptr<HostWindow> m_host;
    QRect m_frame; ///< the last one seen on the screen; null before
    bool m_isFitted = false; ///< to the margins that it has on the screen
    std::unique_ptr<base::Timer> m_storing;
};

} // namespace netvane::shell
