#!/usr/bin/env python3
"""The examples by the package in a browser: in a worker of a page whose content security policy allows no more than the
README says. The bytes are those of the program.

    browser_test.py KORVO CHROMIUM
"""

import http.server
import json
import re
import shutil
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

PACKAGE = Path(__file__).resolve().parent.parent
ROOT = PACKAGE.parent.parent
sys.path[:0] = [str(ROOT / "tests")]

from clock import HANG  # noqa: E402

INCLUDE = re.compile(r"#include \|(.+)\|")
POLICY = "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; worker-src 'self'; connect-src 'self'"
KINDS = {".js": "text/javascript", ".wasm": "application/wasm", ".html": "text/html"}

PAGE = '<!doctype html><meta charset="utf-8"><title>korvo</title><script type="module" src="page.js"></script>'
PAGE_CODE = """
const worker = new Worker('worker.js', { type: 'module' });
const done = (body) => fetch('done', { method: 'POST', body: JSON.stringify(body) });
worker.onerror = (error) => done({ fault: error.message ?? 'the worker cannot be loaded' });
worker.onmessage = ({ data }) => done(data);
"""
WORKER_CODE = """
import { load } from './dist/index.js';
try {
  const pieces = await (await fetch('pieces')).json();
  const korvo = await load();
  const outputs = pieces.map(({ text, midi, includes }) => {
    const { output } = korvo.render(text, { midi, include: (name) => includes[name] });
    return [...output];
  });
  postMessage({ outputs });
} catch (error) {
  postMessage({ fault: String(error) });
}
"""


def examples():
    """The folders of the examples, and their pieces as the worker is handed them."""
    folders = sorted(path.parent for path in (ROOT / "examples").glob("*/piece.txt"))
    pieces = []
    for folder in folders:
        text = (folder / "piece.txt").read_text()
        includes = {name: (folder / name).read_text() for name in INCLUDE.findall(text)}
        pieces.append({"text": text, "midi": (folder / "midi").exists(), "includes": includes})
    return folders, pieces


def bytes_of_program(korvo, folder, midi):
    with tempfile.TemporaryDirectory() as place:
        output = Path(place, "output")
        words = [korvo, *(["-m"] if midi else []), "piece.txt", output]
        subprocess.run(words, cwd=folder, check=True, capture_output=True, timeout=HANG)
        return output.read_bytes()


def server(pieces, answer):
    """Serves the page; what the page has to say goes to `answer`."""
    made = {
        "/": (".html", PAGE.encode()),
        "/page.js": (".js", PAGE_CODE.encode()),
        "/worker.js": (".js", WORKER_CODE.encode()),
        "/pieces": (".json", json.dumps(pieces).encode()),
    }
    for path in (PACKAGE / "dist").iterdir():
        made[f"/dist/{path.name}"] = (path.suffix, path.read_bytes())

    class Handler(http.server.BaseHTTPRequestHandler):
        def reply(self, status, suffix, body):
            self.send_response(status)
            self.send_header("Content-Type", KINDS.get(suffix, "application/octet-stream"))
            self.send_header("Content-Security-Policy", POLICY)
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)

        def do_GET(self):
            found = made.get(self.path)
            self.reply(200 if found else 404, *(found or ("", b"")))

        def do_POST(self):
            body = self.rfile.read(int(self.headers["Content-Length"]))
            self.reply(200, "", b"")
            answer.update(json.loads(body))
            answer["event"].set()

        def log_message(self, *_):
            pass

    return http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)


def ask_browser(chromium, pieces):
    """What the worker makes of the pieces."""
    answer = {"event": threading.Event()}
    with server(pieces, answer) as page, tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        threading.Thread(target=page.serve_forever, daemon=True).start()
        browser = subprocess.Popen(
            [chromium, "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run", f"--user-data-dir={profile}",
             "--remote-debugging-port=0", f"http://127.0.0.1:{page.server_port}/"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )  # fmt: skip
        try:
            if not answer["event"].wait(HANG):
                sys.exit("browser_test: the page has not answered")
        finally:
            browser.terminate()
            browser.wait()
            page.shutdown()
    if "fault" in answer:
        sys.exit(f"browser_test: {answer['fault']}")
    return [bytes(output) for output in answer["outputs"]]


def main():
    korvo, chromium = Path(sys.argv[1]).resolve(), sys.argv[2]
    if shutil.which(chromium) is None:
        sys.exit(f"browser_test: {chromium} is missing; scripts/install-packages test installs it")
    folders, pieces = examples()
    if not folders:
        sys.exit("browser_test: no examples")
    faults = 0
    for folder, piece, output in zip(folders, pieces, ask_browser(chromium, pieces), strict=True):
        if output != bytes_of_program(korvo, folder, piece["midi"]):
            faults += 1
            print(f"FAIL {folder.name}: other bytes than the program's")
    print(f"{len(folders) - faults} passed, {faults} failed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
