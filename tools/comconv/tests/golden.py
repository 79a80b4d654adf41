#!/usr/bin/env python3
"""Tests of the comconv tool through its command line.

  golden.py TOOL HOME GROUP [--update]

GROUP "golden" runs every case of CASES and checks the table's grid: the tool's standard output must equal
expected/<case>.out byte for byte, its standard error expected/<case>.err, and its exit status
the case's. --update rewrites the expected files (review them before committing).
GROUP "stream" translates files much larger than the tool's buffer, whose characters straddle
every buffer boundary, and checks them against Python's codecs. GROUP "pipe" closes the
tool's output early. GROUP "progress" checks the progress line under a pseudo-terminal.
"""
import os
import pty
import random
import select
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, 'data')
EXPECTED = os.path.join(HERE, 'expected')
EXAMPLES = os.path.normpath(os.path.join(HERE, '..', '..', '..', 'examples'))

# (case, arguments, standard input file or None, environment additions, exit status)
CASES = [
    ('help', ['--help'], None, {}, 0),
    ('no_command', [], None, {}, 2),
    ('unknown_command', ['frobnicate'], None, {}, 2),
    ('xlate_help', ['xlate', '--help'], None, {}, 0),
    ('convert_help', ['convert', '--help'], None, {}, 0),
    ('xlate_list', ['xlate', '-l'], None, {}, 0),
    ('xlate_cp850_iso1', ['xlate', '-f', 'cp850', '-t', 'iso_1', '@ex/lettre.cp850.txt'], None, {}, 0),
    ('xlate_roman8_cp850', ['xlate', '-f', 'roman8', '-t', 'cp850', '@data/roman8.txt'], None, {}, 0),
    ('xlate_stdin', ['xlate', '--from', 'roman8', '--to', 'iso_1'], 'roman8.txt', {}, 0),
    ('xlate_unmappable', ['xlate', '-f', 'iso_1', '-t', 'cp437', '@data/latin1_unmappable.txt'], None, {}, 1),
    ('xlate_drop', ['xlate', '-c', '-f', 'iso_1', '-t', 'cp437', '@data/latin1_unmappable.txt'], None, {}, 1),
    ('xlate_sjis_eucjis', ['xlate', '-f', 'sjis', '-t', 'eucjis', '@data/japanese.sjis'], None, {}, 0),
    ('xlate_sjis_ascii8', ['xlate', '-f', 'sjis', '-t', 'ascii8', '@data/japanese.sjis'], None, {}, 1),
    ('xlate_cut_at_end', ['xlate', '-f', 'sjis', '-t', 'eucjis', '@data/cut.sjis'], None, {}, 1),
    ('xlate_cp850_utf8', ['xlate', '-f', 'cp850', '-t', 'utf8', '@ex/lettre.cp850.txt'], None, {}, 0),
    ('xlate_utf8_iso1', ['xlate', '-f', 'utf8', '-t', 'iso_1', '@data/utf8_mixed.txt'], None, {}, 1),
    ('xlate_utf8_iso1_drop', ['xlate', '-c', '-f', 'utf8', '-t', 'iso_1', '@data/utf8_mixed.txt'], None, {}, 1),
    ('xlate_utf8_cut_at_end', ['xlate', '-f', 'utf8', '-t', 'cp850', '@data/cut.utf8'], None, {}, 1),
    ('xlate_missing_file', ['xlate', '-f', 'iso_1', '-t', 'cp850', '@data/roman8.txt', '/nonexistent/file'], None, {}, 3),
    ('xlate_directory', ['xlate', '-f', 'iso_1', '-t', 'cp850', '@data'], None, {}, 3),
    ('xlate_unknown_set', ['xlate', '-f', 'iso_1', '-t', 'klingon'], None, {}, 2),
    ('xlate_no_sets', ['xlate', '@data/roman8.txt'], None, {}, 2),
    ('convert_values', ['convert', 'int', 'smallint', '12', '-32768', '40000', 'abc'], None, {}, 1),
    ('convert_values_keep_going', ['convert', '-k', 'int', 'smallint', '12', '40000', 'abc', '7'], None, {}, 1),
    ('convert_dates_keep_going', ['convert', '--keep-going', '--style', '111', 'char', 'datetime'], 'dates.txt', {}, 1),
    ('convert_dates_stop', ['convert', '--style', '111', 'char', 'datetime'], 'dates.txt', {}, 1),
    ('convert_csv_example', ['convert', '-d', ',', '--header', '--field', '4', '--style', '111', 'char', 'datetime'], '@ex/payments.csv', {}, 0),
    ('convert_csv_quotes_output', ['convert', '-d', ',', '--header', '--field', '4', '--style', '107', 'char', 'datetime'], '@ex/payments.csv', {}, 0),
    ('convert_tab_field', ['convert', '-k', '--field', '2', 'int', 'tinyint'], 'ints.tsv', {}, 1),
    ('convert_crlf', ['convert', '-d', ',', '--field', '2', '--style', '1', 'char', 'datetime'], 'crlf.csv', {}, 0),
    ('convert_multiline_csv', ['convert', '-k', '-d', ',', '--header', '--field', '3', '--style', '112', 'char', 'datetime'], 'multiline.csv', {}, 1),
    ('convert_charset_french', ['convert', '--charset', 'cp850', '--style', '106', 'char', 'datetime'], 'french.cp850', {'LC_ALL': 'fr_FR'}, 0),
    ('convert_utf8_french', ['convert', '--style', '106', 'char', 'datetime'], 'french.utf8', {'LC_ALL': 'fr_FR.UTF-8'}, 0),
    ('convert_money_keep_going', ['convert', '-k', 'char', 'money'], 'money.txt', {}, 1),
    ('convert_money_csv', ['convert', '-d', ',', '--header', '--field', '3', 'char', 'money'], '@ex/payments.csv', {}, 0),
    ('convert_pad_blank', ['convert', '--maxlength', '8', '--pad-blank', 'int', 'char', '5', '-17'], None, {}, 0),
    ('convert_truncated', ['convert', '--maxlength', '3', 'int', 'char', '123', '123456'], None, {}, 1),
    ('convert_binary', ['convert', 'int', 'varbinary', '258', '-1'], None, {}, 0),
    ('convert_datetime4', ['convert', 'datetime', 'datetime4', 'Jan 15 1999 10:30:29PM', 'Jan 1 2080'], None, {}, 1),
    ('convert_unknown_type', ['convert', 'int', 'integer', '1'], None, {}, 2),
    ('convert_no_conversion', ['convert', 'datetime', 'int', 'Jan 15 1999'], None, {}, 2),
    ('convert_bad_option', ['convert', '--precision', '99', 'char', 'numeric'], None, {}, 2),
    ('locale_french', ['locale', 'fr_FR'], None, {}, 0),
    ('locale_sjis', ['locale', 'ja_JP.sjis'], None, {}, 0),
    ('locale_utf8', ['locale', 'fr_FR.UTF-8'], None, {}, 0),
    ('locale_environment', ['locale'], None, {'LC_ALL': 'de_DE'}, 0),
    ('locale_unknown', ['locale', 'xx_XX'], None, {}, 2),
    ('styles', ['styles', 'Jan 15 1999 10:30:15.500PM'], None, {}, 0),
    ('date_french', ['date', '15 janvier 1999', '106'], None, {'LC_ALL': 'fr_FR'}, 0),
    ('date_not_a_date', ['date', 'soon'], None, {}, 1),
]


