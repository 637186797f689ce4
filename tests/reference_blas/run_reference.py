#!/usr/bin/env python3
"""Runs one test program of the reference BLAS over the library: run_reference.py FOLDER PROGRAM SHIM

The programs of levels 2 and 3 read which routines to test: all but the library's are switched off. Fails unless the program says
that each routine passed, its error exits included, and nothing failed.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

OURS = "SGEMV DGEMV CGEMV ZGEMV DGER ZGERC ZGERU SGEMM DGEMM CGEMM ZGEMM".split()


def main():
    folder, program, shim = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    level, letter = program[5], program[6]
    asked, text = [], ""
    if level != "1":
        for line in (folder / f"{letter}blat{level}.in").read_text(encoding="ascii").splitlines():
            routine = line.split(" ")[0] if " PUT F FOR NO TEST" in line else None
            if routine in OURS:
                asked.append(routine)
            elif routine is not None:
                line = re.sub(r"^(\S+\s+)T", r"\1F", line)
            text += line + "\n"
    with tempfile.TemporaryDirectory() as place:
        environment = dict(os.environ, LD_PRELOAD=shim)
        run = subprocess.run([str(folder / program)], input=text, cwd=place, env=environment, capture_output=True,
                             text=True, timeout=600, check=False)
        said = run.stdout + "".join(path.read_text(encoding="ascii") for path in sorted(pathlib.Path(place).iterdir()))
    print(said[-4000:], run.stderr, sep="\n")
    passed = said.count("PASS") >= 10 if level == "1" else bool(asked) and all(
        re.search(rf"{routine}\s+PASSED THE TESTS OF ERROR-EXITS", said) and
        re.search(rf"{routine}\s+PASSED THE COMPUTATIONAL TESTS", said) for routine in asked)
    failed = run.returncode != 0 or "FAIL" in said or "ERROR IN" in said
    return 0 if passed and not failed else 1


if __name__ == "__main__":
    sys.exit(main())
