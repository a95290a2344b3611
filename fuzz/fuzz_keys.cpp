// libFuzzer entry: the input chooses a field setup, its starting text and clipboard,
// then up to 64 keys, characters, pastes, cuts, selections and undo steps. The checks
// of the seeded fuzz test run after every operation; a broken one aborts.

#include "fuzz/EditFuzz.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace velmora::test::fuzz;
    FuzzedDataProvider input(data, size);
    auto pick = [&input](int n) {
        return input.ConsumeIntegralInRange<int>(0, n - 1);
    };

    const QString setup = setups().at(pick(int(setups().size())));
    const int initial = pick(8);
    Runner runner(setup, initial, randomText(pick));
    QStringList done;
    for (int n = 0; n < 64 && input.remaining_bytes() > 0; ++n) {
        const Op op = randomOp(pick, int(runner.box.text().size()));
        done << op.describe();
        const QString broken = runner.apply(op);
        if (!broken.isEmpty()) {
            std::fprintf(stderr, "%s (setup \"%s\", start %d): %s\n", qPrintable(broken),
                         qPrintable(setup), initial, qPrintable(done.join(QLatin1Char(' '))));
            std::abort();
        }
    }
    return 0;
}
