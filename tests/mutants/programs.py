# SPDX-License-Identifier: MIT
"""The copy of the tree with its switches, the test programs built from it, and which mutants each test
reaches."""
import concurrent.futures
import hashlib
import json
import math
import os
import pathlib
import pickle
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

from scripts import NOT_POSSIBLE, SCRIPTS, TARGETS, commands, with_own_folder
from switches import with_switches

TOP = pathlib.Path(__file__).resolve().parents[2]
WORK = TOP / "build" / "mutate"
TREE = WORK / "tree"
LIST = WORK / "list.tsv"
LEFT_OUT = WORK / "left_out.json"  # the mutants that no switch can express, by file
REACHED = WORK / "reached.pickle"
SWITCH = WORK / "switch.o"

MEMORY = 4 << 30  # bytes that a program may take
# Seconds of tests: those that cost least run first, in pieces of so much. The ones after them run for a
# survivor that is tried again only.
PIECES = (0.05, 0.4, 4)
NUMBERS_FIRST = ("number", "word", "arguments")  # what most often keeps a line with switches from building


def jobs():
    return int(os.environ.get("QUILL_JOBS") or os.cpu_count())


def tracked(*patterns):
    out = subprocess.run(["git", "ls-files", "-z", *patterns], cwd=TOP, check=True, capture_output=True)
    return [name for name in out.stdout.decode().split("\0") if name and (TOP / name).is_file()]


def write_if_other(path, content):
    """A file that has not changed keeps its time, so that nothing is rebuilt for it."""
    if not path.is_file() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


class Tree:
    """mutants: path -> [Mutant]. at: the number of each, by its name. switched: the names of those behind a
    switch."""

    def __init__(self, mutants, sanitized):
        self.mutants, self.sanitized = mutants, sanitized
        self.folder = WORK / ("sanitized" if sanitized else "build")
        self.first, self.at, self.by_number = {}, {}, []
        for path in sorted(mutants):
            self.first[path] = len(self.by_number)
            for mutant in mutants[path]:
                self.at[mutant.name] = len(self.by_number)
                self.by_number.append(path)
        self.left_out = self.read_left_out()
        self.copy()

    def read_left_out(self):
        known = json.loads(LEFT_OUT.read_text()) if LEFT_OUT.is_file() else {}
        return {path: set(known[path]["names"]) if known.get(path, {}).get("text") == self.digest(path) else set()
                for path in self.mutants}

    def keep_left_out(self):
        LEFT_OUT.write_text(json.dumps({path: {"text": self.digest(path), "names": sorted(names)}
                                        for path, names in self.left_out.items()}))

    @staticmethod
    def digest(path):
        return hashlib.sha1((TOP / path).read_bytes()).hexdigest()

    def copy(self):
        names = tracked()
        self.switched = set()
        for name in names:
            if name in self.mutants:
                self.write_switched(name)
            else:
                write_if_other(TREE / name, (TOP / name).read_bytes())
                (TREE / name).chmod((TOP / name).stat().st_mode)
        for path in [p for p in TREE.rglob("*") if p.is_file() and str(p.relative_to(TREE)) not in set(names)]:
            if "build" not in path.relative_to(TREE).parts[:1]:
                path.unlink()

    def write_switched(self, path):
        text, names = with_switches((TOP / path).read_text(), self.mutants[path], self.first[path],
                                    self.left_out[path])
        self.switched |= names
        write_if_other(TREE / path, text.encode())

    def configure(self):
        subprocess.run(["c++", "-O1", f"-I{TOP}", "-c", TOP / "tests/mutants/switch.cpp", "-o", SWITCH], check=True)
        if (self.folder / "build.ninja").is_file():
            return
        options = ["-DCMAKE_CXX_FLAGS=-O1 -w -Wno-narrowing -fpch-preprocess",
                   f"-DCMAKE_CXX_STANDARD_LIBRARIES={SWITCH}"]
        if shutil.which("ld.lld"):
            options.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
        if self.sanitized:
            options.append("-DQUILL_SANITIZE=address,undefined")
        subprocess.run(["cmake", "-S", TREE, "-B", self.folder, "-G", "Ninja", "-DBUILD_TESTING=ON",
                        "-DCMAKE_BUILD_TYPE=None", *options], check=True, stdout=subprocess.DEVNULL)

    def ninja(self, names):
        names = [target for name in names for target in (TARGETS if name == SCRIPTS else (name,))]
        done = subprocess.run(["ninja", "-k", "0", "-C", self.folder, "-j", str(jobs()), *names],
                              capture_output=True, text=True)
        return done.returncode == 0, done.stdout + done.stderr

    def build(self, names):
        """Builds, and leaves out the switches of lines that do not, until all is built."""
        self.configure()
        while True:
            built, log = self.ninja(names)
            if built:
                break
            lines = {(path, int(line)) for path, line in re.findall(r"/tree/(\S+?\.cpp):(\d+)", log)}
            # The cause may be near the lines that the compiler names, or elsewhere in the file.
            if not any(self.leave_out(lines, around) for around in (0, 10, 40, 1000)):
                sys.exit(f"The tests do not build:\n{log[-3000:]}")
            self.keep_left_out()

    def leave_out(self, lines, around):
        """Leaves out switches of these lines, and of so many around them: first the kinds that fail most, then
        all. False if there are none."""
        changed = set()
        for path, line in lines:
            here = [m for m in self.mutants.get(path, ())
                    if abs(m.number - line + 1) <= around and m.name in self.switched]
            some = [m for m in here if m.kind in NUMBERS_FIRST] or here
            if some:
                changed.add(path)
                self.left_out[path] |= {m.name for m in some}
                self.switched -= {m.name for m in here}
        for path in changed:
            self.switched -= {m.name for m in self.mutants[path]}
            self.write_switched(path)
        return bool(changed)


