"""Runs the weather example and holds its report to values that Python computes from the same file.

Faults it is meant to catch: a machine function that gives wrong values, a check that reports the wrong day or none, a report
that prints another column's numbers, lines on stderr, measured rows missing from --repeat.
"""
import csv
import math
import re
import subprocess
import sys

PROGRAM, DATA = sys.argv[1:3]
with open(DATA, encoding="ascii", newline="") as file:
    DAYS = list(csv.DictReader(file))
COLUMNS = {name: [float(day[name]) for day in DAYS] for name in ("precipitation", "temp_max", "temp_min", "wind")}
failures = 0


def check(condition, text):
    global failures
    if not condition:
        failures += 1
        print("not as expected:", text)


def run(*arguments):
    result = subprocess.run([PROGRAM, *arguments, DATA], capture_output=True, text=True, check=False)
    check(result.returncode == 0, f"exit status {result.returncode}: {result.stderr}")
    return result


def summary(values):
    finite = [x for x in values if math.isfinite(x)]
    return f"{len(finite)} {min(finite):.2f} {sum(finite) / len(finite):.2f} {max(finite):.2f}"


def close(row, expected):
    """Whether the row ends in the four numbers, the mean up to the order of its sum."""
    got, want = [float(x) for x in row.split()[-4:]], [float(x) for x in expected.split()]
    return all(abs(g - w) <= 0.0101 for g, w in zip(got, want))


def log(x):
    return math.log(x) if x > 0 else -math.inf


def sign(x):
    return (x > 0) - (x < 0)


rain, low, high, wind = (COLUMNS[name] for name in ("precipitation", "temp_min", "temp_max", "wind"))
report = run()
check(report.stderr == "", f"stderr: {report.stderr!r}")
lines = report.stdout.splitlines()
rows = [re.sub(r"\s+", " ", line).strip() for line in lines]

for name, values in COLUMNS.items():
    row = next((r for r in rows if re.match(rf"{name} (mm|deg C|m/s) ", r)), "")
    check(row and close(row, summary(values)), f"row of column {name}: {row!r}, {summary(values)}")

first_dry = next(i for i, x in enumerate(rain) if x <= 0)
first_dry_text = f"{first_dry}, at {DAYS[first_dry]['date']}"
EXPECTED = [
    ("sqrt precipitation Math_T_T new fp 0, done", map(math.sqrt, rain)),
    ("log precipitation Math_T_T new none 0, done", map(log, rain)),
    ("log precipitation Math_T_T new fp 4, some day failed", map(log, rain)),
    ("log1p precipitation Math_T_T new fp 0, done", map(math.log1p, rain)),
    ("abs temp_min Math_T_T new none 0, done", map(abs, low)),
    ("sign temp_min Math_T_T new integer 0, done", map(sign, low)),
    ("round temp_max Math_T_T new none 0, done", map(round, high)),
    ("round temp_max Math_T_T new integer 0, done", map(round, high)),
    ("sqrt wind TensorOp1 in place none -2, done", map(math.sqrt, wind)),
    ("sqrt wind TensorOp1 in place fp -2, done", map(math.sqrt, wind)),
    (f"log precipitation TensorOp1 in place fp {first_dry_text} {first_dry} - - -", None),
    ("log1p precipitation TensorOp1 in place fp -2, done", map(math.log1p, rain)),
    ("abs temp_min TensorOp1 in place fp -2, done", map(abs, low)),
    ("round temp_min Math_T_T new integer 0, done", map(round, low)),
    ("abs rounded t_min TensorOp1 in place integer -2, done", (abs(round(x)) for x in low)),
    ("sign abs of that TensorOp1 in place none -2, done", (sign(abs(round(x))) for x in low)),
]
for start, values in EXPECTED:
    row = next((r for r in rows if r.startswith(start)), "")
    if values is None:
        check(row == start, f"{row!r}, {start!r}")
    else:
        expected = summary(list(values))
        check(row and close(row, expected), f"{start!r}: {row!r}, {expected}")

COUNTS = {
    "frost days": sum(x < 0 for x in low),
    "hot days": sum(x >= 30 for x in high),
    "days of heavy rain": sum(x >= 10 for x in rain),
}
for what, count in COUNTS.items():
    check(any(r.startswith(what) and r.endswith(f" {count}") for r in rows), f"{what}: {count}")

