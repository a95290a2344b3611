// The list fuzzer's checks on pseudo-random inputs.

#include "fuzz/ListFuzz.h"

#include "common/DataRows.h"
#include "common/FuzzAreas.h"
#include "common/TestRegistry.h"

using namespace velmora::test;

class TestListFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomInputs_data()
    {
        columns<FuzzArea>({"area"});
        row("list formats", FuzzArea(listfuzz::listFormats));
        row("hidden columns", FuzzArea(listfuzz::hideCols));
        row("connection strings", FuzzArea(listfuzz::connectionStrings));
    }
    void randomInputs()
    {
        const QString broken = fuzzArea(VFETCH(FuzzArea, area), 30000);
        QVERIFY2(broken.isEmpty(), qPrintable(broken));
    }
};

VELMORA_TEST(TestListFuzz)
#include "tst_listfuzz.moc"
