"""Holds the names that leave the shared library to the list and to the public headers.

Faults it is meant to catch: a name that is declared but not exported, or exported but not declared; a symbol that leaks out of
the library; a name without its version; a table whose size is not the written one.
"""
import re
import subprocess
import sys

LIBRARY, LIST, INCLUDE, COMPILER = sys.argv[1:5]
VERSION = "VELORIMRTL_1"

# Bytes of the exported variables.
SIZES = {name: 32 for name in (
    "UnitIncrements ZeroIncrements UnitRIncrements UnitXIncrements UnitRXIncrements UnitYIncrements UnitRYIncrements "
    "UnitZIncrements UnitRZIncrements UnitRXYIncrements UnitXYIncrements UnitRXZIncrements UnitXZIncrements "
    "UnitRYZIncrements UnitYZIncrements UnitXYZIncrements").split()}
SIZES.update({name: 8 for name in (
    "system_memory system_allocation_limit dInfinity MachinePrecision MachineOverflow log2ten logten logtwo "
    "EqualTolerance SameQTolerance HashTolerance "
    "HashTableGrowLoadFactor HashTableShrinkLoadFactor HashArrayLengthThreshold HashByteLengthThreshold "
    "default_hash_fun").split()})
SIZES.update({
    "trackTensorMemory": 4, "watch": 4, "watch1": 4, "ListableCompileEvaluatingThreaded": 4,
    "MNumericArray_typeSizeTable": 14 * 8, "MTensorToMNumericArrayType": 5 * 4,
    "MNumericArrayToMTensorType": 14 * 4, "CompilerTypeSizeTable": 6 * 8,
    "fibonacci_table": 94 * 8, "lucasl_table": 93 * 8,
})


def listed_names():
    with open(LIST, encoding="utf-8") as file:
        names = [line.strip() for line in file if line.strip() and not line.startswith("#")]
    duplicates = {name for name in names if names.count(name) > 1}
    return set(names), duplicates


def exported_names():
    """Name -> (version, type letter, size) of every defined dynamic symbol but the version node itself."""
    output = subprocess.run(["nm", "-D", "-S", "--defined-only", "--with-symbol-versions", LIBRARY],
                            capture_output=True, text=True, check=True).stdout
    symbols = {}
    for line in output.splitlines():
        fields = line.split()
        name, _, version = fields[-1].partition("@@")
        if name == VERSION and fields[-2] == "A":
            continue
        symbols[name] = (version, fields[-2], int(fields[1], 16) if len(fields) == 4 else 0)
    return symbols


def declarations(text):
    """The file-scope declarations of preprocessed C, bodies of records and functions left out."""
    text = re.sub(r"#pragma[^\n]*|__attribute__\s*\(\(.*?\)\)|__extension__", "", text)
    depth, current = 0, ""
    for c in text:
        if c == "{":
            depth += 1
        elif c == "}":
            depth -= 1
        elif depth == 0 and c == ";":
            yield current.strip()
            current = ""
        elif depth == 0:
            current += c


def declared_names():
    text = subprocess.run([COMPILER, "-E", "-std=c11", f"-I{INCLUDE}", f"{INCLUDE}/velorim/velorim.h"],
                          capture_output=True, text=True, check=True).stdout
    ours, keep = "", False
    for line in text.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            keep = marker.group(1).startswith(f"{INCLUDE}/velorim/")
        elif keep:
            ours += line + "\n"
    names = set()
    for declaration in declarations(ours):
        if declaration.startswith(("typedef", "static", "_Static_assert")):
            continue
        function = re.match(r"[^(=]*?(\w+)\s*\(", declaration)
        variable = re.match(r"extern\s[^(]*?(\w+)\s*(\[\w*\])*$", declaration)
        if function:
            names.add(function.group(1))
        elif variable:
            names.add(variable.group(1))
    return names


failures = 0


def report(what, names):
    global failures
    failures += len(names)
    for name in sorted(names):
        print(f"{what}: {name}")


LISTED, DUPLICATES = listed_names()
EXPORTED = exported_names()
DECLARED = declared_names()
report("twice in the list", DUPLICATES)
report("listed but not exported", LISTED - EXPORTED.keys())
report("exported but not listed", EXPORTED.keys() - LISTED)
report("exported but declared in no public header", EXPORTED.keys() - DECLARED)
report("declared in a public header but not exported", DECLARED - EXPORTED.keys())
report(f"exported without the version {VERSION}", {n for n, (v, _, _) in EXPORTED.items() if v != VERSION})
VARIABLES = {name: size for name, (_, letter, size) in EXPORTED.items() if letter in "BDRV"}
report("variable without a written size", VARIABLES.keys() - SIZES.keys())
report("not a variable", SIZES.keys() - VARIABLES.keys())
report("variable of another size than written", {n for n in VARIABLES if VARIABLES[n] != SIZES.get(n, VARIABLES[n])})
print(f"{len(EXPORTED)} names exported, {failures} faults")
sys.exit(1 if failures or not EXPORTED else 0)
