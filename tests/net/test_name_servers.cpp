#include "base/system_clock.h"
#include "net/cares_name_servers.h"
#include "support/own_network.h"
#include "support/test_main.h"

#include <QTest>
#include <QUdpSocket>

using namespace netvane;
using namespace Qt::Literals::StringLiterals;

using Kind = platform::NameAnswer::Kind;

namespace {

constexpr qsizetype kHeaderBytes = 12;
const QString kServer = u"127.0.0.1"_s;

/// A record of type A for the name of the question (RFC 1035, 4.1.3).
QByteArray record(char last)
{
    return QByteArray("\xc0\x0c\0\1\0\1\0\0\0\x3c\0\4\xc0\0\2", 15) + last; // 192.0.2.last
}

QByteArray response(const QByteArray& question, char code, char count, const QByteArray& records)
{
    const QByteArray header("\x81\x80\0\1\0\0\0\0\0\0", 10);
    QByteArray bytes = question.first(2) + header + question.mid(kHeaderBytes) + records;
    bytes[3] = char(bytes[3] | code);
    bytes[7] = count;
    return bytes;
}

} // namespace

class TestNameServers : public QObject {
    Q_OBJECT

public:
    static bool prepare() { return test::enterOwnNetwork(); }

private Q_SLOTS:
    void init() { QVERIFY(m_server.bind(QHostAddress(kServer), 53)); }
    void cleanup() { m_server.close(); }

    void answers_data()
    {
        using Responses = std::function<QByteArrayList(const QByteArray&)>;
        QTest::addColumn<Responses>("responses"); // to one question; none to the first of two
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QStringList>("addresses");
        const auto row = [](const char* name, Kind kind, const QStringList& addresses,
                             const Responses& responses) {
            QTest::newRow(name) << responses << kind << addresses;
        };
        const auto code = [](char number) -> Responses {
            return [=](const auto& question) {
                return QByteArrayList {response(question, number, 0, {})};
            };
        };
        row("two", Kind::Addresses, {u"192.0.2.1"_s, u"192.0.2.2"_s}, [](const auto& question) {
            return QByteArrayList {response(question, 0, 2, record(1) + record(2))};
        });
        row("no such name", Kind::NoSuchName, {}, code(3));
        row("no addresses", Kind::NoAddresses, {}, code(0));
        row("server fails", Kind::Failed, {}, code(2));
        row("refused", Kind::Failed, {}, code(5));
        row("cut", Kind::Failed, {}, [](const auto& question) {
            return QByteArrayList {response(question, 0, 9, record(1).first(6))};
        });
        row("another's number", Kind::Addresses, {u"192.0.2.8"_s}, [](const auto& question) {
            auto forged = response(question, 0, 1, record(6));
            forged[0] = char(~forged[0]);
            return QByteArrayList {forged, response(question, 0, 1, record(8))};
        });
        row("another question's", Kind::Nothing, {}, [](const auto& question) {
            auto forged = response(question, 0, 1, record(6));
            forged[kHeaderBytes + 1] = 'x';
            return QByteArrayList {forged};
        });
        row("second try", Kind::Addresses, {u"192.0.2.3"_s},
            [asked = std::make_shared<int>()](const auto& question) {
                return ++*asked == 1 ? QByteArrayList()
                                     : QByteArrayList {response(question, 0, 1, record(3))};
            });
        row("silent", Kind::Nothing, {}, [](const auto&) { return QByteArrayList(); });
    }
    void answers()
    {
        QFETCH(std::function<QByteArrayList(const QByteArray&)>, responses);
        std::vector<platform::NameAnswer> answers;
        m_names.ask(kServer, u"host.test"_s, this,
            [&](const platform::NameAnswer& answer) { answers.push_back(answer); });
        QVERIFY(answers.empty());
        const auto serve = [&] {
            while (m_server.hasPendingDatagrams()) {
                QByteArray question(512, '\0');
                QHostAddress host;
                quint16 port = 0;
                question.truncate(
                    m_server.readDatagram(question.data(), question.size(), &host, &port));
                for (const auto& bytes : responses(question))
                    m_server.writeDatagram(bytes, host, port);
            }
            return !answers.empty();
        };
        QTRY_VERIFY(serve());
        QTEST(answers.front().kind, "kind");
        QTEST(answers.front().addresses, "addresses");
    }

    /// An owner that is gone hears nothing; more than it may ask at once get an answer all the
    /// same.
    void flood()
    {
        int answered = 0;
        const auto count = [&](const platform::NameAnswer&) { ++answered; };
        {
            QObject gone;
            m_names.ask(kServer, u"a.test"_s, &gone, count);
        }
        for (int i = 0; i < 40; ++i)
            m_names.ask(kServer, u"a.test"_s, this, count);
        m_server.close(); // what is asked from here on is refused
        QTRY_COMPARE(answered, 40);
    }

private:
    base::SystemClock m_clock;
    net::CaresNameServers m_names {m_clock};
    QUdpSocket m_server;
};

NETVANE_TEST(TestNameServers)
#include "test_name_servers.moc"
