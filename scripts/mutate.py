#!/usr/bin/env python3
"""Mutation testing of the module and the platform code it leans on most.

Driven by scripts/mutate.sh, which prepares a private copy of the tree and its
build. Each mutant changes one place of one source file with one of five
classic operators:

  rel     a relational operator flipped (< and <=, > and >=, == and !=)
  arith   an arithmetic operator swapped (+ and -, * and /, += and -=)
  negate  the condition of an if or while negated
  const   an integer constant nudged by one
  call    a call statement deleted

Mutants are chosen deterministically: every candidate of every file is listed,
each file's list is shuffled with a fixed seed, and the files are visited in
turn, one mutant each, up to the cap. Identical sources, seed and cap give the
same mutants.

For each mutant, under the shared build lock (held for a run of mutants of at
most --hold seconds, then released before the next mutant): the file is changed in the copy,
only its library is rebuilt, the library is kept in a cache keyed on the
mutant and on every non-test source (so a later run against other tests
reuses it without compiling), and the tests that cover the file run with a
time out. A test failure kills the mutant; a time out is reported apart; a
mutant that does not compile is reported and left out of the score.
"""
import argparse
import glob
import hashlib
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

LOCK = "/tmp/tessera-build.lock"

# The libraries each mutated directory builds into (the module has a second
# build, with every symbol visible, that the module's tests load, where the
# tree defines it), and the test programs (in the order they run, cheapest
# killers first) that cover it.
LIBRARIES = [
    ("tools/tessera/src/", ["ZNtesseraUi", "ZNtesseraUiOpen"], []),
    ("platform/src/tesseraUtil/", ["ZNtesseraUtil"], ["test_tesseraUtil"]),
    ("platform/src/pluginAPI/", ["ZNpluginAPI"], ["test_pluginAPI"]),
]
# Every mutated library is used by the module, so the module's tests, every
# session script and the replay of the user-action corpus cover all of them.
COMMON_TESTS = ["test_module", "fuzz_userActions", "sessions"]

REL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
ARITH = {"+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+="}
NOT_CALLS = {"__builtin_prefetch", "return", "if", "else", "for", "while", "switch", "case", "delete", "throw",
             "co_return", "co_await", "using", "typedef", "static_assert", "new", "sizeof",
             "Q_OBJECT", "Q_UNUSED", "assert", "emit"}


def library_of(path):
    for prefix, targets, tests in LIBRARIES:
        if path.startswith(prefix):
            return targets, tests + COMMON_TESTS
    raise SystemExit(f"mutate: {path} is in no mutated library")


def code_mask(lines):
    """Each line with string and character literals and comments blanked out."""
    masked = []
    in_block = False
    for line in lines:
        out = []
        i = 0
        quote = None
        while i < len(line):
            c = line[i]
            if in_block:
                if line.startswith("*/", i):
                    in_block = False
                    out.append("  ")
                    i += 2
                    continue
                out.append(" ")
            elif quote:
                if c == "\\":
                    out.append("  ")
                    i += 2
                    continue
                if c == quote:
                    quote = None
                out.append(" ")
            elif line.startswith("//", i):
                out.append(" " * (len(line) - i))
                break
            elif line.startswith("/*", i):
                in_block = True
                out.append("  ")
                i += 2
                continue
            elif c in "\"'" and not (c == "'" and i > 0 and line[i - 1].isalnum()):
                quote = c
                out.append(" ")
            else:
                out.append(c)
            i += 1
        masked.append("".join(out)[: len(line)])
    return masked


def closing_paren(code, start):
    depth = 0
    for i in range(start, len(code)):
        if code[i] == "(":
            depth += 1
        elif code[i] == ")":
            depth -= 1
            if depth == 0:
                return i
    return -1