wet = [x for x in rain if x > 0]
spells = re.finditer("w+", "".join("w" if x > 0 else "d" for x in rain))
spell = max(spells, key=lambda match: match.end() - match.start())
flat = " ".join(rows)
for sentence in [
    f"first day that fails {DAYS[first_dry]['date']}, day {first_dry + 1} of {len(DAYS)}: {rain[first_dry]:.1f} mm",
    f"stopped there: the {first_dry} days before it hold logs, it and the {len(DAYS) - first_dry - 1} after it "
    "still hold their millimetres",
    f"longest without one {spell.end() - spell.start()} days, {DAYS[spell.start()]['date']} to "
    f"{DAYS[spell.end() - 1]['date']}",
    f"counted on their own: {len(DAYS) - len(wet)} of {len(DAYS)}; the log runs over the {len(wet)} wet days: "
    f"mean {sum(wet) / len(wet):.2f} mm, geometric mean {math.exp(sum(map(math.log, wet)) / len(wet)):.2f} mm, "
    f"log from {math.log(min(wet)):.2f} to {math.log(max(wet)):.2f}",
]:
    check(sentence in flat, sentence)

# ---- The second part: formulas over several columns ----
mean = [(a + b) / 2 for a, b in zip(low, high)]
chill = [13.12 + 0.6215 * t - 11.37 * (3.6 * v) ** 0.16 + 0.3965 * t * (3.6 * v) ** 0.16 for t, v in zip(mean, wind)]
coldest = min(range(len(DAYS)), key=chill.__getitem__)
by_month = [[x for x, day in zip(high, DAYS) if int(day["date"][5:7]) == m] for m in range(1, 13)]
frost = sum(x < 0 for x in low)
for sentence in [
    f"over all days min {min(chill):.2f}, mean {sum(chill) / len(chill):.2f}, max {max(chill):.2f} deg C",
    f"felt coldest {DAYS[coldest]['date']}: {mean[coldest]:.2f} deg C in a wind of {wind[coldest]:.1f} m/s felt like "
    f"{chill[coldest]:.2f}",
    f"heating {sum(max(18 - t, 0) for t in mean):.1f} cooling {sum(max(t - 18, 0) for t in mean):.1f}",
    "from sums of whole tenths 1 2 3 4 5 6 7 8 9 10 11 12 "
    + " ".join(f"{sum(round(10 * x) for x in month) / (10 * len(month)):.2f}" for month in by_month),
    "complex results allowed: outcome -7 the tensor turned complex: "
    f"{frost} days below zero have an imaginary root, the other {len(DAYS) - frost} a real one",
]:
    check(sentence in flat, sentence)

METHODS = ["Check", "Coerce", "Round", "Scale", "Cast"]
verdicts = {}
for name in [f"{clip}{base}" for base in METHODS for clip in ("", "ClipAnd")]:
    row = next((r for r in rows if r.startswith(f"{name} ")), "")
    cell = r"(0, done|1305, a value is refused) (-?\d+|-) (-?\d+|-)"
    match = re.fullmatch(rf"{name} {cell} {cell}", row)
    check(match, f"row of conversion {name}: {row!r}")
    if match:
        verdicts[name] = match.groups()
# Whole degrees within the range are what rounding gives; tenths fit only where they are clipped.
check(verdicts.get("Check", "?")[0].startswith("1305"), f"Check of degrees: {verdicts.get('Check')}")
check(verdicts.get("Round", "???")[:3] == ("0, done", str(round(min(high))), str(round(max(high)))), f"{verdicts.get('Round')}")
check(verdicts.get("Round", "????")[3].startswith("1305"), f"Round of tenths: {verdicts.get('Round')}")
check(verdicts.get("ClipAndRound", "?" * 6)[3:] == ("0, done", str(round(10 * min(high))), "127"),
      f"{verdicts.get('ClipAndRound')}")

if "--repeat" in sys.argv[3:]:
    measured = run("--repeat", "1")
    table = re.findall(r"^(\w+) +\w+ +(\d+) +(\d+) +\d+\.\d\d$", measured.stdout, re.MULTILINE)
    check([row[0] for row in table] == ["sqrt", "log1p", "exp", "abs", "round"], f"rows of --repeat: {table}")
    check(all(int(row[1]) > 0 and int(row[2]) > 0 for row in table), f"rates of --repeat: {table}")
    check(re.search("sqrt +on 1 thread, run 1 of 1", measured.stderr), f"no progress line: {measured.stderr!r}")

print(f"{failures} failures")
sys.exit(1 if failures else 0)
