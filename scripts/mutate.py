"""Makes faults one at a time, builds, and runs the tests until one fails. Called by mutate.sh."""

import argparse
import collections
import concurrent.futures
import difflib
import glob
import hashlib
import json
import os
import queue
import signal
import subprocess
import sys
import threading
import time
import xml.etree.ElementTree

from faults import find_faults

ROOT = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
MUTANTS = os.path.join(ROOT, "build", "mutants")
RECORD = os.path.join(MUTANTS, "results.jsonl")
CODE_PAGES = ["936", "1252"]
TIMED_OUT = 124
QUICK = 0.1  # seconds; the other tests run where these notice nothing

# The folders of each family, and its test programs.
FAMILIES = {
    "childexe": (["src/childexe"], ["ChildExeTests"]),
    "color": (["src/color"], ["ColorTests"]),
    "files": (["src/files"], ["FilesTests"]),
    "log": (["src/log"], ["LogTests"]),
    "mfc": (["mfc"], ["MfcTests", "TimeTests"]),
    "model": (["src/model"], ["ModelTests"]),
    "system": (["src/system"], ["SystemTests", "HardwareTests"]),
    "text": (["src/text"], ["TextTests", "TextTestsUtf8", "Base64CodecTests", "Utf8Tests"]),
    "time": (["src/time"], ["TimeTests", "InvalidDateTextTests"]),
    "xmlconfig": (["src/xmlconfig"], ["XmlConfigTests"]),
    "xmlparser": (["xmlparser"], ["XmlParserUnitTests", "XmlParserTests", "XmlConfigTests"]),
}
ALL_TESTS = sorted({test for _, tests in FAMILIES.values() for test in tests}
                   | {"FaultTests", "KilledWriterTests", "LargeTextTests", "LibraryTests"})
# These run under one code page.
ONE_PAGE = {"KilledWriterTests", "LargeTextTests", "TextTestsUtf8"}


def family_of(fault):
    return next(name for name, (folders, _) in FAMILIES.items() if os.path.dirname(fault.file) in folders)


