// The checks of the format fuzzers on a fixed number of pseudo-random inputs per
// area. The seed is fixed (VELMORA_FUZZ_SEED overrides it) and printed with a failure,
// so that the input can be replayed.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "fuzz/FormatFuzz.h"

#include <QtTest/QTest>

#include <random>

using namespace velmora::test;
using namespace Qt::StringLiterals;
using Area = QString (*)(const formatfuzz::Pick &);
Q_DECLARE_METATYPE(Area)

class TestFormatFuzz : public QObject
{
    Q_OBJECT

private slots:
    void randomInputs_data()
    {
        columns<Area, int>({"area", "inputs"});
        row("numbers", Area(formatfuzz::numbers), 40000);
        row("dates", Area(formatfuzz::dates), 80000);
        row("patterns", Area(formatfuzz::patterns), 25000);
        row("formats", Area(formatfuzz::formats), 30000);
    }
    void randomInputs()
    {
        QFETCH(Area, area);
        QFETCH(int, inputs);
        const quint32 seed = qEnvironmentVariable("VELMORA_FUZZ_SEED", u"20260517"_s).toUInt();
        std::mt19937 random(seed);
        const formatfuzz::Pick pick = [&random](int n) {
            return int(random() % quint32(n));
        };
        for (int i = 0; i < inputs; ++i) {
            if (const QString broken = area(pick); !broken.isEmpty())
                QFAIL(qPrintable(u"%1 (seed %2, input %3)"_s.arg(broken).arg(seed).arg(i)));
        }
    }
};

VELMORA_TEST(TestFormatFuzz)
#include "tst_formatfuzz.moc"
