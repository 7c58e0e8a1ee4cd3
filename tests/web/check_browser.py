"""The npm package in a browser: check_browser.py --orlo PROGRAM --work FOLDER

Serves the built package to Chromium and runs the example pieces in a page, in the page's worker and in a worker of its own, compares
scores and pages with what the native programs write, and stops a long run. Ends with status 77 where Chromium, its driver,
python3-selenium or the modules are missing.
"""

import argparse
import functools
import http.server
import os
import shutil
import subprocess
import sys
import tempfile
import threading

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
from web_package import ROOT, add_arguments, package_of
from run_case import difference, environment, read_file
from same_everywhere import need
from check_page import start_browser  # ends with 77 without selenium

PIECE = "quartet"
INCLUDED = "quartet-tempo.inc"
SECONDS = 60  # for the whole script
STOP_WITHIN = 500  # milliseconds
LARGE = "i1 = 3 0 9000 {\np2 .001\np3 1\n}\n"  # nine million events

PAGE = "<!doctype html><title>orlo</title>"

# a worker that uses the package by itself
OWN_WORKER = """
import { run } from '/dist/index.js';
onmessage = async ({ data }) => postMessage(await run(data));
"""

SCRIPT = """
const [piece, included, large, done] = arguments;
async function tried() {
    const { load, run, runSync, text } = await import('/dist/index.js');
    const files = { 'in.orlo': piece, 'quartet-tempo.inc': included };
    const given = { program: 'orlo', args: ['-s', 'in.orlo', 'out'], files };
    const score = result => text(result.files.out);
    const seen = {};
    let refused = '';
    try { runSync(given); } catch (fault) { refused = fault.message; }
    seen.refused = refused;
    seen.page = score(await run(given));
    seen.again = score(runSync(given));
    seen.worker = score(await run({ ...given, signal: new AbortController().signal }));
    const own = new Worker('/own-worker.js', { type: 'module' });
    seen.own = score(await new Promise((resolve, reject) => {
        own.onmessage = ({ data }) => resolve(data);
        own.onerror = ({ message }) => reject(new Error(message));
        own.postMessage(given);
    }));
    const view = await run({ program: 'orlo-view', args: ['-o', 'out', 'in.orlo'], files });
    seen.view = score(view);
    const stopping = new AbortController();
    const running = run({ ...given, files: { 'in.orlo': large }, signal: stopping.signal });
    await new Promise(resolve => setTimeout(resolve, 200));
    const start = performance.now();
    stopping.abort();
    seen.stopped = await running.then(({ status }) => `ended with ${status}`, fault => fault.name);
    seen.milliseconds = performance.now() - start;
    await load('orlo');
    const times = [];
    for (let i = 0; i < 50; ++i) {
        const before = performance.now();
        runSync({ program: 'orlo', files: {} });
        times.push(performance.now() - before);
    }
    seen.instance = times.sort((a, b) => a - b)[25];
    return seen;
}
tried().then(done, fault => done({ fault: String(fault.stack ?? fault) }));
"""


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        made = {"/": ("text/html", PAGE), "/own-worker.js": ("text/javascript", OWN_WORKER)}.get(self.path)
        if made is None:
            super().do_GET()
            return
        kind, text = made
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.end_headers()
        self.wfile.write(text.encode())

    def log_message(self, *_):
        pass


def native(orlo, folder):
    """What the native programs write."""
    shutil.copy(os.path.join(ROOT, "examples", f"{PIECE}.orlo"), os.path.join(folder, "in.orlo"))
    shutil.copy(os.path.join(ROOT, "examples", INCLUDED), folder)
    view = os.path.join(os.path.dirname(orlo), "orlo-view")
    for command in ([orlo, "-s", "in.orlo", "score"], [view, "-o", "page", "in.orlo"]):
        subprocess.run(command, cwd=folder, env=environment(), capture_output=True, check=True)
    return [read_file(os.path.join(folder, name)) for name in ("score", "page")]


def in_browser(package, folder):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=package))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    browser = start_browser(os.path.join(folder, "browser"))
    try:
        browser.set_script_timeout(SECONDS)
        browser.get(f"http://127.0.0.1:{server.server_port}/")
        texts = [read_file(os.path.join(folder, name)).decode("ascii") for name in ("in.orlo", INCLUDED)]
        return browser.execute_async_script(SCRIPT, *texts, LARGE)
    finally:
        browser.quit()
        server.shutdown()


def main():
    parser = argparse.ArgumentParser(description="check the npm package in a browser")
    add_arguments(parser)
    options = parser.parse_args()
    need("chromium", "chromedriver")
    package = package_of(options)
    with tempfile.TemporaryDirectory(prefix="orlo-browser-") as folder:
        score, page = native(os.path.abspath(options.orlo), folder)
        seen = in_browser(package, folder)
    if "fault" in seen:
        print(seen["fault"])
        return 1
    report = [line for way in ("page", "again", "worker", "own") for line in difference(f"score, {way}", score, seen[way].encode())]
    report += difference("page of orlo-view", page, seen["view"].encode())
    if "is not loaded" not in seen["refused"]:
        report.append(f"a run of what is not loaded: {seen['refused']}")
    if seen["stopped"] != "AbortError" or seen["milliseconds"] > STOP_WITHIN:
        report.append(f"a run that is stopped: {seen['stopped']} after {seen['milliseconds']:.0f} ms")
    print("\n".join([*report, f"a run of nothing takes {seen['instance']:.1f} ms"]))
    return 1 if report else 0


if __name__ == "__main__":
    sys.exit(main())
