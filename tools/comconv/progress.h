// The progress line: bytes done, percent, rate and time left on standard error, shown only
// when standard error is a terminal and the input is a regular file of at least 64 MiB.
#pragma once

#include <cstdint>

namespace comconv {

class Progress {
  public:
    static constexpr long long kMinSize = 64LL << 20;
    // total: the input's size when it is a regular file, else -1.
    Progress(long long total, bool quiet);
    ~Progress() { finish(); }
    // Called with the bytes read so far; redraws at most four times a second.
    void update(long long done) {
        if (on_) tick(done);
    }
    // Erases the line.
    void finish();

  private:
    void tick(long long done);
    bool on_ = false;
    bool drawn_ = false;
    long long total_ = 0;
    int64_t start_ns_ = 0;
    int64_t next_ns_ = 0;
};

} // namespace comconv
