#pragma once

// This room holds what the program needs from the user's desktop session: notifications, colour
// scheme, status area, the claim to be the only copy, sleep, and the settings file. Each class
// implements one interface of platform/. Apart from the settings file and the sleep watch they talk
// to services on the session bus.

#include "base/work_queues.h"
#include "desktop/settings_content.h"
#include "platform/user_defaults.h"

#include <QObject>

#include <memory>

namespace netvane::desktop {

/// The user's settings as one JSON object in one file, read once at creation. What is set here is
/// brought into the file as it is by then (`storeSettings`), so nothing that another process stored
/// is lost, and what it stored can be read here afterwards. The whole file is replaced (a temporary
/// file, fsync(2), rename(2)), so a crash or a full disk does not lose the old values. This happens
/// in the background, since a disk can be slow; what could not be stored goes with the next change.
/// Main thread.
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
    void editText(const QString& key, const platform::TextEdit& edit) override;
    void remove(const QString& key) override;

Q_SIGNALS:
    /// After each attempt to store the values.
    void stored();

private:
    void set(const QString& key, const QJsonValue& value);
    void change(const SettingsChange& change);
    void storeSoon();
    void store();
    void storeEnded(const StoreOutcome& outcome);
    void logProblem(const QString& problem);

    const QString m_path;
    base::WorkQueue& m_queue;
    QJsonObject m_values; ///< as in the file when it was last read or stored, and all changes since
    std::vector<SettingsChange> m_changes; ///< not stored, oldest first
    std::vector<SettingsChange> m_underWay; ///< before those above: being stored
    std::shared_ptr<StoreOutcome> m_outcome; ///< of those; there while the queue works on it
    QString m_lastProblem;
    bool m_isStoreDue = false;
};

} // namespace netvane::desktop