def candidates(path, text):
    lines = text.split("\n")
    masked = code_mask(lines)
    previous = ""
    out = []
    for n, code in enumerate(masked):
        stripped = code.strip()
        if not stripped or stripped.startswith("#"):
            continue
        for m in re.finditer(r"(?<=[\w)\]] )(<=|>=|==|!=|<|>)(?= [\w(!*&\-\[{])", code):
            op = m.group(1)
            out.append((n, m.start(1), op, REL[op], "rel"))
        for m in re.finditer(r"(?<=[\w)\]] )(\+=|-=|\+|-|\*|/)(?= [\w(\[])", code):
            op = m.group(1)
            out.append((n, m.start(1), op, ARITH[op], "arith"))
        for m in re.finditer(r"\b(?:if|while) \(", code):
            open_at = m.end() - 1
            close = closing_paren(code, open_at)
            cond = lines[n][open_at + 1:close] if close > open_at else ""
            # A condition that declares a variable cannot be negated.
            if cond and not re.search(r"(?<![=!<>])=(?!=)", cond):
                out.append((n, open_at + 1, cond, f"!({cond})", "negate"))
        for m in re.finditer(r"(?<![\w.'])(\d+)(?![\w.'])", code):
            value = m.group(1)
            out.append((n, m.start(1), value, str(int(value) + 1), "const"))
        call = re.match(r"^(\s*)([A-Za-z_][\w:]*(?:\s*(?:\.|->)\s*[A-Za-z_]\w*)*)\s*\(", code)
        if (call and call.group(2).split(":")[0] not in NOT_CALLS
                and code.rstrip().endswith(");") and "=" not in code[: call.end()]
                and closing_paren(code, call.end() - 1) == len(code.rstrip()) - 2
                and previous.rstrip().endswith((";", "{", "}"))):
            start = len(call.group(1))
            body = lines[n][start: len(code.rstrip())]
            out.append((n, start, body, "{}", "call"))
        previous = code
    return [(path, n + 1, col, old, new, op) for n, col, old, new, op in out]


def choose(root, files, seed, cap):
    per_file = []
    for path in sorted(files):
        with open(os.path.join(root, path)) as f:
            found = candidates(path, f.read())
        found.sort()
        random.Random(f"{seed}:{path}").shuffle(found)
        per_file.append(found)
    chosen = []
    while len(chosen) < cap and any(per_file):
        for found in per_file:
            if found and len(chosen) < cap:
                chosen.append(found.pop(0))
    # Run in the order chosen: a run stopped early covers every file.
    return chosen


def apply(text, mutant):
    path, line, col, old, new, op = mutant
    lines = text.split("\n")
    target = lines[line - 1]
    assert target[col: col + len(old)] == old, (mutant, target)
    lines[line - 1] = target[:col] + new + target[col + len(old):]
    return "\n".join(lines)


def describe(mutant):
    path, line, col, old, new, op = mutant
    return f"{path}:{line}:{col + 1} {op}: '{old}' -> '{new}'"


def sources_key(root):
    """A hash of every non-test source, so that cached mutants are reused only
    against the code they were built from."""
    h = hashlib.sha256()
    for top in ("platform", "tools", "apps", "cmake", "CMakeLists.txt"):
        base = os.path.join(root, top)
        paths = [base] if os.path.isfile(base) else sorted(
            os.path.join(d, f) for d, _, fs in os.walk(base) for f in fs)
        for p in sorted(paths):
            h.update(os.path.relpath(p, root).encode())
            with open(p, "rb") as f:
                h.update(f.read())
    return h.hexdigest()[:16]