def env_for(home, extra):
    env = {k: v for k, v in os.environ.items() if not k.startswith('LC_') and k != 'LANG'}
    env['VELDAR'] = home
    env.update(extra)
    return env


def resolve(arg):
    """Paths relative to this folder, where the tool runs, so that messages naming them are the
    same on every machine."""
    return arg.replace('@data', 'data').replace('@ex', os.path.relpath(EXAMPLES, HERE))


def run_golden(tool, home, update):
    failures = 0
    for name, args, stdin, extra, status in CASES:
        src = None
        if stdin:
            src = open(os.path.join(HERE, resolve(stdin) if stdin.startswith('@') else os.path.join('data', stdin)), 'rb')
        p = subprocess.run([tool] + [resolve(a) for a in args], stdin=src or subprocess.DEVNULL,
                           capture_output=True, env=env_for(home, extra), cwd=HERE)
        if src:
            src.close()
        paths = [os.path.join(EXPECTED, name + ext) for ext in ('.out', '.err')]
        if update:
            for path, got in zip(paths, (p.stdout, p.stderr)):
                with open(path, 'wb') as f:
                    f.write(got)
        want = [open(path, 'rb').read() if os.path.exists(path) else b'' for path in paths]
        problems = []
        if p.returncode != status:
            problems.append('exit status %d, expected %d' % (p.returncode, status))
        for label, got, exp in (('stdout', p.stdout, want[0]), ('stderr', p.stderr, want[1])):
            if got != exp:
                problems.append('%s differs:\n  got      %r\n  expected %r' % (label, got[:400], exp[:400]))
        if problems:
            failures += 1
            print('FAIL %s: %s' % (name, '\n'.join(problems)))
    print('%d of %d cases passed' % (len(CASES) - failures, len(CASES)))
    return failures == 0


