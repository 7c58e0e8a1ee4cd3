"""Does the project work on a machine that has nothing of it: try_fresh.py [--fast | --no-tests] [--user] [--bare FOLDER] [--keep]

Lays a bare Debian root with debootstrap, puts a clean clone of the last commit into copies of it, and types there what the
pages say, line by line, in one shell for each walk; the files that the pages show are saved as they stand there.

  readme     README.md, then examples/README.md
  tutorial   docs/tutorial.md

Every command must end well, every score, screen and console must be what the page shows (the marks of the blocks are those of
check_docs.py), and every sound file must be as long as its score and not silent. Lines that play aloud are left out. Prints
what it typed; ends with 1 when something is wrong, with 77 where no bare root can be had. Needs root and a Debian mirror.
"""

import argparse
import array
import os
import re
import select
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
import uuid
import wave

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import check_docs

PROJECT = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
WALKS = {"readme": ["README.md", "examples/README.md"], "tutorial": ["docs/tutorial.md"]}
TIME_LIMIT = 4 * 3600  # seconds for one command: the whole suite on a slow machine
QUIET = 1000           # a sound file whose greatest sample is below this is taken for silence
TAIL = 5               # seconds that a sound may go on behind the last note of its score
USER = "newcomer"
SKIP = 77

# the mounts end with the namespace, so that a root can be removed at any time
ENTER = 'mount --rbind /dev "$0/dev" && mount -t proc proc "$0/proc" && exec chroot --userspec="$1" "$0" /usr/bin/env -i "$2" ' \
        'TERM=dumb PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin bash'

# the beginning of a command, and what it must print
PROMISES = {
    "scripts/run": ";I-block #1 (i1):",
    "scripts/test": "100% tests passed, 0 tests failed",
    "cmake -B build": "/usr/local/bin/orlo",
}


