#!/usr/bin/env python3
"""Tells which exported functions can ask the system for memory and were never refused it by a test.

everyallocation_covered.py LIBRARY TEST...: LIBRARY is built without optimisation, so that its calls are those of the
sources; each TEST prints the functions below which it refused memory to the file that KAR_REFUSED_LIST names.
"""
import os
import re
import subprocess
import sys
import tempfile

# Where requests leave the library.
SYSTEM = ("malloc@plt", "calloc@plt", "realloc@plt")

# What a release may ask for, to shrink a table or to index the records: it does without. And the nodes of free runs,
# which are placed in the runs themselves.
SPARED = re.compile(r"AddressTable.*5erase|9karMemory19search_memory_entry|_ZN17karFreeVarElementnw")


def lines(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout.splitlines()


def calls(library):
    """The direct calls of each function, by name."""
    found = {}
    caller = None
    for line in lines("objdump", "-d", "--no-show-raw-insn", library):
        head = re.match(r"[0-9a-f]+ <(.+)>:$", line)
        if head:
            caller = found.setdefault(head.group(1), set())
            continue
        target = re.search(r"\t(?:call|jmp) +[0-9a-f]+ <([^+>]+)>", line)
        if target and caller is not None:
            caller.add(target.group(1))
    return found


def allocating(found):
    """The functions that reach the system's heap."""
    callers = {}
    for caller, targets in found.items():
        for target in targets:
            callers.setdefault(target, set()).add(caller)
    reached, open_ends = set(), list(SYSTEM)
    while open_ends:
        for caller in callers.get(open_ends.pop(), ()):
            if caller not in reached and not SPARED.search(caller):
                reached.add(caller)
                open_ends.append(caller)
    return reached


def exported(library):
    """Name by address of the exported functions; constructors share one body under several names."""
    names = {}
    for line in lines("nm", "-D", "--defined-only", library):
        address, kind, name = line.split()
        if kind in "TW":
            names.setdefault(address, set()).add(name)
    return names.values()


def refused(tests):
    functions = set()
    with tempfile.TemporaryDirectory() as folder:
        for number, test in enumerate(tests):
            path = os.path.join(folder, str(number))
            # Walking the stack loads a library, which the leak sanitizer takes for a leak.
            environment = dict(os.environ, KAR_REFUSED_LIST=path, ASAN_OPTIONS="detect_leaks=0")
            subprocess.run([test, "--gtest_brief=1"], check=True, stdout=subprocess.DEVNULL, env=environment)
            with open(path, encoding="ascii") as names:
                functions.update(names.read().split())
    return functions


def main():
    library, tests = sys.argv[1], sys.argv[2:]
    can = allocating(calls(library))
    own = [names for names in exported(library)
           if names & can and not all(re.match("_ZN?K?St|_ZNKSt", n) for n in names)]
    tried = refused(tests)
    missing = sorted(min(names) for names in own if not names & tried)
    print(f"{len(own)} exported functions can ask for memory, {len(own) - len(missing)} were refused it")
    if missing:
        plain = subprocess.run(["c++filt"], input="\n".join(missing), stdout=subprocess.PIPE, text=True,
                               check=True).stdout
        print("never refused:", plain, sep="\n", end="")
        sys.exit(1)


if __name__ == "__main__":
    main()
