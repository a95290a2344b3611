// The checks of the format fuzzers on a fixed number of pseudo-random inputs per area.

#include "common/DataRows.h"
#include "common/FuzzAreas.h"
#include "common/TestRegistry.h"

using namespace velmora::test;

class TestFormatFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomInputs_data()
    {
        columns<FuzzArea, int>({"area", "inputs"});
        row("numbers", FuzzArea(formatfuzz::numbers), 40000);
        row("dates", FuzzArea(formatfuzz::dates), 80000);
        row("patterns", FuzzArea(formatfuzz::patterns), 25000);
        row("formats", FuzzArea(formatfuzz::formats), 30000);
    }
    void randomInputs()
    {
        const QString broken = fuzzArea(VFETCH(FuzzArea, area), VFETCH(int, inputs));
        QVERIFY2(broken.isEmpty(), qPrintable(broken));
    }
};

VELMORA_TEST(TestFormatFuzz)
#include "tst_formatfuzz.moc"
