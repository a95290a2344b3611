// The checks of the list fuzzer on a fixed number of pseudo-random inputs per area. The
// seed is fixed (VELMORA_FUZZ_SEED overrides it) and printed with a failure, so that
// the input can be replayed.

#include "fuzz/ListFuzz.h"

#include "common/DataRows.h"
#include "common/TestRegistry.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <random>

using namespace velmora::test;
using Area = QString (*)(const formatfuzz::Pick &);
Q_DECLARE_METATYPE(Area)

class TestListFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomInputs_data()
    {
        columns<Area, int>({"area", "inputs"});
        row("list formats", Area(listfuzz::listFormats), 30000);
        row("hidden columns", Area(listfuzz::hideCols), 30000);
        row("connection strings", Area(listfuzz::connectionStrings), 30000);
    }
    void randomInputs()
    {
        QFETCH(Area, area);
        QFETCH(int, inputs);
        const quint32 seed = qEnvironmentVariableIsSet("VELMORA_FUZZ_SEED")
            ? quint32(qEnvironmentVariableIntValue("VELMORA_FUZZ_SEED"))
            : 20260517u;
        std::mt19937 random(seed);
        const formatfuzz::Pick pick = [&random](int n) {
            return int(random() % quint32(n));
        };

        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < inputs; ++i) {
            const QString broken = area(pick);
            if (!broken.isEmpty())
                QFAIL(qPrintable(
                    QStringLiteral("%1 (seed %2, input %3)").arg(broken).arg(seed).arg(i)));
        }
        qInfo("%d inputs in %lld ms (seed %u)", inputs, timer.elapsed(), seed);
    }
};

VELMORA_TEST(TestListFuzz)
#include "tst_listfuzz.moc"
