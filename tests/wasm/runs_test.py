#!/usr/bin/env python3
"""The whole runs once more, by the library in WebAssembly: the same bytes as everywhere else. One module makes them
all, so that each also shows that the ones before it have left nothing behind.

    runs_test.py NODE RUNS_JS --left-out LIST [--filter TEXT] CHAPTER...

RUNS_JS makes them: korvo_wasm_runs.js, or whole_runs.mjs of the npm package.

Left out are the cases in LIST, which are about files and arguments, those that write to a device, and one that takes
too long. A failing case prints one line, and what differs; the last line is the count.
"""

import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import chapters  # noqa: E402
import run_cases  # noqa: E402
from clock import HANG  # noqa: E402

# Sixteen million expansions, each of which moves the rest of its line; the C library here does that slowly.
TAKES_LONG = "regressions/condition-behind-the-last-expansion"


def read_command_line():
    parser = argparse.ArgumentParser(description="Makes the whole runs in WebAssembly and compares every byte.")
    parser.add_argument("node", help="Node.js")
    parser.add_argument("module", type=Path, help="korvo_wasm_runs.js, whole_runs.mjs")
    parser.add_argument("chapters", nargs="+", type=Path, metavar="chapter", help="a file, or a folder of them")
    parser.add_argument("--left-out", type=Path, required=True, metavar="LIST", help="cases, each with a reason")
    parser.add_argument("--filter", default="", metavar="TEXT", help="only cases whose topic/name has TEXT, or is TEXT")
    return parser.parse_args()


def cases_to_make(arguments):
    all_chapters = chapters.read_chapters(arguments.chapters)
    names = run_cases.selected(all_chapters, "")
    names -= run_cases.read_left_out(arguments.left_out, names)
    names.remove(TAKES_LONG)
    names &= run_cases.selected(all_chapters, arguments.filter)
    chosen = [case for chapter in all_chapters for case in chapter.cases if run_cases.name_of(case) in names]
    return [case for case in chosen if not any("/dev/" in each for each in run_cases.arguments_of(case))]


def letters_of(case, names):
    """The option letters of a case, "x" where the expansion is wanted."""
    given = {argument[1] for argument in run_cases.arguments_of(case) if argument[0] == "-"}
    return "".join(sorted(given & set("mst"))) + ("x" if names.expansion is not None else "")


def prepare(case, names, folder):
    """A case as the module finds it."""
    folder.mkdir()
    run_cases.write_files(folder, case.files)
    folder.with_suffix(".run").write_text(f"{letters_of(case, names)}\n{names.piece}\n")


def outcome_of(case, names, folder):
    """What the program would have left behind; it says its banner, and ends a complete run with an empty line."""
    made = {kind: folder.with_suffix(f".{kind}").read_bytes() for kind in ("output", "expanded", "stdout", "stderr")}
    status = int(folder.with_suffix(".status").read_text())
    said = run_cases.banner(names) + made["stderr"]
    files = run_cases.read_files(folder)
    files[names.output] = made["output"]
    if names.expansion is not None:
        files[names.expansion] = made["expanded"]
    if names.log is not None:
        files[names.log] = said
    return run_cases.Outcome(status, made["stdout"], said + (b"\n" if status == 0 else b""), files)


def make_all(arguments, folder, count):
    """Makes the runs in one module. What Node.js says of a module that breaks down begins with all of its text."""
    command = [arguments.node, arguments.module, folder, str(count)]
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=HANG)
    if done.returncode != 0 or done.stdout or done.stderr:
        sys.exit(f"runs_test: the module ended with {done.returncode}\n{done.stdout}{done.stderr[-2000:]}")


def main():
    arguments = read_command_line()
    cases = cases_to_make(arguments)
    if not cases:
        sys.exit("runs_test: no case matches")
    names = [run_cases.read_arguments(run_cases.arguments_of(case)) for case in cases]
    faults = 0
    with tempfile.TemporaryDirectory(prefix="korvo-wasm-", dir=run_cases.memory_folder()) as folder:
        folders = [Path(folder, str(i)) for i in range(len(cases))]
        for each in zip(cases, names, folders):
            prepare(*each)
        make_all(arguments, folder, len(cases))
        for case, case_names, place in zip(cases, names, folders):
            differences = run_cases.compare_case(case, case_names, outcome_of(case, case_names, place))
            if differences:
                faults += 1
                summary = "; ".join(each.summary for each in differences)
                print(f"FAIL {run_cases.name_of(case)} ({case.place}): {summary}")
            for each in differences:
                run_cases.show(each)
    print(f"{len(cases) - faults} passed, {faults} failed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
