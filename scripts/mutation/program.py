"""The unit test program in a build tree of its own: as it is, instrumented, and with one source changed."""

import json
import os
import re
import shlex
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

COPIED = ("CMakeLists.txt", "cmake", "src", "simulator", "client", "gui", "tests", "packaging")


class BuildError(Exception):
    pass


def run(command, **options):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)


class Program:
    def __init__(self, project, folder, jobs):
        self.project = project
        self.folder = folder
        self.source = folder / "source"  # a copy: the project's own files are never changed
        self.tree = folder / "tree"
        self.jobs = jobs
        self.path = self.tree / "tests/unit/unit_tests"
        self.original = folder / "unit_tests"  # stays as it is while a header is changed

    def prepare(self):
        """Brings copy and build up to date."""
        self._copy_sources()
        # Without optimisation, and without warnings as errors, because a change may cause some.
        configured = run(["cmake", "-S", self.source, "-B", self.tree, "-G", "Ninja", "--log-level=WARNING",
                          "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O0 -DNDEBUG -w",
                          "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
                          "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                          "-DTARN_BUILD_PANEL=OFF",  # no unit test of the service needs it
                          "-DTARN_UNITE_SOURCES=OFF"])  # so that a changed header need not build all tests again
        if configured.returncode:
            raise BuildError(configured.stdout)
        self.rebuild()
        shutil.copy2(self.path, self.original)
        entries = json.loads((self.tree / "compile_commands.json").read_text())
        self.compile_commands = {os.path.relpath(entry["file"], self.source): entry for entry in entries}
        commands = run(["ninja", "-C", self.tree, "-t", "commands", "unit_tests"]).stdout.splitlines()
        self.link_command = shlex.split(commands[-1].split(" && ")[1])
        self.objects = {path: shlex.split(entry["command"])[shlex.split(entry["command"]).index("-o") + 1]
                        for path, entry in self.compile_commands.items()}
        self.files_of_tests = {}
        for path in self.objects:
            if path.startswith("tests/unit/"):
                text = (self.source / path).read_text(encoding="utf-8")
                for suite, name in re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)\)", text, re.M):
                    self.files_of_tests[suite, name] = path

    def rebuild(self, *targets):
        built = run(["ninja", "-C", self.tree, "-j", str(self.jobs), *(targets or ["unit_tests"])])
        if built.returncode:
            raise BuildError(built.stdout)

    def _copy_sources(self):
        wanted = {}
        for name in COPIED:
            top = self.project / name
            for path in [top] if top.is_file() else sorted(top.rglob("*")):
                if path.is_file():
                    wanted[path.relative_to(self.project)] = path.read_bytes()
        for path in self.source.rglob("*"):
            if path.is_file() and path.relative_to(self.source) not in wanted:
                path.unlink()
        for name, content in wanted.items():
            target = self.source / name
            if not target.exists() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)

    def sources(self):
        """What the unit test program holds of src/: path and text of each source and of each header they include."""
        linked = {}
        for path in self.compile_commands:
            # The entry function is not part of it.
            if path.startswith("src/") and path != "src/service/main.cpp":
                linked[path] = (self.source / path).read_text(encoding="utf-8")
        for path in sorted((self.source / "src").rglob("*.h")):
            name = str(path.relative_to(self.source))
            if not name.startswith("src/platform/windows/"):
                linked[name] = path.read_text(encoding="utf-8")
        return linked

    def compile(self, path, text, folder, extra=(), cached=False):
        """The object of one source with the given text."""
        changed = folder / Path(path).name
        changed.write_text(text, encoding="utf-8")
        target = folder / (Path(path).stem + ".o")
        entry = self.compile_commands[path]
        command = shlex.split(entry["command"])
        command[command.index("-o") + 1] = str(target)
        command[command.index("-c") + 1] = str(changed)
        cache = ["ccache"] if cached else []  # a change is compiled once; it would only fill the cache
        compiled = run(cache + command + list(extra), cwd=entry["directory"],
                       env={**os.environ, "CCACHE_SLOPPINESS": "pch_defines,time_macros"})
        if compiled.returncode:
            raise BuildError(compiled.stdout)
        return target

    def link(self, objects, target):
        """Objects that come first stand in for those of the libraries."""
        command = list(self.link_command)
        command[command.index("-o") + 1] = str(target)
        first = next(index for index, word in enumerate(command) if word.endswith(".o"))
        linked = run(command[:first] + [str(name) for name in objects] + command[first:], cwd=self.tree)
        if linked.returncode:
            raise BuildError(linked.stdout)
        return target

    def build_changed(self, change, text, folder):
        """The program with a changed source, which is compiled beside the others."""
        return self.link([self.compile(change.path, change.applied_to(text), folder)], folder / "unit_tests")

    def write_header(self, path, text):
        """In its place: what includes it is built again by the next of the following two, or by rebuild()."""
        (self.source / path).write_text(text, encoding="utf-8")

    def build_all(self):
        self.rebuild()
        return self.path

    def build_some(self, test_files, folder):
        """A program with the tests of these files alone."""
        wanted = [self.objects[path] for path in test_files]
        libraries = [word for word in self.link_command if word.endswith(".a") and not word.startswith("/")]
        self.rebuild(*wanted, *libraries)
        target = folder / "unit_tests"
        command = [word for word in self.link_command if not word.endswith(".o") or word in wanted]
        command[command.index("-o") + 1] = str(target)
        linked = run(command, cwd=self.tree)
        if linked.returncode:
            raise BuildError(linked.stdout)
        return target

    def file_of_test(self, test):
        suite, name = test.split(".")  # "Values/Suite.Name/7" where it has parameters
        return self.files_of_tests[suite.split("/")[-1], name.split("/")[0]]

    def build_instrumented(self, folder):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        trace = folder / "trace_runtime.o"
        compiled = run(["gcc", "-O1", "-fPIC", "-c", str(self.project / "scripts/mutation/trace.c"), "-o", str(trace)])
        if compiled.returncode:
            raise BuildError(compiled.stdout)
        sources = {path: text for path, text in self.sources().items() if path.endswith(".cpp")}

        def instrumented(item):
            own = folder / item[0].replace("/", "_")
            own.mkdir()
            return self.compile(*item, own, ("-fsanitize-coverage=trace-pc", "-g1"), cached=True)

        with ThreadPoolExecutor(self.jobs) as pool:
            objects = list(pool.map(instrumented, sorted(sources.items())))
        return self.link([trace] + objects, folder / "unit_tests")
