"""Runs the weather example on wrong command lines and malformed files.

Faults it is meant to catch: a malformed line that is read as something else, a message that names the wrong line or column,
an exit status of 0 after an error, a report printed in spite of it, a crash on a file that is cut short or not text.
"""
import os
import subprocess
import sys
import tempfile

PROGRAM, DATA = sys.argv[1:3]
HEADER = "date,precipitation,temp_max,temp_min,wind,weather\n"
GOOD = "2012-01-01,0.0,12.8,5.0,4.7,drizzle\n"
HINT = "Try 'weather --help'.\n"

# content of the file, then the message after "weather: FILE"
FILES = [
    ("", ':1:1: expected the header line, found an empty file'),
    (HEADER, ':2:1: expected a day, found the end of the file'),
    ("date,rain,temp_max,temp_min,wind,weather\n" + GOOD, ':1:6: expected the column name precipitation, found "rain"'),
    (HEADER + GOOD + "2012-01-02,10.9,1o.6,2.8,4.5,rain\n", ':3:17: expected a number for temp_max, found "1o.6"'),
    (HEADER + GOOD + "2012-01-02,,10.6,2.8,4.5,rain\n", ':3:12: expected a number for precipitation, found ""'),
    (HEADER + "2012-01-02,10.9,10.6,nan,4.5,rain\n", ':2:22: expected a number for temp_min, found "nan"'),
    (HEADER + "2012-01-02,10.9,10.6,2.8,1e999,rain\n", ':2:26: expected a number for wind, found "1e999"'),
    (HEADER + "2012-01-02,10.9,10.6,2.8,0x10,rain\n", ':2:26: expected a number for wind, found "0x10"'),
    (HEADER + "2012-01-02,10.9,10.6,2.8,4 5,rain\n", ':2:26: expected a number for wind, found "4 5"'),
    (HEADER + "2012-1-2,10.9,10.6,2.8,4.5,rain\n", ':2:1: expected a date YYYY-MM-DD, found "2012-1-2"'),
    (HEADER + GOOD + "2012-01-02,10.9,10.6\n", ':3:21: expected 6 fields, the next being temp_min, found "end of line"'),
    (HEADER + GOOD + "2012-01-02,10.9", ':3:16: expected 6 fields, the next being temp_max, found "end of line"'),
    (HEADER + GOOD + "\n" + GOOD, ':3:1: expected 6 fields, the next being precipitation, found "end of line"'),
    (HEADER + "2012-01-02,10.9,10.6,2.8,4.5,rain,7\n", ':2:34: expected the end of the line after 6 fields, found ",7"'),
    (HEADER + "2012-01-02," + "9" * 400 + "\n", ":2:256: the line is longer than 254 characters"),
    (HEADER + "2012-01-02,1\0,10.6,2.8,4.5,rain\n", ':2:13: expected 6 fields, the next being temp_max, found "end of line"'),
]

failures = 0


def expect(arguments, status, stderr, stdout=""):
    global failures
    run = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)
    if (run.returncode, run.stderr, run.stdout) != (status, stderr, stdout):
        failures += 1
        print(f"weather {arguments}\n  expected {status} {stderr!r}\n  got      {run.returncode} {run.stderr!r} {run.stdout[:200]!r}")


with tempfile.TemporaryDirectory() as directory:
    path = os.path.join(directory, "days.csv")
    for content, message in FILES:
        with open(path, "w", encoding="ascii", newline="") as file:
            file.write(content)
        expect([path], 1, f"weather: {path}{message}\n")
    missing = os.path.join(directory, "missing.csv")
    expect([missing], 1, f"weather: {missing}: cannot be opened: No such file or directory\n")
    expect([directory], 1, f"weather: {directory}: cannot be read: Is a directory\n")

expect([], 2, "weather: which file?\n" + HINT)
expect(["--fast", DATA], 2, "weather: unknown option --fast\n" + HINT)
expect([DATA, DATA], 2, f"weather: one file at a time; cannot take also {DATA}\n" + HINT)
expect([DATA, "--repeat"], 2, "weather: --repeat needs a number\n" + HINT)
for number in ["0", "-1", "3x", "", "1e3", "99999999999999999999"]:
    expect(["--repeat", number, DATA], 2, f"weather: --repeat needs a whole number from 1 to 1000000, not {number}\n" + HINT)

text = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
if not text.startswith("usage: weather [--repeat N] FILE\n"):
    failures += 1
    print("--help prints", repr(text))

print(f"{failures} failures")
sys.exit(1 if failures else 0)
