#pragma once
// A small harness for speed checks: times a subject and its baseline in the
// same process, alternating runs, and reports the ratio of their medians.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace quillon::bench {

inline double TimeOnce(const std::function<void()>& fn) {
    auto t0 = std::chrono::steady_clock::now();
    fn();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

inline double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

struct Comparison {
    double subject;   // seconds per run, median
    double baseline;  // seconds per run, median
    double ratio() const { return subject / baseline; }
};

// Runs each function `runs` times (after one warm-up), interleaved so that
// machine noise falls on both alike. `inner` repeats a fast call inside one run.
inline Comparison Compare(const std::function<void()>& subject, const std::function<void()>& baseline,
                          int runs, int inner = 1) {
    auto repeat = [inner](const std::function<void()>& f) {
        return [&f, inner] { for (int i = 0; i < inner; ++i) f(); };
    };
    auto s = repeat(subject), b = repeat(baseline);
    s();
    b();
    std::vector<double> ts, tb;
    for (int i = 0; i < runs; ++i) {
        ts.push_back(TimeOnce(s) / inner);
        tb.push_back(TimeOnce(b) / inner);
    }
    return {Median(ts), Median(tb)};
}

// Prints one line and returns whether the ratio is within its limit.
inline bool Report(const std::string& name, const Comparison& c, double limit) {
    bool ok = c.ratio() <= limit;
    std::printf("%-46s %11.3f us  baseline %11.3f us  ratio %6.2f  (limit %.1f) %s\n", name.c_str(),
                c.subject * 1e6, c.baseline * 1e6, c.ratio(), limit, ok ? "ok" : "OVER");
    return ok;
}

}  // namespace quillon::bench
