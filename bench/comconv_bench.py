#!/usr/bin/env python3
"""End-to-end speed of the comconv tool beside its baselines, in one run.

  bench/comconv_bench.py [TOOL] [--size-mib N] [--lines N]

Translation: a 256 MiB cp850 file to iso_1 and an iso_1 file to cp850, and a 256 MiB utf8 file of Japanese text to
sjis (when the installation home has a utf8 set), each by `comconv xlate` and by `iconv`;
the two outputs are compared before the times are believed. The library's own converter
rate over the same pair comes from bench/xlate_bench (when built) for comparison.
Conversion: 10 million lines of integers (char -> int) and of dates in the
"Jan 15 1999 10:30PM" form (char -> datetime) through `comconv convert`, end to end,
beside `wc -l` over the same file as the floor of reading it.
Every input is generated from a fixed seed. Outputs go to /dev/null; times are the best of
three runs, with `cat` (and `wc -l`) over the same file as the floor of reading it.
"""
import os
import random
import resource
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), '..'))


CPU = {}  # command name -> best user + system seconds of the last best_of


def best_of(cmd, stdin_path, out_path, runs=3):
    """Best wall time of runs; the best CPU time (user + system) is left in CPU[cmd[0]]."""
    best, best_cpu = None, None
    for _ in range(runs):
        with open(stdin_path, 'rb') as src, open(out_path, 'wb') as dst:
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            t = time.perf_counter()
            p = subprocess.run(cmd, stdin=src, stdout=dst, stderr=subprocess.PIPE)
            dt = time.perf_counter() - t
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
        if p.returncode not in (0, 1):
            raise SystemExit('%s failed: %s' % (' '.join(cmd), p.stderr.decode(errors='replace')))
        cpu = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
        best = dt if best is None else min(best, dt)
        best_cpu = cpu if best_cpu is None else min(best_cpu, cpu)
    CPU[os.path.basename(cmd[0])] = best_cpu
    return best


def same(a, b):
    return subprocess.run(['cmp', '-s', a, b]).returncode == 0