class Runner:
    def __init__(self, root, build, cache, timeout):
        self.root, self.build, self.cache, self.timeout = root, build, cache, timeout
        self.env = dict(os.environ, QT_QPA_PLATFORM="offscreen",
                        TESSERA_MODULE=os.path.join(build, "lib", "libZNtesseraUi.so"),
                        TESSERA_RESOURCE_PATH=os.path.join(build, "lib"),
                        TESSERA_SOURCE_DIR=root)
        self.scripts = sorted(
            os.path.join(root, "tests", "sessions", f)
            for f in os.listdir(os.path.join(root, "tests", "sessions")) if f.endswith(".tss"))

    def commands(self, tests):
        bin_dir = os.path.join(self.build, "bin")
        for test in tests:
            if test == "sessions":
                out = tempfile.mkdtemp(prefix="mutate-session-")
                for script in self.scripts:
                    yield [os.path.join(bin_dir, "tessera-run"), "--quiet", "--out", out, script]
            elif test.startswith("fuzz_"):
                corpus = os.path.join(self.root, "tests", "fuzz", "corpus", test[len("fuzz_"):])
                yield [os.path.join(bin_dir, test), "-runs=0", corpus]
            else:
                yield [os.path.join(bin_dir, test), "--gtest_brief=1"]

    def run_tests(self, tests):
        """'passed', 'killed' (with the test that failed) or 'timeout'."""
        deadline = time.monotonic() + self.timeout
        for cmd in self.commands(tests):
            left = deadline - time.monotonic()
            if left <= 0:
                return "timeout", os.path.basename(cmd[0])
            try:
                r = subprocess.run(cmd, env=self.env, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, timeout=left)
            except subprocess.TimeoutExpired:
                return "timeout", os.path.basename(cmd[-1] if "sessions" in cmd[-1] else cmd[0])
            if r.returncode != 0:
                name = os.path.basename(cmd[-1]) if cmd[-1].endswith(".tss") else os.path.basename(cmd[0])
                return "killed", name
        return "passed", ""

    def build_target(self, *targets):
        r = subprocess.run(["ninja", "-C", self.build, *targets], stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True)
        return r.returncode == 0

    def library(self, target):
        return os.path.join(self.build, "lib", f"lib{target}.so")

    def present(self, targets):
        """The targets the tree defines."""
        return [t for t in targets
                if glob.glob(os.path.join(self.build, "**", "CMakeFiles", t + ".dir"), recursive=True)]

    def mutant(self, mutant, key):
        """Builds (or takes from the cache) the mutant's library, swaps it in,
        runs the file's tests and puts the pristine library back."""
        path = mutant[0]
        targets, tests = library_of(path)
        targets = self.present(targets)
        ident = hashlib.sha256(f"{key}|{describe(mutant)}".encode()).hexdigest()[:20]
        cached = os.path.join(self.cache, ident)
        # The first library's copy is ident.so, the others' ident.TARGET.so.
        copies = [(self.library(t), cached + (".so" if i == 0 else f".{t}.so"))
                  for i, t in enumerate(targets)]
        if not all(os.path.exists(c) for _, c in copies) and not os.path.exists(
                cached + ".nocompile"):
            source = os.path.join(self.root, path)
            with open(source) as f:
                original = f.read()
            try:
                with open(source, "w") as f:
                    f.write(apply(original, mutant))
                ok = self.build_target(*targets)
            finally:
                with open(source, "w") as f:
                    f.write(original)
            if ok:
                for lib, copy in copies:
                    shutil.copy2(lib, copy + ".part")
                    os.replace(copy + ".part", copy)
            else:
                open(cached + ".nocompile", "w").close()
            # The restored file is rebuilt (from ccache) before the next mutant.
        if os.path.exists(cached + ".nocompile"):
            return "not compiled", ""
        for lib, copy in copies:
            shutil.copy2(copy, lib + ".mutant")
            os.replace(lib + ".mutant", lib)
        try:
            return self.run_tests(tests)
        finally:
            for lib, _ in copies:
                pristine = os.path.join(self.cache, "pristine", key, os.path.basename(lib))
                shutil.copy2(pristine, lib + ".pristine")
                os.replace(lib + ".pristine", lib)


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--root", required=True, help="the copy of the tree that is mutated")
    ap.add_argument("--build", required=True, help="its build directory")
    ap.add_argument("--cache", required=True)
    ap.add_argument("--seed", type=int, default=17)
    ap.add_argument("--max", type=int, default=60)
    ap.add_argument("--timeout", type=int, default=60, help="seconds for one mutant's tests")
    ap.add_argument("--hold", type=int, default=90,
                    help="seconds after which the lock is released before the next mutant")
    ap.add_argument("--list", action="store_true", help="list the mutants and stop")
    ap.add_argument("--report", required=True)
    ap.add_argument("files", nargs="+")
    args = ap.parse_args()

    chosen = choose(args.root, args.files, args.seed, args.max)
    if args.list:
        for m in chosen:
            print(describe(m))
        return 0

    key = sources_key(args.root)
    runner = Runner(args.root, args.build, args.cache, args.timeout)
    lock = open(LOCK, "a")
    import fcntl

    # The pristine libraries of these sources, and the unmutated suite, which
    # must pass for the scores to mean anything.
    pristine_dir = os.path.join(args.cache, "pristine", key)
    os.makedirs(pristine_dir, exist_ok=True)
    # The lock is taken for the first build and the unmutated suite, and
    # then for runs of mutants at most --hold seconds long, released between
    # runs with a pause so that others waiting get it.
    fcntl.flock(lock, fcntl.LOCK_EX)
    held_since = time.monotonic()
    try:
        tests = [t for _, _, ts in LIBRARIES for t in ts] + COMMON_TESTS
        libraries = runner.present([t for _, ts, _ in LIBRARIES for t in ts])
        targets = libraries + sorted({t for t in tests if t != "sessions"} | {"tessera-run"})
        if not runner.build_target(*targets):
            raise SystemExit("mutate: the unmutated tree does not build")
        for target in libraries:
            shutil.copy2(runner.library(target), pristine_dir)
        status, where = runner.run_tests(list(dict.fromkeys(tests)))
        if status != "passed":
            raise SystemExit(f"mutate: the unmutated suite fails ({status} in {where})")
    except BaseException:
        fcntl.flock(lock, fcntl.LOCK_UN)
        raise

    results = []
    i = 0
    while i < len(chosen):
        if held_since is None:
            fcntl.flock(lock, fcntl.LOCK_EX)
            held_since = time.monotonic()
        try:
            while i < len(chosen) and time.monotonic() - held_since < args.hold:
                m = chosen[i]
                status, where = runner.mutant(m, key)
                results.append((m, status, where))
                i += 1
                print(f"[{i}/{len(chosen)}] {status:12} {describe(m)} {where}", flush=True)
        finally:
            fcntl.flock(lock, fcntl.LOCK_UN)
            held_since = None
        time.sleep(3)

    # The copy's libraries are the pristine ones again; the objects of the
    # last mutated files are rebuilt (from ccache) by the next run's first build.
    with open(args.report, "w") as f:
        f.write(f"# Mutation report: seed {args.seed}, at most {args.max} mutants, "
                f"{args.timeout} s per mutant's tests\n")
        f.write("# score = (killed + timed out) / mutants that compiled\n\n")
        f.write(f"{'file':52} {'mutants':>7} {'killed':>6} {'survived':>8} {'timeout':>7} "
                f"{'nocompile':>9} {'score':>6}\n")
        totals = [0, 0, 0, 0, 0]
        for path in sorted({m[0] for m in chosen}):
            rs = [s for m, s, _ in results if m[0] == path]
            row = [len(rs), rs.count("killed"), rs.count("passed"), rs.count("timeout"),
                   rs.count("not compiled")]
            totals = [a + b for a, b in zip(totals, row)]
            f.write(f"{path:52} {row[0]:7} {row[1]:6} {row[2]:8} {row[3]:7} {row[4]:9} "
                    f"{score(row):>6}\n")
        f.write(f"{'total':52} {totals[0]:7} {totals[1]:6} {totals[2]:8} {totals[3]:7} "
                f"{totals[4]:9} {score(totals):>6}\n\nSurvivors:\n")
        for m, s, _ in sorted(results):
            if s == "passed":
                f.write(f"  {describe(m)}\n")
        f.write("\nKilled (by the first test that failed) and timed out:\n")
        for m, s, where in sorted(results):
            if s in ("killed", "timeout"):
                f.write(f"  {describe(m)}  [{s}: {where}]\n")
        f.write("\nNot compiled:\n")
        for m, s, _ in sorted(results):
            if s == "not compiled":
                f.write(f"  {describe(m)}\n")
    print(open(args.report).read())
    return 0


def score(row):
    compiled = row[0] - row[4]
    return f"{100 * (row[1] + row[3]) / compiled:.0f}%" if compiled else "-"


if __name__ == "__main__":
    sys.exit(main())
