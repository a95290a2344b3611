// The list fuzzer's checks on pseudo-random inputs. The seed is fixed (VELMORA_FUZZ_SEED
// overrides it) and printed with a failure, so that the input can be replayed.

#include "fuzz/ListFuzz.h"

#include "common/DataRows.h"
#include "common/TestRegistry.h"

#include <QtTest/QTest>

#include <random>

using namespace velmora::test;
using namespace Qt::StringLiterals;
using Area = QString (*)(const formatfuzz::Pick &);
Q_DECLARE_METATYPE(Area)

class TestListFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomInputs_data()
    {
        columns<Area>({"area"});
        row("list formats", Area(listfuzz::listFormats));
        row("hidden columns", Area(listfuzz::hideCols));
        row("connection strings", Area(listfuzz::connectionStrings));
    }
    void randomInputs()
    {
        const quint32 seed = qEnvironmentVariableIsSet("VELMORA_FUZZ_SEED")
            ? quint32(qEnvironmentVariableIntValue("VELMORA_FUZZ_SEED"))
            : 20260517u;
        std::mt19937 random(seed);
        const formatfuzz::Pick pick = [&random](int n) {
            return int(random() % quint32(n));
        };
        const Area area = VFETCH(Area, area);
        for (int i = 0; i < 30000; ++i) {
            if (const QString broken = area(pick); !broken.isEmpty())
                QFAIL(qPrintable(u"%1 (seed %2, input %3)"_s.arg(broken).arg(seed).arg(i)));
        }
    }
};

VELMORA_TEST(TestListFuzz)
#include "tst_listfuzz.moc"
