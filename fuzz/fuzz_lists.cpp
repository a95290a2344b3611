// libFuzzer entry: the texts that describe a lookup list (ListFormatString, HideCol)
// and connection strings. The input chooses the texts and settings; a broken property
// aborts with its report.

#include "fuzz/ListFuzz.h"

#include <QtCore/QCoreApplication>

#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // The SQL driver plugins are looked up through the application.
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace velmora::test;
    FuzzedDataProvider input(data, size);
    const formatfuzz::Pick pick = [&input](int n) {
        return input.ConsumeIntegralInRange<int>(0, n - 1);
    };
    switch (input.ConsumeIntegralInRange<int>(0, 2)) {
    case 0:
        return formatfuzz::abortIfBroken(listfuzz::listFormats(pick));
    case 1:
        return formatfuzz::abortIfBroken(listfuzz::hideCols(pick));
    default:
        return formatfuzz::abortIfBroken(listfuzz::connectionStrings(pick));
    }
}
