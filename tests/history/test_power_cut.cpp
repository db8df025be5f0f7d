#include "history/history_store.h"
#include "support/test_main.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <random>

using namespace netvane::history;
using namespace Qt::Literals::StringLiterals;

namespace {

/// A disk that keeps what was synchronised, and of the rest what chance keeps. SQLite writes its
/// files by the functions at the end of this file. One thread.
class Disk {
public:
    /// From now on, and for so many changes.
    void cutAfter(int changes, const QString& folder)
    {
        m_kept.clear();
        for (const auto& name : QDir(folder).entryList(QDir::Files))
            m_kept[folder + u'/' + name] = contentOf(folder + u'/' + name);
        m_changesLeft = changes;
        m_isWatched = true;
    }
    /// False without power.
    bool change(int descriptor, off64_t at, const QByteArray& bytes, bool isTruncated)
    {
        if (!m_isWatched)
            return true;
        if (m_changesLeft > 0)
            m_changes.push_back({pathOf(descriptor), at, bytes, isTruncated});
        return m_changesLeft-- > 0;
    }
    bool synchronise(int descriptor)
    {
        if (!m_isWatched)
            return true;
        if (m_changesLeft <= 0)
            return false;
        const QString path = pathOf(descriptor);
        std::erase_if(m_changes, [&](const auto& change) { return change.path == path; });
        m_kept[path] = contentOf(path);
        return true;
    }
    void remove(const QString& path)
    {
        std::erase_if(m_changes, [&](const auto& change) { return change.path == path; });
        m_kept.erase(path);
    }
    /// What the next start finds.
    void start(const QString& folder, std::mt19937& chance)
    {
        m_isWatched = false;
        for (const auto& change : m_changes) {
            QByteArray& bytes = m_kept[change.path];
            if (chance() % 2 != 0)
                continue;
            if (change.isTruncated)
                bytes.resize(change.at, '\0');
            else if (bytes.size() < change.at + change.bytes.size())
                bytes.resize(change.at + change.bytes.size(), '\0');
            bytes.replace(change.at, change.bytes.size(), change.bytes);
        }
        for (const auto& name : QDir(folder).entryList(QDir::Files)) {
            QFile file(folder + u'/' + name);
            if (name.endsWith(u"-shm"_s))
                file.remove();
            else if (const auto kept = m_kept.find(file.fileName());
                     kept != m_kept.end() && file.open(QFile::WriteOnly))
                file.write(kept->second);
        }
        m_changes.clear();
    }

private:
    struct Change {
        QString path;
        off64_t at = 0;
        QByteArray bytes;
        bool isTruncated = false; ///< to the length `at`
    };
    static QString pathOf(int descriptor)
    {
        return QFile::symLinkTarget(u"/proc/self/fd/%1"_s.arg(descriptor));
    }
    static QByteArray contentOf(const QString& path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool m_isWatched = false;
    int m_changesLeft = 0;
    std::vector<Change> m_changes; ///< that no file was synchronised after
    std::map<QString, QByteArray> m_kept;
};
Disk g_disk;

template <typename Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int failed()
{
    errno = EIO;
    return -1;
}

} // namespace

class TestPowerCut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// Whatever was stored before the power failed is there after it.
    void losesNothing()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"history.sqlite"_s);
        std::mt19937 chance(1);
        size_t stored = 0;
        int number = 0;
        for (int round = 0; round < 60; ++round) {
            g_disk.cutAfter(int(1 + chance() % 200), folder.path());
            for (bool isStored = true; isStored; stored += isStored ? 10 : 0) {
                HistoryStore store(path);
                Batch batch;
                for (int i = 0; i < 10; ++i, ++number)
                    batch.minutes.push_back({.at = (28'000'000 + number) * kMinute,
                        .network = u"Network %1"_s.arg(number)});
                store.add(batch);
                isStored = store.flush().isEmpty();
            }
            g_disk.start(folder.path(), chance);
            const size_t found = HistoryStore(path).read(0, 30'000'000 * kMinute).minutes.size();
            QVERIFY2(found >= stored, qPrintable(u"%1 of %2"_s.arg(found).arg(stored)));
            QVERIFY(!QFile::exists(path + u".damaged"_s));
            stored = found;
        }
        QVERIFY(stored > 500);
    }
};

// NOLINTBEGIN: in place of the C library's
extern "C" ssize_t pwrite64(int fd, const void* bytes, size_t size, off64_t at)
{
    static const auto s_next = next(&::pwrite64, "pwrite64");
    const QByteArray copy(static_cast<const char*>(bytes), qsizetype(size));
    return g_disk.change(fd, at, copy, false) ? s_next(fd, bytes, size, at) : failed();
}

extern "C" int ftruncate64(int fd, off64_t length) noexcept
{
    static const auto s_next = next(&::ftruncate64, "ftruncate64");
    return g_disk.change(fd, length, {}, true) ? s_next(fd, length) : failed();
}

extern "C" int unlink(const char* path) noexcept
{
    static const auto s_next = next(&::unlink, "unlink");
    g_disk.remove(QFile::decodeName(path));
    return s_next(path);
}

extern "C" int fdatasync(int fd)
{
    static const auto s_next = next(&::fdatasync, "fdatasync");
    return g_disk.synchronise(fd) ? s_next(fd) : failed();
}
// NOLINTEND

NETVANE_TEST(TestPowerCut)
#include "test_power_cut.moc"