def run_table(tool, home):
    """The grid's shape and a few cells whose answer is fixed: the table is filled in by other
    work, so its marks are not pinned byte for byte."""
    p = subprocess.run([tool, 'table'], capture_output=True, env=env_for(home, {}))
    lines = p.stdout.decode().splitlines()
    rows = {int(l.split()[0]): l.split()[2:] for l in lines[1:25]}
    problems = []
    if p.returncode != 0 or lines[0].split()[3:] != [str(i) for i in range(24)]:
        problems.append('header %r, status %d' % (lines[:1], p.returncode))
    if sorted(rows) != list(range(24)) or any(len(r) != 24 or set(r) - set('x.') for r in rows.values()):
        problems.append('rows %r' % rows)
    else:
        fixed = {(8, 7): 'x', (14, 15): 'x', (12, 0): 'x', (23, 8): 'x', (12, 8): '.', (11, 14): '.',
                 (20, 0): '.', (0, 20): '.', (21, 22): '.', (12, 1): '.'}
        for (s, d), want in fixed.items():
            if rows[s][d] != want:
                problems.append('cell %d,%d is %r, expected %r' % (s, d, rows[s][d], want))
        counts = subprocess.run([tool, 'types'], capture_output=True, env=env_for(home, {})).stdout
        for line in counts.decode().splitlines():
            s, n = int(line.split()[0]), int(line.split()[2])
            if n != rows[s].count('x'):
                problems.append('types counts %d for %d, the grid %d' % (n, s, rows[s].count('x')))
    for problem in problems:
        print('FAIL table: ' + problem)
    print('table: %s' % ('ok' if not problems else 'FAILED'))
    return not problems


def jis_kanji(rng, n):
    """n characters of the first kanji level (rows 16..46 of JIS X 0208), as text."""
    out = []
    for _ in range(n):
        euc = bytes([0xA0 + rng.randint(16, 46), 0xA0 + rng.randint(1, 94)])
        out.append(euc.decode('euc_jp'))
    return ''.join(out)


def run_stream(tool, home):
    """Files far larger than the tool's 256 KiB buffer. A one-byte character first puts every
    two-byte character on an odd offset, so each buffer boundary (a multiple of the buffer
    size) cuts one; the input is also fed through a pipe in odd-sized writes."""
    rng = random.Random(19)
    parts = ['a']
    while sum(len(p) for p in parts) < 1_500_000:
        parts.append(jis_kanji(rng, rng.randint(1, 400)))
        parts.append(rng.choice(['', ' ', 'x', '\n', 'ab']))
    text = ''.join(parts)
    sjis, euc, utf8 = text.encode('shift_jis'), text.encode('euc_jp'), text.encode('utf-8')
    ok = True
    with tempfile.TemporaryDirectory() as tmp:
        path = os.path.join(tmp, 'big.sjis')
        with open(path, 'wb') as f:
            f.write(sjis)
        runs = [(['-f', 'sjis', '-t', 'eucjis', path], None, euc),
                (['-f', 'eucjis', '-t', 'sjis'], euc, sjis),
                (['-f', 'eucjis', '-t', 'deckanji'], euc, None)]
        sets = subprocess.run([tool, 'xlate', '-l'], capture_output=True, env=env_for(home, {}))
        if b'utf8' in sets.stdout.split():  # three-byte characters straddle the boundaries too
            runs += [(['-f', 'sjis', '-t', 'utf8', path], None, utf8),
                     (['-f', 'utf8', '-t', 'eucjis'], utf8, euc)]
        for args, data, want in runs:
            p = subprocess.Popen([tool, 'xlate'] + args, stdin=subprocess.PIPE if data else None,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                 env=env_for(home, {}))
            if data:
                got = feed_in_pieces(p, data, rng)
            else:
                got = p.stdout.read()
            err = p.stderr.read()
            p.wait()
            if want is None:  # no oracle for this set: translate back and compare
                back = subprocess.run([tool, 'xlate', '-f', 'deckanji', '-t', 'eucjis'],
                                      input=got, capture_output=True, env=env_for(home, {}))
                got, want = back.stdout, euc
            if p.returncode != 0 or err or got != want:
                ok = False
                at = next((i for i, (a, b) in enumerate(zip(got, want)) if a != b), min(len(got), len(want)))
                print('FAIL xlate %s: status %d, stderr %r, %d bytes vs %d, first difference at %d'
                      % (' '.join(args[:4]), p.returncode, err[:200], len(got), len(want), at))
    print('stream: %s (%d bytes of text)' % ('ok' if ok else 'FAILED', len(sjis)))
    return ok


