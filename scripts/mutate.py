"""Makes faults one at a time, builds, and runs the tests until one fails. Called by mutate.sh, in a checkout of its own."""

import argparse
import dataclasses
import difflib
import json
import os
import random
import signal
import subprocess
import sys
import time

from faults import find_faults

ROOT = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
BUILD = os.path.join(ROOT, "build", "mingw-release")
RESULTS = os.path.join(os.path.dirname(ROOT), "results")
CODE_PAGES = ["936", "1252"]

# The folders of each family, and its test programs.
FAMILIES = {
    "childexe": (["src/childexe"], ["ChildExeTests"]),
    "color": (["src/color"], ["ColorTests"]),
    "files": (["src/files"], ["FilesTests"]),
    "log": (["src/log"], ["LogTests"]),
    "mfc": (["mfc"], ["MfcTests", "TimeTests"]),
    "model": (["src/model"], ["ModelTests"]),
    "system": (["src/system"], ["SystemTests", "HardwareTests"]),
    "text": (["src/text"], ["TextTests", "Base64CodecTests", "Utf8Tests"]),
    "time": (["src/time"], ["TimeTests", "InvalidDateTextTests"]),
    "xmlconfig": (["src/xmlconfig"], ["XmlConfigTests"]),
    "xmlparser": (["xmlparser"], ["XmlParserTests", "XmlConfigTests"]),
}
ALL_TESTS = sorted({test for _, tests in FAMILIES.values() for test in tests}
                   | {"FaultTests", "KilledWriterTests", "LibraryTests", "SupportTests"})


def family_of(fault):
    return next(name for name, (folders, _) in FAMILIES.items() if os.path.dirname(fault.file) in folders)


def wine(code_page, *arguments, seconds=None):
    """Runs wine.sh. None if that takes longer."""
    environment = dict(os.environ, KELPKIT_CODE_PAGE=code_page)
    process = subprocess.Popen([os.path.join(ROOT, "cmake", "wine.sh"), *arguments], env=environment,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        # With all that the program has started.
        subprocess.run([os.path.join(ROOT, "cmake", "wine.sh"), "stop"], env=environment, check=False)
        subprocess.run([os.path.join(ROOT, "cmake", "wine.sh"), "start"], env=environment, check=False)
        return None


def build(tests):
    return subprocess.run(["cmake", "--build", BUILD, "--target", "Kelpkit", "XMLParser", *tests], cwd=ROOT,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False).returncode == 0


def run(test, code_page, seconds):
    """Whether the test program passes."""
    program = os.path.join(BUILD, "bin", test + ".exe")
    return wine(code_page, "run", program, "--gtest_fail_fast", "--gtest_brief=1", seconds=seconds) == 0


class Mutants:
    def __init__(self, equivalents):
        self.equivalents = equivalents
        self.seconds = {}

    def measure(self):
        """The tests pass without a fault; how long that takes says when one hangs."""
        for test in ALL_TESTS:
            for page in CODE_PAGES:
                if page == "1252" and test == "KilledWriterTests":
                    continue
                start = time.monotonic()
                if not run(test, page, 900):
                    sys.exit(f"mutate: {test} fails without any fault, under code page {page}")
                self.seconds[test, page] = 30 + 5 * (time.monotonic() - start)

    def first_failing(self, tests):
        for page in CODE_PAGES:
            for test in tests:
                if (test, page) in self.seconds and not run(test, page, self.seconds[test, page]):
                    return f"{test}, {page}"
        return None

    def judge(self, fault):
        """What becomes of the fault: a word, and what killed it."""
        path = os.path.join(ROOT, fault.file)
        with open(path, "rb") as stream:
            before = stream.read()
        after = before[:fault.start] + fault.text.encode() + before[fault.end:]
        change = list(difflib.unified_diff(before.decode().splitlines(True), after.decode().splitlines(True),
                                           fault.file, fault.file, n=1))
        key = "".join(line for line in change[3:] if line[0] in "+-")
        if key in self.equivalents:
            return "equivalent", self.equivalents[key], change
        tests = FAMILIES[family_of(fault)][1]
        with open(path, "wb") as stream:
            stream.write(after)
        try:
            if not build(tests):
                return "does not compile", "", change
            killer = self.first_failing(tests) or self.first_failing([t for t in ALL_TESTS if t not in tests])
            return ("killed", killer, change) if killer else ("survived", "", change)
        finally:
            with open(path, "wb") as stream:
                stream.write(before)


def read_equivalents():
    """Changes that no test can notice, by their lines, with the reason that stands above each."""
    equivalents = {}
    with open(os.path.join(ROOT, "tests", "equivalent-faults.txt"), encoding="utf-8") as stream:
        for block in stream.read().split("\n\n")[1:]:
            lines = block.strip("\n").split("\n")
            equivalents["".join(line + "\n" for line in lines[1:])] = lines[0]
    return equivalents


def print_summary(results):
    print(f"\n{'family':<12}{'killed':>8}{'survived':>10}{'equivalent':>12}{'killed of the rest':>20}")
    for family in FAMILIES:
        words = [result["word"] for result in results if result["family"] == family]
        killed, survived = words.count("killed"), words.count("survived")
        if words:
            share = f"{100 * killed / max(killed + survived, 1):.1f} %"
            print(f"{family:<12}{killed:>8}{survived:>10}{words.count('equivalent'):>12}{share:>20}")
    for result in results:
        if result["word"] == "survived":
            print("\n" + "".join(result["change"]).rstrip())
    count = {word: sum(result["word"] == word for result in results) for word in ("killed", "survived", "equivalent")}
    print(f"\n{count['killed']} killed, {count['survived']} survived, {count['equivalent']} equivalent")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("number", nargs="?", type=int, default=200)
    parser.add_argument("family", nargs="?", choices=FAMILIES)
    options = parser.parse_args()
    families = [options.family] if options.family else list(FAMILIES)
    faults = find_faults(ROOT, BUILD, {folder for family in families for folder in FAMILIES[family][0]})
    print(f"mutate: {len(faults)} faults are possible; seed {options.seed}", flush=True)
    random.Random(options.seed).shuffle(faults)

    os.makedirs(RESULTS, exist_ok=True)
    revision = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, capture_output=True, text=True,
                              check=True).stdout.strip()
    record = os.path.join(RESULTS, f"{revision}-{options.seed}-{options.family or 'all'}.jsonl")
    results = []
    if os.path.exists(record):
        with open(record, encoding="utf-8") as stream:
            results = [json.loads(line) for line in stream]
    for page in CODE_PAGES:
        wine(page, "start")
    mutants = Mutants(read_equivalents())
    mutants.measure()
    with open(record, "a", encoding="utf-8") as stream:
        for fault in faults[len(results):]:
            judged = sum(result["word"] != "does not compile" for result in results)
            if judged == options.number:
                break
            word, by, change = mutants.judge(fault)
            result = {"family": family_of(fault), "word": word, "by": by, "change": change, **dataclasses.asdict(fault)}
            results.append(result)
            stream.write(json.dumps(result) + "\n")
            stream.flush()
            if word != "does not compile":
                print(f"[{judged + 1}/{options.number}] {fault.file}:{fault.line} {fault.kind}: {word}"
                      + (f" ({by})" if by else ""), flush=True)
    build(ALL_TESTS)
    for page in CODE_PAGES:
        wine(page, "stop")
    print_summary(results)


main()
