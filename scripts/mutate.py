#!/usr/bin/env python3
"""Whether the tests notice a fault: faults are put into the reader library, one at a time, and the tests are run.

usage: scripts/mutate.py [--sample N] [--seed N] [--jobs N] [--sweeps] [--only PATTERN]

A mutant has one operator, constant or condition of src/ changed. A sample of them, the same for the same seed, is built
in copies of the sources under build/mutation/ and tested, fast tests first, until one fails, crashes or takes far more
time than it should. Mutants that do not compile do not count. Prints the mutants that survive, and the killed share.
--sweeps has the longest tests run too; --only keeps to mutants whose place or change has a match of the pattern.
"""
import argparse
import concurrent.futures
import dataclasses
import os
import pathlib
import queue
import random
import re
import resource
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDER = ROOT / "build" / "mutation"
SLOW = "*Faults.*:*Work.*:StatementTable.NoValueHarmsAnyHandler"
SWEEPS = "*Documents.OneStream*:*Documents.CutAnywhere*:*Documents.BuffersThatAreTooSmall*"
STAGES = [f"-{SLOW}:{SWEEPS}", SLOW]  # and with --sweeps SWEEPS

# Binary operators stand between blanks, by the formatting of the sources; brackets of templates do not.
OPERATORS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&", "+": "-", "-": "+",
    "*": "/", "/": "*", "%": "+", "&": "|", "|": "&", "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "*=": "+=",
    "|=": "&=", "&=": "|=", "^=": "|=",
}
# Checked by the compiler alone, or no code at all.
SKIPPED_FILES = {"layout.h"}
SKIPPED_LINES = re.compile(r"^\s*(#|static_assert|using |template|namespace )")

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/) | (?P<string>"(?:\\.|[^"\\\n])*") | (?P<char>'(?:\\.[0-7]*|[^'\\])')
  | (?P<number>\b0[xX][0-9A-Fa-f]+U?\b|\b[0-9]+(?:\.[0-9]+)?U?\b) | (?P<word>[A-Za-z_]\w*)
  | (?P<operator>(?<=\ )(?:==|!=|<=|>=|&&|\|\||<<|>>|[-+*|&^]=|[-+*/%<>&|])(?=\ ))
  | (?P<step>\+\+|--) | (?P<not>!(?=[\w(*]))
""", re.VERBOSE | re.DOTALL)


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str
    offset: int
    old: str
    new: str
    line: int
    text: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.old} -> {self.new}    {self.text}"


def changed_number(number):
    digits = number.rstrip("U")
    if "." in digits:
        return f"{float(digits) + 1}"
    value = int(digits, 0)
    return ("0" if value == 1 else str(value + 1)) + number[len(digits):]


def changes(source, match):
    """What a token is replaced with."""
    token, kind, end = match.group(), match.lastgroup, match.end()
    if kind == "number" and not source.startswith(">", end):
        return [changed_number(token)]
    if kind == "char":
        return ["'~'"]
    if kind == "operator":
        return [OPERATORS[token]]
    if kind == "step":
        return ["--" if token == "++" else "++"]
    if kind == "not":
        return [""]
    if kind == "word" and token in ("true", "false"):
        return ["false" if token == "true" else "true"]
    return []


def condition(source, start):
    """The text between the brackets that open at start."""
    depth = 0
    for place in range(start, len(source)):
        depth += {"(": 1, ")": -1}.get(source[place], 0)
        if depth == 0:
            return source[start + 1:place]
    return ""


def mutants_of(path):
    source = path.read_text(encoding="utf-8")
    name = str(path.relative_to(ROOT))
    for match in TOKEN.finditer(source):
        start = match.start()
        line_start = source.rfind("\n", 0, start) + 1
        line = source[line_start:source.find("\n", start)]
        if SKIPPED_LINES.match(line):
            continue
        number = source.count("\n", 0, start) + 1

        def mutant(offset, old, new):
            return Mutant(name, offset, old, new, number, line.strip())

        for new in changes(source, match):
            yield mutant(start, match.group(), new)
        if match.group() in ("if", "while") and source[match.end():match.end() + 2] == " (":
            opening = match.end() + 1
            inner = condition(source, opening)
            if ";" in inner or re.search(r"\w+ \*?\w+ = ", inner):
                continue  # declares what its block uses
            for new in ("true", "false") if match.group() == "if" else ("false",):
                yield mutant(opening + 1, inner, new)


def all_mutants():
    paths = [path for path in sorted((ROOT / "src").rglob("*")) if path.suffix in (".h", ".cpp")]
    return [mutant for path in paths if path.name not in SKIPPED_FILES for mutant in mutants_of(path)]


class Tree:
    """A copy of the sources, with its own build folder."""

    def __init__(self, number, stages):
        self.stages = stages
        self.limits = []
        self.folder = FOLDER / f"tree{number}"
        self.build = FOLDER / f"build{number}"
        self.tests = self.build / "tests" / "mifreader_tests"
        shutil.rmtree(self.folder, ignore_errors=True)
        files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout
        for name in files.decode().split("\0"):
            if name and (ROOT / name).is_file():
                (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
                # The library is built anew: its objects may be those of a mutant.
                copy = shutil.copy if name.startswith("src/") else shutil.copy2
                copy(ROOT / name, self.folder / name)

    def prepare(self):
        self.run("cmake", "-S", self.folder, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                 "-DCMAKE_CXX_FLAGS=-O1 -w", "-DMIFREADER_BUILD_TOOLS=OFF")
        self.run("cmake", "--build", self.build)

    def run(self, *command):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            sys.exit(done.stdout)

    def measure(self, stage):
        """The seconds of processor time that the tests may take."""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        if not self.passes(stage, resource.RLIM_INFINITY):
            sys.exit("the tests fail without any change")
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return int((after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime) * 4) + 3

    def passes(self, stage, limit):
        def confine():
            os.nice(19)
            resource.setrlimit(resource.RLIMIT_CPU, (limit, limit))
            resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        environment = {**os.environ, "LOCPATH": str(self.build / "tests" / "locales")}
        command = [self.tests, f"--gtest_filter={stage}", "--gtest_fail_fast", "--gtest_brief=1"]
        done = subprocess.run(command, env=environment, preexec_fn=confine, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def verdict(self, mutant):
        path = self.folder / mutant.path
        source = path.read_text(encoding="utf-8")
        end = mutant.offset + len(mutant.old)
        path.write_text(source[:mutant.offset] + mutant.new + source[end:], encoding="utf-8")
        try:
            # The host library loads the unchanged plug-in, as it was built first.
            built = subprocess.run(["nice", "-n", "19", "cmake", "--build", self.build, "--target", "mifreader_tests"],
                                   env={**os.environ, "CCACHE_DISABLE": "1"}, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, check=False)
            if built.returncode != 0:
                return "invalid"
            alive = all(self.passes(stage, limit) for stage, limit in zip(self.stages, self.limits))
            return "survived" if alive else "killed"
        finally:
            path.write_text(source, encoding="utf-8")


def verdicts(mutants, sample, jobs, stages):
    """Pairs of mutant and verdict, until `sample` of them are valid."""
    trees = queue.Queue()
    limits = None
    for tree in [Tree(number, stages) for number in range(jobs)]:
        tree.prepare()
        limits = limits or [tree.measure(stage) for stage in stages]
        tree.limits = limits
        trees.put(tree)

    def judge(mutant):
        tree = trees.get()
        try:
            return tree.verdict(mutant)
        finally:
            trees.put(tree)

    valid = 0
    waiting = iter(mutants)
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        running = []
        while valid < sample:
            while len(running) < jobs and (mutant := next(waiting, None)) is not None:
                running.append((mutant, pool.submit(judge, mutant)))
            if not running:
                return
            mutant, future = running.pop(0)
            valid += future.result() != "invalid"
            yield mutant, future.result()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sample", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--sweeps", action="store_true")
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    mutants = [mutant for mutant in all_mutants() if re.search(options.only, str(mutant))]
    print(f"{len(mutants)} mutants", flush=True)
    random.Random(options.seed).shuffle(mutants)
    count = {"killed": 0, "survived": 0, "invalid": 0}
    stages = STAGES + [SWEEPS] * options.sweeps
    for mutant, verdict in verdicts(mutants, options.sample, options.jobs, stages):
        count[verdict] += 1
        if sum(count.values()) % 20 == 0:
            print(count, file=sys.stderr, flush=True)
        if verdict == "survived":
            print(f"survived  {mutant}", flush=True)
    valid = count["killed"] + count["survived"]
    print(f"{count['killed']} of {valid} killed, {100 * count['killed'] / max(valid, 1):.1f} percent; "
          f"{count['invalid']} more did not compile")


if __name__ == "__main__":
    main()