class Tree:
    """A checkout with a build and Wine prefixes of its own."""

    def __init__(self, root):
        self.root = root
        self.build_folder = os.path.join(root, "build", "mingw-release")
        self.timeouts = {}
        self.slow = {}
        self.objects = {}
        self.environment = dict(os.environ, CCACHE_BASEDIR=root)
        self.environment.pop("DISPLAY", None)  # Wine's programs find the screen that is there when the server starts

    def wine(self, page, *arguments, seconds=None, results=""):
        """The exit code of wine.sh; TIMED_OUT if it takes longer."""
        command = [os.path.join(self.root, "cmake", "wine.sh"), *arguments]
        environment = dict(self.environment, KELPKIT_CODE_PAGE=page, KELPKIT_RESULTS=results)
        process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   start_new_session=True)
        try:
            return process.wait(seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
            # With all that the program has started.
            self.wine(page, "stop")
            self.wine(page, "start")
            return TIMED_OUT

    def run(self, test, page, *arguments, seconds, results=None):
        """Not 0 where a test fails. With a report, without which a program that dies may pass for one that ends well."""
        program = os.path.join(self.build_folder, "bin", test + ".exe")
        results = results or os.path.join(self.build_folder, "test-results")
        os.makedirs(results, exist_ok=True)
        return self.wine(page, "run", program, "--gtest_fail_fast", "--gtest_brief=1", *arguments, seconds=seconds,
                         results=results)

    def build(self, tests):
        command = ["ninja", "-C", self.build_folder, "Kelpkit", "XMLParser",
                   *(test.removesuffix("Utf8") for test in tests)]
        return subprocess.run(command, env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              check=False).returncode == 0

    def build_alone(self, test):
        """Only the test program, for a fault in a header that nearly every source includes."""
        def ninja(*arguments):
            return subprocess.run(["ninja", "-C", self.build_folder, *arguments], env=self.environment, text=True,
                                  capture_output=True, check=False)

        folder = f"tests/CMakeFiles/{test}.dir"
        objects = glob.glob(f"{folder}/**/*.obj", root_dir=self.build_folder, recursive=True)
        link = ninja("-t", "commands", f"bin/{test}.exe").stdout.splitlines()[-1]
        return ninja(*objects).returncode == 0 and subprocess.run(
            link, shell=True, cwd=self.build_folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            check=False).returncode == 0

    def object_hashes(self, since=0.0):
        """Of the machine code alone: without what a debugger reads, which every shifted column changes."""
        hashes = {}
        stripped = os.path.join(self.build_folder, "stripped.obj")
        for folder in ("src", "xmlparser", "mfc"):
            for path in glob.glob(os.path.join(self.build_folder, folder, "**", "*.obj"), recursive=True):
                if os.path.getmtime(path) < since:
                    continue
                subprocess.run(["x86_64-w64-mingw32-strip", "--strip-debug", "-o", stripped, path], check=True)
                with open(stripped, "rb") as stream:
                    hashes[path] = hashlib.sha1(stream.read()).hexdigest()
        return hashes

    def start(self):
        for page in CODE_PAGES:
            self.wine(page, "start")
        self.build(ALL_TESTS)
        self.objects = self.object_hashes()
        commit = subprocess.run(["git", "rev-parse", "HEAD"], cwd=self.root, capture_output=True, text=True,
                                check=True).stdout.strip()
        reports = os.path.join(self.build_folder, "faultless-" + commit)
        for test in ALL_TESTS:
            for page in CODE_PAGES:
                if page == "936" or test not in ONE_PAGE:
                    self.measure(test, page, reports)

    def measure(self, test, page, reports):
        """It passes without a fault; how long its tests take says which are slow, and when one hangs."""
        path = os.path.join(reports, f"{test}-{page}.xml")
        if not os.path.exists(path):
            if self.run(test, page, seconds=900, results=reports) != 0:
                if os.path.exists(path):
                    os.remove(path)
                sys.exit(f"mutate: {test} fails without any fault, under code page {page}")
        cases = list(xml.etree.ElementTree.parse(path).getroot().iter("testcase"))
        slow = [case for case in cases if float(case.get("time")) > QUICK]
        slow_seconds = sum(float(case.get("time")) for case in slow)
        quick_seconds = sum(float(case.get("time")) for case in cases) - slow_seconds
        self.slow[test, page] = ":".join(case.get("classname") + "." + case.get("name") for case in slow)
        self.timeouts[test, page] = 20 + 5 * quick_seconds, 30 + 5 * slow_seconds

    def fails(self, test, page, chosen, seconds):
        """Twice, so that no test which a busy machine disturbs is taken for one that notices something."""
        code = self.run(test, page, "--gtest_filter=" + chosen, seconds=seconds)
        return code == TIMED_OUT or code != 0 and self.run(test, page, "--gtest_filter=" + chosen, seconds=seconds) != 0

    def first_failing(self, runs):
        for test, page in runs:
            if self.fails(test, page, "-" + self.slow[test, page], self.timeouts[test, page][0]):
                return f"{test}, {page}"
        for test, page in runs:
            slow = self.slow[test, page]
            if slow and self.fails(test, page, slow, self.timeouts[test, page][1]):
                return f"{test}, {page}"
        return None

    def judge(self, fault, reached_by):
        """What becomes of the fault: a word, and what killed it."""
        path = os.path.join(self.root, fault.file)
        with open(path, "rb") as stream:
            before = stream.read()
        tests = FAMILIES[family_of(fault)][1]
        start = time.time()
        with open(path, "wb") as stream:
            stream.write(fault.apply(before))
        try:
            if fault.file.startswith("mfc/") and fault.file.endswith(".h") and self.build_alone(tests[0]):
                killer = self.first_failing([run for run in self.slow if run[0] == tests[0] and run in reached_by])
                if killer:
                    return "killed", killer
            if not self.build(tests):
                return "does not compile", ""
            if all(self.objects.get(path) == value for path, value in self.object_hashes(start).items()):
                return "equivalent", "compiles to the same code"
            runs = [run for run in self.slow if run in reached_by]
            own = [run for run in runs if run[0] in tests]
            killer = self.first_failing(own)
            if not killer and len(own) < len(runs):
                self.build(ALL_TESTS)
                killer = self.first_failing([run for run in runs if run not in own])
            return ("killed", killer) if killer else ("survived", "")
        finally:
            with open(path, "wb") as stream:
                stream.write(before)

    def finish(self):
        self.build(ALL_TESTS)
        for page in CODE_PAGES:
            self.wine(page, "stop")


class Reach:
    """Which test programs run a line, by the counts of coverage.sh."""

    def __init__(self):
        self.of_line = {}
        self.of_file = collections.defaultdict(set)
        self.of_any = {(test, page) for test in ALL_TESTS for page in CODE_PAGES}
        with open(os.path.join(ROOT, "build", "coverage", "reach.json"), encoding="utf-8") as stream:
            for file, line, runs in json.load(stream):
                self.of_line[file, line] = {tuple(run.rsplit("-", 1)) for run in runs}
                self.of_file[file] |= self.of_line[file, line]

    def runs(self, fault):
        places = [(fault.file, line) for line in range(fault.line, fault.last_line + 1)]
        # What runs while a process ends is not counted, nor are constants in headers.
        return (set().union(*(self.of_line.get(place, ()) for place in places)) or self.of_file[fault.file]
                or self.of_any)


class Sources:
    """The sources of the commit that is tried: what the checkouts hold while no fault is in them."""

    def __init__(self):
        self.bytes = {}

    def read(self, file):
        if file not in self.bytes:
            self.bytes[file] = subprocess.run(["git", "show", f"HEAD:{file}"], cwd=os.path.join(MUTANTS, "1"),
                                              capture_output=True, check=True).stdout
        return self.bytes[file]

    def change(self, fault):
        """As a difference of lines."""
        before = self.read(fault.file)
        return list(difflib.unified_diff(before.decode().splitlines(True), fault.apply(before).decode().splitlines(True),
                                         fault.file, fault.file, n=1))

    def key(self, fault):
        """Says the same of the same fault for as long as its source stays."""
        source = hashlib.sha1(self.read(fault.file)).hexdigest()
        return f"{fault.file} {source} {fault.start} {fault.end} {fault.text}"


def changed_lines(change):
    return "".join(line for line in change[3:] if line[0] in "+-")


def read_equivalents():
    """Changes that no test can notice, by their lines, with the reason that stands above each."""
    equivalents = {}
    with open(os.path.join(ROOT, "tests", "equivalent-faults.txt"), encoding="utf-8") as stream:
        for block in stream.read().split("\n\n")[1:]:
            lines = block.strip("\n").split("\n")
            equivalents["".join(line + "\n" for line in lines[1:])] = lines[0]
    return equivalents


def read_record():
    record = {}
    if os.path.exists(RECORD):
        with open(RECORD, encoding="utf-8") as stream:
            for line in stream:
                result = json.loads(line)
                record[result["key"]] = result
    return record


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


class Trial:
    """Judges faults, one in each checkout at a time, and keeps what becomes of them."""

    def __init__(self, sources):
        self.sources = sources
        self.equivalents = read_equivalents()
        self.reach = Reach()
        self.record = read_record()
        self.lock = threading.Lock()
        self.trees = queue.Queue()

    def open_trees(self):
        trees = [Tree(path) for path in sorted(glob.glob(os.path.join(MUTANTS, "[0-9]*"))) if os.path.isdir(path)]
        with concurrent.futures.ThreadPoolExecutor(len(trees)) as pool:
            list(pool.map(Tree.start, trees))
        for tree in trees:
            self.trees.put(tree)
        return trees

    def judge(self, fault):
        change = self.sources.change(fault)
        if changed_lines(change) in self.equivalents:
            word, by = "equivalent", self.equivalents[changed_lines(change)]
        else:
            tree = self.trees.get()
            try:
                word, by = tree.judge(fault, self.reach.runs(fault))
            finally:
                self.trees.put(tree)
        result = {"key": self.sources.key(fault), "family": family_of(fault), "word": word, "by": by, "change": change}
        with self.lock:
            self.record[result["key"]] = result
            with open(RECORD, "a", encoding="utf-8") as stream:
                stream.write(json.dumps(result) + "\n")
            if word != "does not compile":
                print(f"{fault.file}:{fault.line} {fault.kind}: {word}" + (f" ({by})" if by else ""), flush=True)

    def judge_all(self, faults, number):
        """The results of the first faults that compile. Those in headers come last, as much is built anew for each."""
        results = []
        trees = self.open_trees()
        with concurrent.futures.ThreadPoolExecutor(len(trees)) as pool:
            while faults and len(results) < number:
                batch, faults = faults[:number - len(results)], faults[number - len(results):]
                new = [fault for fault in batch if self.sources.key(fault) not in self.record]
                list(pool.map(self.judge, sorted(new, key=lambda fault: fault.file.endswith(".h"))))
                judged = [self.record[self.sources.key(fault)] for fault in batch]
                results += [result for result in judged if result["word"] != "does not compile"]
        for tree in trees:
            tree.finish()
        return results


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seed", required=True)
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("number", nargs="?", type=int, default=200)
    parser.add_argument("family", nargs="?", choices=FAMILIES)
    options = parser.parse_args()
    families = [options.family] if options.family else list(FAMILIES)
    tree = os.path.join(MUTANTS, "1")
    faults = find_faults(tree, os.path.join(tree, "build", "mingw-release"),
                         {folder for family in families for folder in FAMILIES[family][0]})
    sources = Sources()
    trial = Trial(sources)
    if options.survivors:
        faults = [fault for fault in faults if trial.record.get(sources.key(fault), {}).get("word") == "survived"]
        for fault in faults:
            del trial.record[sources.key(fault)]
        print(f"mutate: {len(faults)} faults have survived", flush=True)
    else:
        print(f"mutate: {len(faults)} faults are possible; seed {options.seed}", flush=True)
        faults.sort(key=lambda fault: hashlib.sha1((options.seed + sources.key(fault)).encode()).digest())
    print_summary(trial.judge_all(faults, len(faults) if options.survivors else options.number))


main()