class Terminal:
    """One shell in a root: what a command changes holds for the next one."""

    def __init__(self, root, home, user):
        self.root, self.user = root, user
        self.shell = subprocess.Popen(
            ["unshare", "--mount", "--pid", "--fork", "--kill-child", "sh", "-c", ENTER, root, f"{user}:{user}", f"HOME={home}"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env={"PATH": os.environ["PATH"]})
        self.folder = home  # where the shell is
        self.type(f"cd {shlex.quote(home)}")

    def type(self, command):
        """Runs a command; its exit status and what it prints. RuntimeError when the shell is gone or the command does not end."""
        mark = uuid.uuid4().hex
        self.shell.stdin.write(f"{{ {command}\n}} </dev/null\nprintf '\\n%s %d %s\\n' {mark} $? \"$PWD\"\n".encode())
        self.shell.stdin.flush()
        printed, end = b"", time.monotonic() + TIME_LIMIT
        while not (found := re.search(rb"\n%s (\d+) (.*)\n" % mark.encode(), printed)):
            ready, _, _ = select.select([self.shell.stdout], [], [], max(0, end - time.monotonic()))
            more = os.read(self.shell.stdout.fileno(), 65536) if ready else b""
            if not more:
                raise RuntimeError(f"'{command}' has no end:\n{printed[-2000:].decode('latin-1')}")
            printed += more
        self.folder = found[2].decode()
        return int(found[1]), re.sub(r"\x1b\[[\d;]*m", "", printed[:found.start()].decode("latin-1"))

    def path(self, name):
        """A file of the shell's folder, seen from outside."""
        return os.path.join(self.root, self.folder.lstrip("/"), name)

    def save(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        subprocess.run(["chroot", self.root, "chown", f"{self.user}:{self.user}", os.path.join(self.folder, name)], check=True)

    def read(self, name):
        try:
            with open(self.path(name), encoding="latin-1") as file:
                return file.read()
        except OSError:
            return ""

    def close(self):
        """Ends the shell and what it runs."""
        self.shell.kill()  # unshare takes its child along, and with it all that runs there
        self.shell.wait()


def sound_file(line):
    """The sound file that a command makes, without its ending, or nothing."""
    if not re.search(r"\bcsound .*\.(csd|sco)\b", line):
        return None
    found = re.search(r"-o (\S+)\.wav", line) or re.search(r"([\w-]+)\.csd", line)
    return found[1] if found else None


class Walk:
    """A newcomer who copies what stands on pages. Keeps what was wrong."""

    def __init__(self, terminal, tests):
        self.terminal, self.tests = terminal, tests
        self.printed, self.examples, self.faults, self.count = "", {}, [], 0

    def fault(self, where, text, printed=""):
        tail = "".join(f"\n    | {line}" for line in printed.strip("\n").split("\n")[-30:]) if printed else ""
        self.faults.append(f"{where}: {text}{tail}")
        print(f"  FAULT {self.faults[-1]}", flush=True)

    def command(self, where, line, status=0):
        """Types one line, as one types it who is root and has no sound card."""
        if "-odac" in line:
            print(f"  left out: {line}")
            return
        if line == "scripts/test":
            if self.tests is None:
                print(f"  left out: {line}")
                return
            line = f"{line} {self.tests}".strip()
        if self.terminal.user == "root":
            line = re.sub(r"\bsudo ", "", line)
        sound = sound_file(line)
        if sound and os.path.exists(self.terminal.path(f"{sound}.wav")):
            os.remove(self.terminal.path(f"{sound}.wav"))
        start = time.monotonic()
        got, self.printed = self.terminal.type(line)
        self.count += 1
        lines = len(self.printed.strip("\n").split("\n")) if self.printed.strip() else 0
        print(f"  $ {line}\n    {time.monotonic() - start:.0f} s, {lines} lines", flush=True)
        if got != status:
            self.fault(where, f"'{line}' ends with {got}, not {status}", self.printed)
        for begins, promise in PROMISES.items():
            if line.startswith(begins) and promise not in self.printed:
                self.fault(where, f"'{line}' does not say '{promise}'", self.printed)
        if sound:
            self.sound(where, line, sound)

    def sound(self, where, line, name):
        """The sound file that a command with csound has made."""
        trouble = check_docs.CSOUND_TROUBLE.search(self.printed.replace("0 errors in performance", ""))
        if trouble:
            self.fault(where, f"Csound says '{trouble[0]}'", self.printed)
        path = self.terminal.path(f"{name}.wav")
        if not os.path.exists(path):
            self.fault(where, f"'{line}' writes no {name}.wav", self.printed)
            return
        with wave.open(path) as file:
            length = file.getnframes() / file.getframerate()
            samples = array.array("h", file.readframes(file.getnframes()))
        peak = max(map(abs, samples), default=0)
        print(f"    {name}.wav: {length:.2f} s, greatest sample {peak}")
        if length == 0 or peak < QUIET:
            self.fault(where, f"{name}.wav has {length} s and nothing above {peak}")
        notes = [line.split() for line in self.terminal.read(f"{name}.sco").split("\n") if line.startswith("i")]
        end = max((float(note[1]) + float(note[2]) for note in notes), default=None)
        if end is not None and not end - 0.05 <= length <= end + TAIL:
            self.fault(where, f"{name}.wav lasts {length} s, its score {end} s")

    def shown(self, block):
        """Compares what a block shows with what the command before it gave."""
        name = block.keys["of"]
        if block.kind == "score":
            got = self.terminal.read(f"{name}.sco")
            if not check_docs.agrees(check_docs.trimmed(block.text()), check_docs.trimmed(got)):
                self.fault(block.where(), f"{name}.sco is another one", got or "nothing")
        elif block.kind in ("screen", "stdout", "console"):
            missing = check_docs.in_order(block.lines, self.printed)
            if missing:
                self.fault(block.where(), f"'{missing}' is not shown", self.printed)
        else:
            self.fault(block.where(), f"{block.kind} can't be seen from here")

    def block(self, block):
        keys = block.keys
        if block.kind == "sh":
            status = int(self.examples.get(keys.get("of"), {}).get("status", "0"))
            for line in block.text().replace("\\\n", "").split("\n"):
                if line.strip() and not line.startswith("#"):
                    self.command(block.where(), line, status)
        elif block.kind in ("orlo", "csd", "orc"):
            name = keys.get("file") or f"{keys['name']}.{block.kind}"
            self.terminal.save(name, block.text())
            self.examples[keys.get("name")] = keys
            print(f"  saved {name}")
        elif block.kind in check_docs.SHOWN:
            self.shown(block)

    def page(self, page, shown_as):
        print(f"{shown_as}:", flush=True)
        blocks, faults = check_docs.read_blocks(page)
        for fault in faults:
            self.fault(shown_as, fault)
        for block in blocks:
            block.page = shown_as
            self.block(block)


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, **options)


def output(*command):
    return run(*command, stdout=subprocess.PIPE).stdout.strip()


def mirror(suite):
    """This machine's mirror of a suite of Debian, or nothing."""
    try:
        found = output("apt-get", "indextargets", "--format", "$(REPO_URI)", "Identifier: Packages", f"Release: {suite}")
    except (OSError, subprocess.CalledProcessError):
        return None
    return next(iter(found.split("\n")), "") or None


def lay_root(folder, suite):
    """A bare root in a folder, unless it is there; why there is none, or nothing."""
    if os.geteuid() != 0:
        return "only root can lay a root"
    if subprocess.run(["unshare", "--mount", "--pid", "--fork", "true"], capture_output=True, check=False).returncode != 0:
        return "nothing can be mounted here"
    if os.path.isdir(folder):
        return None
    if not shutil.which("debootstrap"):
        return "no debootstrap here"
    address = mirror(suite)
    if not address:
        return f"this machine knows no mirror of {suite}"
    print(f"laying {suite} from {address}", flush=True)
    done = subprocess.run(["debootstrap", "--variant=minbase", suite, folder, address], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode != 0:
        shutil.rmtree(folder, ignore_errors=True)
        return "debootstrap failed:\n" + done.stdout[-2000:]
    settings = output("apt-config", "dump", "--format", '%f "%v";%n', "Acquire::http::Proxy", "Acquire::https::Proxy")
    with open(os.path.join(folder, "etc/apt/apt.conf.d/90trial"), "w", encoding="utf-8") as file:
        file.write(f'APT::Get::Assume-Yes "true"; // the "y" that one types\n{settings}\n')
    with open(os.path.join(folder, "etc/hosts"), "w", encoding="utf-8") as file:
        file.write(f"127.0.0.1 localhost {os.uname().nodename}\n")
    return None


def furnish(bare, root, user):
    """A copy of the bare root with a clean clone in its user's home; the home, as it is called there."""
    run("cp", "-a", "--reflink=auto", bare, root)
    home = "/root" if user == "root" else f"/home/{user}"
    if user != "root":
        terminal = Terminal(root, "/", "root")
        terminal.type("apt-get update && apt-get install sudo")
        status, printed = terminal.type(f"useradd -m {user} && echo '{user} ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/{user}")
        terminal.close()
        if status != 0:
            raise RuntimeError(printed)
    run("git", "clone", "--quiet", "--no-hardlinks", PROJECT, root + home + "/orlo")
    run("chroot", root, "chown", "-R", f"{user}:{user}", home)
    return home


def walk(name, bare, folder, options):
    """Takes one walk; its faults and the number of commands."""
    root, user = os.path.join(folder, name), USER if options.user else "root"
    print(f"\n{name}: a bare root, {user}", flush=True)
    home = furnish(bare, root, user)
    terminal = Terminal(root, home, user)
    terminal.type("cd orlo")
    newcomer = Walk(terminal, options.tests)
    try:
        for page in WALKS[name]:
            newcomer.page(os.path.join(root + home, "orlo", page), page)
    except RuntimeError as error:
        newcomer.fault(name, str(error))
    finally:
        terminal.close()
    if not options.keep:
        run("rm", "-rf", "--one-file-system", root)
    return newcomer.faults, newcomer.count


def read_options():
    parser = argparse.ArgumentParser(description="follow the pages in a bare Debian root")
    tests = parser.add_mutually_exclusive_group()
    tests.add_argument("--fast", dest="tests", action="store_const", const="--fast", default="",
                       help="scripts/test --fast in place of scripts/test")
    tests.add_argument("--no-tests", dest="tests", action="store_const", const=None, help="leave scripts/test out")
    parser.add_argument("--user", action="store_true", help="as a user who may use sudo, not as root")
    parser.add_argument("--suite", default="bookworm", help="Debian's release")
    parser.add_argument("--bare", metavar="FOLDER", help="the bare root: used when it is there, else laid there and kept")
    parser.add_argument("--keep", action="store_true", help="keep the roots, to look at them")
    parser.add_argument("walks", nargs="*", metavar="WALK", help=" or ".join(WALKS) + "; without any, all")
    options = parser.parse_args()
    if set(options.walks) - set(WALKS):
        parser.error("there is no such walk")
    return options


def try_walks(bare, folder, options):
    """Takes the walks in roots below a folder; the exit status."""
    trouble = lay_root(bare, options.suite)
    if trouble:
        print(f"not tried: {trouble}")
        return SKIP
    print("commit " + output("git", "-C", PROJECT, "log", "-1", "--format=%h %s"))
    if output("git", "-C", PROJECT, "status", "--porcelain"):
        print("what is not committed is not tried")
    faults, count = [], 0
    for name in options.walks or WALKS:
        bad, typed = walk(name, bare, folder, options)
        faults, count = faults + bad, count + typed
    print(f"\n{count} commands, {len(faults)} faults")
    for fault in faults:
        print(fault)
    return 1 if faults or not count else 0


def main():
    options = read_options()
    folder = tempfile.mkdtemp(prefix="orlo-fresh-", dir="/var/tmp")
    bare = os.path.abspath(options.bare) if options.bare else os.path.join(folder, "bare")
    try:
        return try_walks(bare, folder, options)
    finally:
        if options.keep:
            print(f"kept in {folder}")
        else:
            run("rm", "-rf", "--one-file-system", folder)


if __name__ == "__main__":
    sys.exit(main())
