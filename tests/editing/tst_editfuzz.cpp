// Random key sequences on every kind of field, with a fixed seed so that a failure
// can be replayed: the seed, the sequence and its operations are printed.

#include "common/FuzzAreas.h"
#include "common/TestRegistry.h"
#include "fuzz/EditFuzz.h"

#include <random>

using namespace velmora::test;
using namespace Qt::StringLiterals;

class TestEditFuzz : public QObject
{
    Q_OBJECT

private slots:
    void randomSequences()
    {
        const quint32 seed = fuzzSeed();
        // The sanitized run of make test asks for fewer through VELMORA_FUZZ_SEQUENCES.
        const int sequences = qEnvironmentVariable("VELMORA_FUZZ_SEQUENCES", u"200000"_s).toInt();
        std::mt19937 random(seed);
        auto pick = [&random](int n) {
            return int(random() % quint32(n));
        };

        for (int i = 0; i < sequences; ++i) {
            const QString setup = fuzz::setups().at(pick(int(fuzz::setups().size())));
            const int initial = pick(8);
            fuzz::Runner runner(setup, initial, fuzz::randomText(pick));
            QStringList done;
            for (int n = 1 + pick(12); n > 0; --n) {
                const fuzz::Op op = fuzz::randomOp(pick, int(runner.box.text().size()));
                done << op.describe();
                const QString broken = runner.apply(op);
                if (!broken.isEmpty())
                    QFAIL(qPrintable(u"%1 (seed %2, sequence %3, setup \"%4\", start %5): %6"_s.arg(
                        broken, QString::number(seed), QString::number(i), setup,
                        QString::number(initial), done.join(u' '))));
            }
        }
    }
};

VELMORA_TEST(TestEditFuzz)
#include "tst_editfuzz.moc"
