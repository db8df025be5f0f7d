#include "app/program_options.h"
#include "support/test_main.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace netvane;

class TestProgramOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void status()
    {
        constexpr int kStarts = -1;
        for (const auto& [arguments, status] :
            {std::pair(u""_s, kStarts), {u" -session 10f_1"_s, kStarts},
                {u" --platform=xcb"_s, kStarts}, {u" --help"_s, 0}, {u" -reverse --version"_s, 0},
                {u" --background"_s, 2}, {u" -x"_s, 2}, {u" --help --what"_s, 2},
                {u" -session"_s, 2}, {u" --version=1"_s, 2}, {u" report.md"_s, 2}}) {
            const auto answer = app::answerTo((u"netvane"_s + arguments).split(u' '));
            QVERIFY2((answer ? answer->status : kStarts) == status, qPrintable(arguments));
            QVERIFY(!answer || answer->text.endsWith(u'\n'));
        }
    }
};

NETVANE_TEST(TestProgramOptions)
#include "test_program_options.moc"
