"""Command line and output of the generators in tools/gen: each builds its files in memory,
then either writes them under the repository or, with --check, compares them with the files
already there and names every one that differs (exit status 1), so that CTest can tell when a
committed file no longer matches its generator.

Usage of every generator: gen_<x>.py [--check] [ROOT]   (ROOT defaults to the repository)
"""
import os
import sys

REPO = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def parse_args(argv):
    """(check, root) from the command line arguments (without the program name)."""
    check = "--check" in argv
    args = [a for a in argv if a != "--check"]
    if len(args) > 1 or any(a.startswith("-") for a in args):
        sys.exit("usage: %s [--check] [ROOT]" % os.path.basename(sys.argv[0]))
    return check, os.path.abspath(args[0]) if args else REPO


def emit(files, check, root):
    """Writes files ({path relative to root: bytes}) or, with check, compares them. Answers
    the exit status."""
    stale = []
    for rel, data in files.items():
        path = os.path.join(root, rel)
        if check:
            try:
                with open(path, "rb") as f:
                    same = f.read() == data
            except OSError:
                same = False
            if not same:
                stale.append(rel)
        else:
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "wb") as f:
                f.write(data)
    name = os.path.basename(sys.argv[0])
    if stale:
        print("%s: out of date (run it without --check to regenerate):" % name, *stale,
              sep="\n  ")
        return 1
    if check:
        print("%s: up to date (%d files)" % (name, len(files)))
    return 0
