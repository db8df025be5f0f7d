#pragma once

#include "demo/stage.h"

class QApplication;
class QWindow;

namespace netvane::demo {

/// Has the title of each of the program's windows say that this is a demonstration, and of what.
class WindowMark final : public QObject {
public:
    /// Both outlive it.
    WindowMark(QApplication& application, const Stage& stage);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void mark(QWindow& window);

    const Stage& m_stage;
};

} // namespace netvane::demo