def feed_in_pieces(p, data, rng):
    """Writes data to the tool in odd-sized pieces while reading its output."""
    os.set_blocking(p.stdout.fileno(), False)
    got, at = bytearray(), 0
    while True:
        if at < len(data):
            _, w, _ = select.select([], [p.stdin], [], 0)
            if w:
                n = rng.randint(1, 70000)
                try:
                    at += os.write(p.stdin.fileno(), data[at:at + n])
                except BlockingIOError:
                    pass
            if at >= len(data):
                p.stdin.close()
        r, _, _ = select.select([p.stdout], [], [], 0.01)
        if r:
            chunk = p.stdout.read()
            if chunk == b'' and at >= len(data):
                break
            if chunk:
                got += chunk
        elif p.poll() is not None and at >= len(data):
            got += p.stdout.read() or b''
            break
    return bytes(got)


def run_pipe(tool, home):
    """A reader that stops early: the tool ends quietly with status 0."""
    ok = True
    with tempfile.TemporaryDirectory() as tmp:
        path = os.path.join(tmp, 'big.txt')
        with open(path, 'wb') as f:
            f.write(b'Jan 15 1999 10:30PM\n' * 400000)
        for args in (['xlate', '-f', 'iso_1', '-t', 'cp850', path],
                     ['convert', '--style', '111', 'char', 'datetime']):
            src = open(path, 'rb')
            p = subprocess.Popen([tool] + args, stdin=src, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, env=env_for(home, {}))
            head = p.stdout.read(10)
            p.stdout.close()
            err = p.stderr.read()
            p.wait()
            src.close()
            if p.returncode != 0 or err or len(head) != 10:
                ok = False
                print('FAIL closed pipe, %s: status %d, stderr %r' % (args[0], p.returncode, err))
    print('pipe: %s' % ('ok' if ok else 'FAILED'))
    return ok


def run_progress(tool, home):
    """The progress line appears on a terminal for a file of 64 MiB, and not with --quiet, not
    when standard error is a file, and not for a smaller file."""
    ok = True
    with tempfile.TemporaryDirectory() as tmp:
        big, small = os.path.join(tmp, 'big'), os.path.join(tmp, 'small')
        with open(big, 'wb') as f:
            f.truncate(64 << 20)
        with open(small, 'wb') as f:
            f.truncate((64 << 20) - 1)
        for path, extra, want in ((big, [], True), (big, ['--quiet'], False), (small, [], False)):
            master, slave = pty.openpty()
            p = subprocess.Popen([tool, 'xlate', '-f', 'iso_1', '-t', 'cp850'] + extra + [path],
                                 stdout=subprocess.DEVNULL, stderr=slave, env=env_for(home, {}))
            os.close(slave)
            seen = b''
            while True:
                try:
                    chunk = os.read(master, 4096)
                except OSError:
                    break
                if not chunk:
                    break
                seen += chunk
            os.close(master)
            p.wait()
            shown = b'MiB of 64.0 MiB' in seen and b'%' in seen and b'MiB/s' in seen and b'left' in seen
            erased = seen.endswith(b'\r\x1b[K')
            if p.returncode != 0 or shown != want or (want and not erased):
                ok = False
                print('FAIL progress %s %s: status %d, saw %r' % (os.path.basename(path), extra, p.returncode, seen[:300]))
        with open(os.path.join(tmp, 'err'), 'wb') as errfile:
            p = subprocess.run([tool, 'xlate', '-f', 'iso_1', '-t', 'cp850', big],
                               stdout=subprocess.DEVNULL, stderr=errfile, env=env_for(home, {}))
        if os.path.getsize(os.path.join(tmp, 'err')) != 0:
            ok = False
            print('FAIL progress: written to a file that is not a terminal')
    print('progress: %s' % ('ok' if ok else 'FAILED'))
    return ok


def main():
    tool, home, group = sys.argv[1:4]
    update = '--update' in sys.argv[4:]
    runs = {'golden': lambda: run_golden(tool, home, update) and run_table(tool, home), 'stream': lambda: run_stream(tool, home),
            'pipe': lambda: run_pipe(tool, home), 'progress': lambda: run_progress(tool, home)}
    sys.exit(0 if runs[group]() else 1)


if __name__ == '__main__':
    main()
