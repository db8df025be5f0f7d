#pragma once

#include <QObject>
#include <QString>

namespace netvane::platform {

/// What a start of the program asks for.
struct StartRequest {
    QString action; ///< one of the desktop entry (`kTimeLineAction`); empty for none
    /// Lets a window take the keyboard (xdg-activation-v1, or the startup id of the Startup
    /// Notification Protocol); empty when there is none.
    QString activationToken;

    bool operator==(const StartRequest&) const = default;
};
inline const QString kAirAction = QStringLiteral("air");
inline const QString kTimeLineAction = QStringLiteral("time-line");

/// The claim to be the only running copy of the program in this desktop session. Without it each
/// start would add a second status item. Main thread.
class InstanceClaim : public QObject {
    Q_OBJECT

public:
    /// Requests it; `decided` is emitted within a few seconds in any session. A copy that runs
    /// already gets the action.
    virtual void claim(const QString& action) = 0;

Q_SIGNALS:
    /// Once. False if another copy is running, which was notified of this start; true also if that
    /// cannot be found out.
    void decided(bool isFirst);
    /// In the running copy: the program was started once more.
    void startedAgain(const netvane::platform::StartRequest& request);
};

} // namespace netvane::platform
