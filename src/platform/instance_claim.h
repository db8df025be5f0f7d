#pragma once

#include <QObject>

namespace netvane::platform {

/// The claim to be the one running copy of the program in this desktop session. Main thread.
class InstanceClaim : public QObject {
    Q_OBJECT

public:
    /// Asks; the answer comes by `decided`, within a few seconds whatever the session is like.
    virtual void claim() = 0;

Q_SIGNALS:
    /// Once. False when another copy is running, which was told of this start; true also where
    /// nobody can tell.
    void decided(bool isFirst);
    /// In the running copy: the program was started once more. The token lets it take the keyboard
    /// (xdg-activation-v1, or the startup id of the Startup Notification Protocol); empty when
    /// there is none.
    void startedAgain(const QString& activationToken);
};

} // namespace netvane::platform
