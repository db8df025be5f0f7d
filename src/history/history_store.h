#pragma once

#include "history/records.h"

#include <functional>
#include <mutex>

namespace netvane::history {

class Database;

/// The file of the history. It is open only during a call, so that a program that nobody looks at
/// holds no memory for it. Any thread; a call may wait for the disk, and some seconds for another
/// program that writes. Other programs may use the file at the same time.
class HistoryStore {
public:
    static constexpr int keptDays = 30; ///< minutes and samples
    static constexpr int keptEventDays = 90; ///< events and outages

    /// Nothing is opened or created yet.
    explicit HistoryStore(QString path);

    /// `history.sqlite` in the folder `netvane` of $XDG_STATE_HOME.
    static QString defaultPath();

    /// Keeps this until the next `flush`; the oldest is dropped where that is too much. Does not
    /// wait for the disk.
    void add(Batch batch);
    /// Writes what was added, all of it or nothing, and forgets what is too old. A damaged file is
    /// set aside and a new one begun. Returns what went wrong, in words, or an empty text; then all
    /// is kept for the next time.
    QString flush();
    /// What is known of this time, with what was added; empty if there is no file or it cannot be
    /// read. At most `kMostRows` of each kind.
    Batch read(Milliseconds from, Milliseconds to, const Wanted& wanted = {});
    static constexpr int kMostRows = 60'000;

    /// All minutes of the network and its name, and what happened in them; or all that there is.
    /// They do not wait for the disk: the next `flush` or `read` forgets before anything else.
    void forgetNetwork(const QString& name);
    void forgetEverything();

private:
    QString forgetNow();
    QString removeFiles() const;
    struct Attempt {
        QString problem; ///< empty: it is done
        bool isDamaged = false;
    };
    QString change(const std::function<bool(Database&)>& edit);
    Attempt changeOnce(const std::function<bool(Database&)>& edit);
    bool isUsable(Database& database);
    void setAside() const;

    const QString m_path;
    std::mutex m_pendingLock;
    Batch m_pending;
    std::vector<std::optional<QString>> m_toForget; ///< names of networks; absent: everything
    std::mutex m_lock; ///< for the file, as far as this program uses it
    bool m_isChecked = false; ///< since the program began
};

} // namespace netvane::history
