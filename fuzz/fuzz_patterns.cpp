// libFuzzer entry: number, date and string patterns. The input
// chooses the settings, values and texts; a broken property aborts with its report.

#include "fuzz/FormatFuzz.h"

#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace velmora::test::formatfuzz;
    FuzzedDataProvider input(data, size);
    return abortIfBroken(
        patterns([&input](int n) { return input.ConsumeIntegralInRange<int>(0, n - 1); }));
}
