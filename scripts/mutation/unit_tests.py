"""Runs single unit tests, and knows which of them run which lines of src/."""

import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from enum import Enum
from pathlib import Path

FAILED_ASSERTION = re.compile(rb"^\S+\.(?:cpp|h):\d+: Failure$", re.M)
MEMORY_LIMIT = 6 << 30  # a change that makes the program allocate without end must not exhaust the machine


class Outcome(Enum):
    PASSED = "passed"
    FAILED = "failed assertion"
    CRASHED = "crash"
    TIMED_OUT = "time-out"


def prepare_process():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    for ignored in (signal.SIGHUP, signal.SIGINT):  # ignored in what runs in the background
        signal.signal(ignored, signal.SIG_DFL)


class Runner:
    """Has a folder of its own, below a short path: a socket's name has no room for a long one."""

    def __init__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tarn_mutation."))

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, program, test, time_limit, trace=None):
        own = Path(tempfile.mkdtemp(dir=self.folder, prefix=""))
        environment = {**os.environ, "TMPDIR": str(own), "HOME": str(own)}
        environment.pop("TARN_SEEN_TEXTS", None)
        if trace:
            environment["TARN_MUTATION_TRACE"] = str(trace)
        begun = time.monotonic()
        with open(own / "output", "w+b") as output:
            process = subprocess.Popen([str(program), f"--gtest_filter={test}"], cwd=own, env=environment,
                                       stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                       start_new_session=True, preexec_fn=prepare_process)
            try:
                code = process.wait(time_limit)
            except subprocess.TimeoutExpired:
                code = None
            try:
                os.killpg(process.pid, signal.SIGKILL)  # and what the test has started
            except ProcessLookupError:
                pass
            process.wait()
            output.seek(0)
            said = output.read(8 << 20)
        shutil.rmtree(own, ignore_errors=True)
        if own.exists():  # a folder that a test made unwritable
            subprocess.run(["chmod", "-R", "u+rwX", str(own)], check=False, stderr=subprocess.DEVNULL)
            shutil.rmtree(own, ignore_errors=True)
        self.took = time.monotonic() - begun
        if FAILED_ASSERTION.search(said):
            return Outcome.FAILED
        if code is None:
            return Outcome.TIMED_OUT
        return Outcome.PASSED if code == 0 else Outcome.CRASHED


def list_tests(program):
    said = subprocess.run([str(program), "--gtest_list_tests"], stdout=subprocess.PIPE, text=True, check=True).stdout
    tests = []
    suite = ""
    for line in said.splitlines():
        name = line.split("#")[0].strip()
        if line.startswith("  "):
            tests.append(suite + name)
        elif name.endswith("."):
            suite = name
    return tests


def traced_blocks(path):
    content = path.read_bytes()
    return [match.start() * 8 + bit for match in re.finditer(rb"[^\0]", content)
            for bit in range(8) if content[match.start()] >> bit & 1]


def lines_of(program, offsets):
    """The line behind each offset of the program, as "file:line"."""
    given = "\n".join(f"0x{offset - 1:x}" for offset in offsets)
    said = subprocess.run(["addr2line", "-e", str(program)], input=given, stdout=subprocess.PIPE, text=True,
                          check=True).stdout.splitlines()
    lines = {}
    for offset, place in zip(offsets, said):
        path, _, line = place.split(" ")[0].rpartition(":")
        if line.isdigit():
            lines[offset] = f"{Path(path).name}:{line}"
    return lines


class Knowledge:
    """How long each test took, which of them fail as it is, and which lines each ran."""

    def __init__(self, tests):
        self.tests = tests
        self.duration = {}
        self.failing = []
        self.runs = {}  # "file:line": bit N stands for test N
        self.breadth = [0] * len(tests)  # how many lines each test ran

    def to_json(self):
        return {"tests": self.tests, "duration": self.duration, "failing": self.failing, "breadth": self.breadth,
                "runs": {place: f"{bits:x}" for place, bits in self.runs.items()}}

    @staticmethod
    def from_json(content):
        knowledge = Knowledge(content["tests"])
        knowledge.duration = content["duration"]
        knowledge.failing = content["failing"]
        knowledge.breadth = content["breadth"]
        knowledge.runs = {place: int(bits, 16) for place, bits in content["runs"].items()}
        return knowledge

    def time_limit(self, test):
        return max(30.0, 20 * self.duration[test])

    def order(self, change, including):
        """All tests, the likeliest to notice first: those that run the block of the changed line, then those that run
        its file, or for a header the files that include it; and of each the quick and narrow ones first."""
        name = Path(change.path).name
        of_line = of_file = 0
        nearest = 0
        for place, bits in self.runs.items():
            file_name, line = place.split(":")
            if file_name == name or file_name in including:
                of_file |= bits
            if file_name == name and nearest < int(line) <= change.line:
                nearest, of_line = int(line), bits

        def rank(number):
            nearness = 0 if of_line >> number & 1 else 1 if of_file >> number & 1 else 2
            return nearness, self.duration[self.tests[number]] > 0.5, self.breadth[number], number

        order = sorted(range(len(self.tests)), key=rank)
        return [self.tests[number] for number in order if self.tests[number] not in self.failing]


def learn(program, tests, pool, runners):
    def attempt(test):
        runner = runners.get()
        try:
            trace = runner.folder / "trace"
            for _ in range(3):  # a loaded machine is no reason to leave a test out
                trace.unlink(missing_ok=True)
                outcome = runner.run(program, test, 120, trace)
                if outcome == Outcome.PASSED:
                    break
            return outcome, runner.took, traced_blocks(trace) if trace.exists() else []
        finally:
            runners.put(runner)

    results = list(pool.map(attempt, tests))
    places = lines_of(program, sorted({offset for result in results for offset in result[2]}))
    knowledge = Knowledge(tests)
    for number, (outcome, took, offsets) in enumerate(results):
        knowledge.duration[tests[number]] = took
        if outcome != Outcome.PASSED:
            knowledge.failing.append(tests[number])
        own = {places[offset] for offset in offsets if offset in places}
        knowledge.breadth[number] = len(own)
        for place in own:
            knowledge.runs[place] = knowledge.runs.get(place, 0) | 1 << number
    return knowledge
