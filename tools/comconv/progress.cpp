// The progress line, redrawn in place with a carriage return and erased at the end.
#include "progress.h"

#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace comconv {
namespace {

int64_t now_ns() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
}

constexpr int64_t kRefreshNs = 250000000; // four redraws a second at most

} // namespace

Progress::Progress(long long total, bool quiet)
    : on_(!quiet && total >= kMinSize && isatty(STDERR_FILENO) == 1), total_(total) {
    if (on_) start_ns_ = next_ns_ = now_ns();
}

void Progress::tick(long long done) {
    const int64_t t = now_ns();
    if (t < next_ns_) return;
    next_ns_ = t + kRefreshNs;
    const double secs = static_cast<double>(t - start_ns_) / 1e9;
    const double mib = 1024.0 * 1024.0;
    const double rate = secs > 0 ? static_cast<double>(done) / secs : 0; // bytes a second
    char left[32] = "--:--";
    if (rate > 0) {
        const auto s = static_cast<long long>(static_cast<double>(total_ - done) / rate + 0.5);
        std::snprintf(left, sizeof left, "%lld:%02lld", s / 60, s % 60);
    }
    std::fprintf(stderr, "\r%9.1f MiB of %.1f MiB %3d%%  %7.1f MiB/s  %s left ",
                 static_cast<double>(done) / mib, static_cast<double>(total_) / mib,
                 static_cast<int>(done * 100 / total_), rate / mib, left);
    std::fflush(stderr);
    drawn_ = true;
}

void Progress::finish() {
    if (!drawn_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    drawn_ = false;
}

} // namespace comconv
