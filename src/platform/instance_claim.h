#pragma once

#include <QObject>

namespace netvane::platform {

/// The claim to be the only running copy of the program in this desktop session. Without it each
/// start would add a second status item. Main thread.
class InstanceClaim : public QObject {
    Q_OBJECT

public:
    /// Requests it; `decided` is emitted within a few seconds in any session.
    virtual void claim() = 0;

Q_SIGNALS:
    /// Once. False if another copy is running, which was notified of this start; true also if that
    /// cannot be found out.
    void decided(bool isFirst);
    /// In the running copy: the program was started once more. The token lets it take the keyboard
    /// (xdg-activation-v1, or the startup id of the Startup Notification Protocol); empty when
    /// there is none.
    void startedAgain(const QString& activationToken);
};

} // namespace netvane::platform