def make_file(path, block, size):
    """Whole copies of block up to size, so that no character is cut at the end."""
    with open(path, 'wb') as f:
        for _ in range(max(size // len(block), 1)):
            f.write(block)
    return os.path.getsize(path)


def cp850_block(rng):
    # Printable ASCII with one accented letter in eight, all of which iso_1 also holds.
    accents = 'éèêëàâäôöûüùçïîÉÈÀÇÖÜßñÑáíóú'
    chars = []
    for _ in range(1 << 20):
        chars.append(rng.choice(accents) if rng.random() < 0.125 else chr(rng.randint(32, 126)))
        if rng.random() < 0.015:
            chars.append('\n')
    return ''.join(chars).encode('cp850')[:1 << 20]


def japanese_block(rng):
    # Two characters in three are JIS X 0208 kanji and kana, the rest ASCII.
    pieces = []
    size = 0
    while size < (1 << 20):
        if rng.random() < 0.34:
            c = chr(rng.randint(32, 126))
        else:
            c = bytes([0xA0 + rng.choice([4, 5] + list(range(16, 48))), 0xA0 + rng.randint(1, 51)]).decode('euc_jp')
        pieces.append(c)
        size += len(c.encode('utf-8'))
    text = ''.join(pieces).encode('utf-8')
    cut = len(text[:1 << 20].decode('utf-8', errors='ignore').encode('utf-8'))
    return text[:cut]


def xlate_rows(tool, tmp, size, env):
    rng = random.Random(1)
    rows = []
    sets = subprocess.run([tool, 'xlate', '-l'], capture_output=True, env=env).stdout.split()
    pairs = [('cp850', 'iso_1', 'CP850', 'ISO-8859-1', cp850_block),
             ('iso_1', 'cp850', 'ISO-8859-1', 'CP850',
              lambda r: cp850_block(r).decode('cp850').encode('latin-1'))]
    if b'utf8' in sets:
        pairs.append(('utf8', 'sjis', 'UTF-8', 'SHIFT_JIS', japanese_block))
    else:
        print('utf8 -> sjis: not measured, the installation home has no utf8 set')
    for f, t, icf, ict, block in pairs:
        src = os.path.join(tmp, 'in.' + f)
        real = make_file(src, block(rng), size)
        ours, theirs = os.path.join(tmp, 'ours'), os.path.join(tmp, 'theirs')
        ours_cmd, iconv_cmd = [tool, 'xlate', '--quiet', '-f', f, '-t', t], ['iconv', '-f', icf, '-t', ict]
        best_of(ours_cmd, src, ours, runs=1)
        best_of(iconv_cmd, src, theirs, runs=1)
        agree = 'outputs agree' if same(ours, theirs) else 'OUTPUTS DIFFER'
        a = best_of(ours_cmd, src, os.devnull)
        a_cpu = CPU[os.path.basename(tool)]
        b = best_of(iconv_cmd, src, os.devnull)
        b_cpu = CPU['iconv']
        c = best_of(['cat'], src, os.devnull)
        mib = real / (1 << 20)
        rows.append('xlate %-6s -> %-6s %4.0f MiB: comconv %6.0f MiB/s (cpu %6.0f)  iconv %5.0f MiB/s (cpu %5.0f)'
                    '  %.2fx, %s; cat %5.0f MiB/s'
                    % (f, t, mib, mib / a, mib / max(a_cpu, 1e-9), mib / b, mib / max(b_cpu, 1e-9),
                       b / a, agree, mib / c))
        os.remove(src)
    return rows


def convert_rows(tool, tmp, lines, env):
    rng = random.Random(2)
    months = ['Jan', 'Feb', 'Mar', 'Apr', 'May', 'Jun', 'Jul', 'Aug', 'Sep', 'Oct', 'Nov', 'Dec']
    ints = '\n'.join(str(rng.randint(-2**31, 2**31 - 1)) for _ in range(100000)) + '\n'
    dates = '\n'.join('%s %2d %d %2d:%02d%s' % (rng.choice(months), rng.randint(1, 28),
                                                rng.randint(1900, 2078), rng.randint(1, 12),
                                                rng.randint(0, 59), rng.choice(['AM', 'PM']))
                      for _ in range(100000)) + '\n'
    rows = []
    for name, to, block, goal in (('int', 'int', ints, 5e6), ('datetime', 'datetime', dates, 2e6)):
        src = os.path.join(tmp, 'lines.' + name)
        with open(src, 'w') as f:
            for _ in range(lines // 100000):
                f.write(block)
        a = best_of([tool, 'convert', '--quiet', 'char', to], src, os.devnull)
        a_cpu = CPU[os.path.basename(tool)]
        b = best_of(['wc', '-l'], src, os.devnull)
        rows.append('convert char -> %-8s %d lines: %5.2f M lines/s (cpu %5.2f; goal %.0f M)   wc -l %6.1f M lines/s'
                    % (to, lines, lines / a / 1e6, lines / max(a_cpu, 1e-9) / 1e6, goal / 1e6, lines / b / 1e6))
        os.remove(src)
    return rows


def library_rate():
    exe = os.path.join(ROOT, 'build', 'default', 'bench', 'xlate_bench')
    if not os.path.exists(exe):
        return ['xlate_bench: not built (needs Google Benchmark)']
    p = subprocess.run([exe, '--benchmark_filter=(comnlib|comnlib_driver|iconv)/one_call'],
                       capture_output=True, text=True)
    return ['xlate_bench (converters in memory, 1 MiB in one call):'] + \
        ['  ' + l for l in p.stdout.splitlines() if '/one_call' in l]


def main():
    args = sys.argv[1:]
    tool = args[0] if args and not args[0].startswith('--') else \
        os.path.join(ROOT, 'build', 'default', 'tools', 'comconv', 'comconv')
    size = (int(args[args.index('--size-mib') + 1]) if '--size-mib' in args else 256) << 20
    lines = int(args[args.index('--lines') + 1]) if '--lines' in args else 10_000_000
    env = dict(os.environ)
    env.setdefault('VELDAR', os.path.join(ROOT, 'home'))
    for k in [k for k in env if k.startswith('LC_') or k == 'LANG']:
        del env[k]
    if not shutil.which('iconv'):
        raise SystemExit('iconv is needed as the baseline')
    with tempfile.TemporaryDirectory(dir=os.environ.get('TMPDIR')) as tmp:
        for row in xlate_rows(tool, tmp, size, env) + convert_rows(tool, tmp, lines, env) + library_rate():
            print(row)


if __name__ == '__main__':
    main()
