#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <vector>

namespace netvane::desktop {

// The settings file on the disk. Several programs read and write it, so that what one of them read
// a while ago may be out of date. All of this waits for the disk.

/// What a settings file says.
struct SettingsContent {
    enum class State {
        Readable, ///< also when there is no file yet
        Broken, ///< not a JSON object, too large, or no file at all; set aside before a write
        Unreachable, ///< cannot be read, or lies elsewhere and is no file; never written
    };
    State state = State::Readable;
    QJsonObject values;
    QString problem; ///< unless readable: why, for a log line
};

/// Never waits for anything but the disk: a pipe or a device is not read.
SettingsContent readSettings(const QString& path);

/// One value that is to be made of the stored one; undefined stands for none on either side.
struct SettingsChange {
    QString key;
    std::function<QJsonValue(const QJsonValue& stored)> edit;
};

/// `values` with the changes, in their order.
QJsonObject withChanges(QJsonObject values, const std::vector<SettingsChange>& changes);

struct StoreOutcome {
    QString problem; ///< empty when the changes are stored
    QJsonObject values; ///< what the file holds then
    QString keptAs; ///< where a broken file is now, if there was one
};

/// Reads the file, makes the changes, and puts the whole of it in the file's place, so that the
/// values of others stay. Others that do the same wait for their turn, for up to two seconds; where
/// there are no locks to be had (flock(2), some network file systems) nobody waits.
StoreOutcome storeSettings(const QString& path, const std::vector<SettingsChange>& changes);

} // namespace netvane::desktop
