#pragma once

// Figures shared by the benchmarks: the median of a set of timings and the spread of
// per-round medians that decides whether a run was quiet enough.

#include <algorithm>
#include <vector>

namespace velmora::bench {

inline double medianOf(std::vector<double> v)
{
    if (v.empty())
        return 0;
    const size_t n = v.size();
    std::nth_element(v.begin(), v.begin() + n / 2, v.end());
    const double upper = v[n / 2];
    if (n % 2)
        return upper;
    return (*std::max_element(v.begin(), v.begin() + n / 2) + upper) / 2;
}

// max/min - 1 of the per-round medians in [from, to).
inline double spreadOf(const std::vector<double> &medians, size_t from, size_t to)
{
    const auto [lo, hi] = std::minmax_element(medians.begin() + from, medians.begin() + to);
    return *lo > 0 ? *hi / *lo - 1 : 0;
}

} // namespace velmora::bench
