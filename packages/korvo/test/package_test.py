#!/usr/bin/env python3
"""The package as npm would publish it: packed, installed into an empty folder, used there by every block of its README and
by a strict TypeScript that checks all types it is given. Works on what scripts/packages has built.

    scripts/node-tools packages/korvo/test/package_test.py
"""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

PACKAGE = Path(__file__).resolve().parent.parent
ROOT = PACKAGE.parent.parent
BLOCK = re.compile(r"^<!-- (\w+) -->\n\n```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
FILES = {"package.json", "README.md", "LICENSE", "dist/korvo.wasm"}
CODE = {"index", "module", "run", "texts", "bytes", "types"}

TYPESCRIPT = """
import { type Block, type Korvo, load, type Result, type Seconds } from 'korvo';

const korvo: Korvo = await load();
const result: Result = korvo.render('i1 = 3 0 -2 { p2 1 p3 1 }', { include: (name) => name, silent: true });
const block: Block | undefined = result.blocks[0];
const starts: readonly Seconds[] = [...(block?.columns[0] ?? [])];
// @ts-expect-error A number is no text.
korvo.render(5);
// @ts-expect-error What has come out stays as it is.
result.ok = true;
export { starts };
"""


def run(words, folder, **options):
    done = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, **options)
    if done.returncode != 0:
        sys.exit(f"package_test: {' '.join(map(str, words))} ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


def expect(right, words):
    if not right:
        sys.exit(f"package_test: {words}")


def install(folder):
    """Packs the package and installs what comes of it; its folder."""
    name = run(["npm", "pack", "--silent", "--pack-destination", folder, PACKAGE], folder).strip()
    (folder / "package.json").write_text('{ "private": true, "type": "module" }\n')
    run(["npm", "install", "--silent", "--offline", "--no-audit", "--no-fund", f"./{name}"], folder)
    installed = folder / "node_modules" / "korvo"
    expect(installed.is_dir() and not installed.is_symlink(), "it was not installed as a package of its own")
    return installed


def check_files(installed):
    there = {str(path.relative_to(installed)) for path in installed.rglob("*") if path.is_file()}
    wanted = FILES | {f"dist/{name}.{kind}" for name in CODE for kind in ("js", "d.ts")}
    expect(there == wanted, f"its files are not as expected: {sorted(there ^ wanted)}")
    sources = run(["git", "ls-files", "src"], PACKAGE).split()
    expect({Path(name).stem for name in sources if name.endswith(".ts")} == CODE, "src has other files")


def check_against_root():
    same = (PACKAGE / "LICENSE").read_text() == (ROOT / "LICENSE").read_text()
    expect(same, "its LICENSE is not that of Korvo")
    said = re.search(r"project\(korvo VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
    expect(f'"version": "{said}"' in (PACKAGE / "package.json").read_text(), f"its version is not {said}")


def check_blocks(folder):
    """Every block of the README that is Node's prints what stands below it."""
    blocks = BLOCK.findall((PACKAGE / "README.md").read_text())
    kinds = [kind for kind, _ in blocks]
    expect(kinds == ["node", "output", "worker", "node", "output", "node", "output"], f"other blocks: {kinds}")
    for (kind, code), (_, wanted) in zip(blocks, blocks[1:]):
        if kind == "node":
            (folder / "block.js").write_text(code)
            printed = run(["node", "block.js"], folder)
            said = " ".join(printed.split())
            expect(said == " ".join(wanted.split()), f"a block of README.md prints\n{printed}and not\n{wanted}")
    worker = next(code for kind, code in blocks if kind == "worker")
    check_worker(folder, worker)


def check_worker(folder, code):
    """The worker, as a worker of Node, where the names are others."""
    (folder / "worker.js").write_text(
        "import { parentPort } from 'node:worker_threads';\n"
        "let onmessage;\n"
        "const postMessage = (...message) => parentPort.postMessage(...message);\n"
        "parentPort.on('message', (data) => onmessage({ data }));\n" + code
    )
    (folder / "page.js").write_text(
        "import { Worker } from 'node:worker_threads';\n"
        "const worker = new Worker(new URL('./worker.js', import.meta.url));\n"
        "worker.once('message', (result) => {\n"
        "  console.log(result.ok, result.output.length, result.blocks[0].columns[1]);\n"
        "  worker.terminate();\n"
        "});\n"
        "worker.postMessage({ text: 'i1 = 3 0 -2 { p2 1 p3 .5 }', options: { silent: true } });\n"
    )
    # A line feed, 18 bytes of heading, two events of 20 bytes and three of the end.
    wanted = f"true {len('|;I-block #1 (i1):|') + 2 * len('i1    0.000  0.500 |') + len('|e|')} Float32Array(2) [ 0.5, 0.5 ]\n"
    expect(run(["node", "page.js"], folder) == wanted, "the worker of README.md does not answer as it should")


def check_types(folder):
    (folder / "use.ts").write_text(TYPESCRIPT)
    for module, resolution in (("NodeNext", "NodeNext"), ("ESNext", "Bundler")):
        run(
            ["tsc", "--noEmit", "--strict", "--exactOptionalPropertyTypes", "--noUncheckedIndexedAccess", "--target", "ES2022",
             "--lib", "ES2022", "--module", module, "--moduleResolution", resolution, "use.ts"],
            folder,
        )  # fmt: skip


def main():
    expect(shutil.which("tsc") is not None, "tsc is missing: call it by scripts/node-tools")
    check_against_root()
    with tempfile.TemporaryDirectory(prefix="korvo-package-") as name:
        folder = Path(name)
        check_files(install(folder))
        check_blocks(folder)
        check_types(folder)


if __name__ == "__main__":
    main()
