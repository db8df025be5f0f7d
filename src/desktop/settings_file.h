#pragma once

// This room holds what the program needs from the user's desktop session: notifications, colour
// scheme, status area, the claim to be the only copy, sleep, and the settings file. Each class
// implements one interface of platform/. Apart from the settings file and the sleep watch they talk
// to services on the session bus.

#include "base/work_queues.h"
#include "platform/user_defaults.h"

#include <QJsonObject>
#include <QObject>

namespace netvane::desktop {

/// What a settings file says.
struct SettingsContent {
    enum class State {
        Readable, ///< also when there is no file yet
        Broken, ///< not a JSON object; set aside before the first write
        Unreachable, ///< cannot be read, or is no plain file of a sane size; never written
    };
    State state = State::Readable;
    QJsonObject values;
    QString problem; ///< unless readable: why, for a log line
};

/// Decodes the bytes of a settings file; empty ones are readable.
SettingsContent settingsContent(const QByteArray& bytes);

/// The user's settings as one JSON object in one file, read once at creation. Each write replaces
/// the whole file (a temporary file, fsync(2), rename(2)), so a crash or a full disk does not lose
/// the old values. Writes happen in the background, since a disk can be slow. Keys and values of
/// other programs are kept. Main thread.
class SettingsFile final : public QObject, public platform::UserDefaults {
    Q_OBJECT

public:
    /// Nothing is created before the first write, not even the folder. `queue` does the writes and
    /// outlives this.
    SettingsFile(QString path, base::WorkQueue& queue);
    /// Waits until the last values are stored.
    ~SettingsFile() override;

    /// `settings.json` in the folder of this application under $XDG_CONFIG_HOME.
    static QString defaultPath();

    std::optional<bool> boolean(const QString& key) const override;
    std::optional<QString> text(const QString& key) const override;
    void setBoolean(const QString& key, bool value) override;
    void setText(const QString& key, const QString& value) override;
    void remove(const QString& key) override;

Q_SIGNALS:
    /// After each attempt to store the values.
    void stored();

private:
    void set(const QString& key, const QJsonValue& value);
    void storeSoon();
    void store();
    QString write(const QJsonObject& values);
    void logProblem(const QString& problem);

    const QString m_path;
    base::WorkQueue& m_queue;
    SettingsContent m_content;
    QString m_lastProblem;
    bool m_isStoreDue = false;
    bool m_isStoring = false;
    bool m_isBroken; ///< the file on the disk; after construction only `write` uses it
};

} // namespace netvane::desktop
