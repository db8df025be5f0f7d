#pragma once

#include "base/work_queues.h"
#include "platform/user_defaults.h"

#include <QJsonObject>
#include <QObject>

#include <memory>

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

/// The user's settings as one JSON object in one file, read once at creation. Writing replaces the
/// file as a whole (QSaveFile: a temporary file, fsync(2), rename(2)), so that neither a crash nor
/// a full disk costs what stood there, and happens on a thread of its own, since a disk can be
/// slow. Keys and values of others are kept as they are. Main thread.
class SettingsFile final : public QObject, public platform::UserDefaults {
    Q_OBJECT

public:
    /// Nothing is made before the first write, not even the folder.
    explicit SettingsFile(QString path);
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
    void handleStored(const QString& problem);

    QString m_path;
    SettingsContent m_content;
    QString m_lastProblem;
    bool m_isStoreDue = false;
    std::shared_ptr<bool>
        m_isBroken; ///< the file on the disk; only the writer's thread looks at it
    base::WorkQueue m_writer {
        1}; ///< of one thread, so that the last value is also the last one written
};

} // namespace netvane::desktop