class Programs:
    """The test programs. A test is (program, name)."""

    def __init__(self, tree, names, thorough):
        self.tree, self.thorough = tree, thorough
        self.paths = {path.name: path for path in tree.folder.rglob("*")
                      if path.name in names and path.is_file() and os.access(path, os.X_OK)}
        self.scripts = commands(tree.folder) if SCRIPTS in names else {}
        self.slower = 8 if tree.sanitized else 1
        self.read_reached(names)

    # -------- running

    def spawn(self, command, environment, folder, limits):
        """(the exit code, what it printed, wall seconds, CPU seconds)"""
        begin = time.monotonic()
        with tempfile.TemporaryFile() as output:
            process = subprocess.Popen([*limits, *command], env=environment, cwd=folder, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=subprocess.DEVNULL, start_new_session=True)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            try:
                os.killpg(process.pid, 9)
            except ProcessLookupError:
                pass
            output.seek(0)
            text = output.read().decode(errors="replace")
        return process.returncode, text, time.monotonic() - begin, usage.ru_utime + usage.ru_stime

    def environment(self, folder, mutant, reached):
        changes = {"MALLOC_PERTURB_": "165", "TMPDIR": folder, "QUILL_MUTANT": str(mutant),
                   "LSAN_OPTIONS": f"suppressions={TREE}/tests/lsan.supp:print_suppressions=0"}
        if reached:
            changes["QUILL_MUTANTS_REACHED"] = str(reached)
        return dict(os.environ, **changes)

    def run(self, program, tests, mutant, seconds, cpu, reached=None):
        """(passed, the test that failed, wall seconds, CPU seconds)"""
        if program == SCRIPTS:
            return self.run_scripts(tests, mutant, seconds, reached)
        limits = ["timeout", "-s", "KILL", str(math.ceil(seconds)), "prlimit", f"--cpu={math.ceil(cpu)}"]
        if not self.tree.sanitized:
            limits.append(f"--as={MEMORY}")
        with tempfile.TemporaryDirectory(dir=WORK / "tmp") as folder:
            os.chmod(folder, 0o755)  # a test may give up root's rights
            environment = self.environment(folder, mutant, reached)
            environment.update(QT_QPA_PLATFORM="offscreen", GTEST_FAIL_FAST="1")
            flags = pathlib.Path(folder) / "flags"
            flags.write_text("--gtest_filter=" + ":".join(tests) + "\n")
            path = self.paths[program]
            code, text, wall, used = self.spawn([path, f"--gtest_flagfile={flags}"], environment, path.parent, limits)
        failed = re.findall(r"\[  FAILED  \] ([\w./]+)", text) or re.findall(r"\[ RUN      \] ([\w./]+)", text)[-1:]
        name = failed[0] if failed else "?"
        if code in (124, 137, 152):
            name += " (time)"
        return code == 0, name, wall, used

    def run_script(self, name, mutant, seconds, reached):
        with tempfile.TemporaryDirectory(dir=WORK / "tmp", ignore_cleanup_errors=True) as folder:
            command = with_own_folder(self.scripts[name], self.tree.folder, folder)
            return self.spawn(command, self.environment(folder, mutant, reached), folder,
                              ["timeout", "-s", "KILL", str(math.ceil(seconds))])

    def run_scripts(self, names, mutant, seconds, reached):
        """As `run`."""
        walls = cpus = 0
        for name in names:
            code, _, wall, cpu = self.run_script(name, mutant, seconds, reached)
            walls, cpus = walls + wall, cpus + cpu
            if code != 0 and (code != NOT_POSSIBLE or mutant < 0):
                return False, name, walls, cpus
        return True, "", walls, cpus

    # -------- what each test reaches

    def read_reached(self, names):
        self.key = hashlib.sha1(" ".join(self.tree.at).encode()).hexdigest()  # the numbers of all mutants
        known = pickle.loads(REACHED.read_bytes()) if REACHED.is_file() else {}
        if known.get("key") != self.key:
            known = {"key": self.key, "tests": {}, "early": 0}
        self.known, self.early = known["tests"], known["early"]
        (WORK / "tmp").mkdir(exist_ok=True)
        listed = [(name, test) for name in names for test in self.listed(name)]
        self.measure([test for test in listed if test not in self.known])
        self.tests = {test: self.known[test] for test in listed if test in self.known}
        self.anything = 0
        for _, _, bits in self.tests.values():
            self.anything |= bits
        self.least = {name: min((max(cpu, wall / 5) for (program, _), (wall, cpu, _) in self.tests.items()
                                 if program == name), default=0) for name in names}

    def listed(self, program):
        if program == SCRIPTS:
            return sorted(self.scripts)
        out = subprocess.run([self.paths[program], "--gtest_list_tests"], capture_output=True, text=True,
                             env=dict(os.environ, QT_QPA_PLATFORM="offscreen")).stdout
        suite, tests = "", []
        for line in out.splitlines():
            if re.match(r"\S+\.(\s|$)", line):
                suite = line.split()[0]
            elif line.startswith("  ") and suite and "DISABLED_" not in suite + line:
                tests.append(suite + line.split()[0])
        return tests

    def measure(self, tests):
        if not tests:
            return
        print(f"{len(tests)} tests run without a mutant", flush=True)
        lock, done = threading.Lock(), [0]

        def one(test):
            with tempfile.NamedTemporaryFile(dir=WORK / "tmp") as file:
                file.truncate(max(1, len(self.tree.by_number)))
                passed, _, wall, cpu = self.run(test[0], [test[1]], -1, 300, 300, file.name)
                data = pathlib.Path(file.name).read_bytes()
            with lock:
                if passed:
                    self.known[test] = (wall, cpu, bits_of(data, 2))
                    self.early |= bits_of(data, 1)
                else:
                    print(f"{' '.join(test)} is left out, as it fails without a mutant", flush=True)
                done[0] += 1
                if done[0] % 100 == 0 or done[0] == len(tests):
                    self.keep_reached()

        with concurrent.futures.ThreadPoolExecutor(jobs()) as pool:
            list(pool.map(one, tests))

    def keep_reached(self):
        """Together with what another run has found out meanwhile."""
        other = pickle.loads(REACHED.read_bytes()) if REACHED.is_file() else {}
        tests = other["tests"] if other.get("key") == self.key else {}
        REACHED.write_bytes(pickle.dumps({"key": self.key, "tests": {**tests, **self.known}, "early": self.early}))

    def bits_of_file(self, path):
        first = self.tree.first[path]
        return ((1 << len(self.tree.mutants[path])) - 1) << first

    # -------- a mutant

    def noticed(self, number, programs):
        """("killed", by which test) or ("survived", why)."""
        bit = 1 << number
        if not self.anything & bit:
            if not self.early & bit:
                return "survived", "not reached"
            bit = self.bits_of_file(self.tree.by_number[number])  # an initial value: all that uses the file
        return self.tried(number, programs, bit)

    def tried(self, number, programs, bits):
        for program in programs:
            tests = sorted((max(cpu, wall / 5), wall, cpu, name)
                           for (its, name), (wall, cpu, reached) in self.tests.items()
                           if its == program and reached & bits)
            for piece in pieces(tests, self.least[program], self.thorough):
                name = self.failing(program, piece, number)
                if name:
                    return "killed", f"{program} {name}"
        return "survived", ""

    def failing(self, program, piece, number):
        """The test of the piece that fails with the mutant, in company and alone; "" if there is none. On a busy
        machine, and in the company of others, a test may fail for another reason."""
        while piece:
            passed, name, _, _ = self.run_piece(program, piece, number)
            alone = [test for test in piece if test[3] == name.split(" ")[0]] or piece
            if passed or not self.run_piece(program, alone, number)[0]:
                return "" if passed else name
            piece = [test for test in piece if test not in alone]
        return ""

    def still_fails(self, number, program, name):
        if program not in {its for its, _ in self.tests}:
            return True
        if (program, name) not in self.tests:
            return False
        wall, cpu, _ = self.tests[program, name]
        return not self.run_piece(program, [(0, wall, cpu, name)], number)[0]

    def run_piece(self, program, piece, number):
        wall, cpu = sum(test[1] for test in piece), sum(test[2] for test in piece)
        return self.run(program, [test[3] for test in piece], number, self.slower * (4 * wall + 15),
                        self.slower * (3 * cpu + 2))

    def noticed_by_build(self, path, mutant, programs):
        """The same for a mutant without a switch. Its file has none of the others."""
        lines = (TOP / path).read_text().split("\n")
        lines[mutant.number:mutant.number + mutant.old.count("\n") + 1] = mutant.new.split("\n")
        (TREE / path).write_text("\n".join(lines))
        try:
            for program in programs:
                if not self.tree.ninja([program])[0]:
                    return "did not build", ""
                result, by = self.tried(-1, [program], self.bits_of_file(path))
                if result == "killed":
                    return result, by
            return "survived", ""
        finally:
            self.tree.write_switched(path)


def bits_of(data, wanted):
    """A number in which bit i says that byte i has the bit `wanted`."""
    digits = bytes(ord("1") if byte & wanted else ord("0") for byte in range(256))
    return int(data.translate(digits)[::-1], 2)


def pieces(tests, least, thorough):
    """The tests in the order of their costs, in pieces as PIECES says. Each costs `least` less in company."""
    piece, seconds, index = [], 0, 0
    for test in tests:
        piece.append(test)
        seconds += test[0] - least
        if seconds > PIECES[min(index, len(PIECES) - 1)] or len(piece) > 2000:
            yield piece
            piece, seconds, index = [], 0, index + 1
            if index == len(PIECES) and not thorough:
                return
    if piece:
        yield piece
