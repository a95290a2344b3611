#pragma once

// Runs the checks of a fuzzer's areas on pseudo-random inputs in a test. The seed is
// fixed (VELMORA_FUZZ_SEED overrides it) and printed with a failure, so that the input
// can be replayed.

#include "fuzz/FormatFuzz.h"

#include <QtCore/QMetaType>
#include <QtCore/QString>

#include <random>

namespace velmora::test {

using FuzzArea = QString (*)(const formatfuzz::Pick &);

inline quint32 fuzzSeed()
{
    return qEnvironmentVariable("VELMORA_FUZZ_SEED", QStringLiteral("20260517")).toUInt();
}

// The first broken invariant in `inputs` inputs of one area, or an empty text.
inline QString fuzzArea(FuzzArea area, int inputs)
{
    const quint32 seed = fuzzSeed();
    std::mt19937 random(seed);
    const formatfuzz::Pick pick = [&random](int n) {
        return int(random() % quint32(n));
    };
    for (int i = 0; i < inputs; ++i)
        if (const QString broken = area(pick); !broken.isEmpty())
            return QStringLiteral("%1 (seed %2, input %3)").arg(broken).arg(seed).arg(i);
    return {};
}

} // namespace velmora::test

Q_DECLARE_METATYPE(velmora::test::FuzzArea)
