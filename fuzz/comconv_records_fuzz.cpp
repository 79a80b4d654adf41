// Fuzz target for comconv's record and field splitter. The first byte picks the delimiter and
// whether records are CSV; the rest is a stream read through a memory file in records. Every
// record must lie within the stream, records and their line ends must rebuild the stream byte
// for byte, every field found must lie within its record, and a value written as a CSV field
// must read back as itself.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

// The tool's splitter and its input class, compiled into this target as they are.
#include "../tools/comconv/cli.cpp"
#include "../tools/comconv/records.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const char delim = data[0] & 1 ? ',' : "\t;|"[(data[0] >> 1) % 3];
    const bool csv = delim == ',';
    const std::string_view stream(reinterpret_cast<const char *>(data + 1), size - 1);
    const int fd = memfd_create("records", 0);
    if (fd < 0) return 0;
    if (::write(fd, stream.data(), stream.size()) != static_cast<ssize_t>(stream.size()) ||
        lseek(fd, 0, SEEK_SET) != 0) {
        close(fd);
        return 0;
    }
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    comconv::Input in;
    if (!in.open(path)) std::abort();
    comconv::RecordReader reader(in, csv);
    comconv::Record r;
    std::string rebuilt, value, quoted, back;
    unsigned long long line = 1;
    while (reader.next(r)) {
        if (r.line != line) std::abort();
        for (char c : r.text)
            line += c == '\n';
        ++line;
        rebuilt.append(r.text).append(r.end);
        for (int n = 1; n <= 4; ++n) {
            size_t b = 0, e = 0;
            if (!comconv::find_field(r.text, delim, csv, n, b, e)) break;
            if (b > e || e > r.text.size()) std::abort();
            comconv::csv_unquote(r.text.substr(b, e - b), value);
            quoted.clear();
            comconv::csv_quote(value, delim, quoted);
            comconv::csv_unquote(quoted, back);
            if (back != value) std::abort();
        }
    }
    close(fd);
    if (rebuilt != stream) std::abort();
    return 0;
}
