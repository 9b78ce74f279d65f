"""What the scripts of this folder share: a folder with the programs and a store, and the programs as processes.

Each script is one entry of ctest and ends with run(). The environment names the programs:
ZEB_BIN_DIR holds those of the product, ZEB_TEST_BIN_DIR the tools for tests.
"""

import datetime
import os
import pathlib
import pty
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BIN = pathlib.Path(os.environ.get("ZEB_BIN_DIR", ROOT / "build/bin"))
TEST_BIN = pathlib.Path(os.environ.get("ZEB_TEST_BIN_DIR", ROOT / "build/release/tests"))
AGENT = "ZebAgentForOutlook64.exe"
# Entries of ctest in another lane have another prefix, as tools/wine-prefix.sh has it.
_LANE = os.environ.pop("ZEB_LANE", "")
os.environ["WINEPREFIX"] = os.environ.get("WINEPREFIX", str(ROOT / "build/wine")) + (f"-{_LANE}" if _LANE else "")
# Messages that a mail program saved. Without the variable this is a place in which no file is found.
REAL_ITEMS = pathlib.Path(os.environ.get("ZEB_REAL_ITEMS") or os.devnull)
NO_REAL_ITEMS = "NO REAL ITEMS: ZEB_REAL_ITEMS names no folder with them"

# What gives a program another clock than that of the machine, which is beside the C library.
OTHER_CLOCK = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"), None)
NO_OTHER_CLOCK = "NO OTHER CLOCK: the library libfaketime is not there"

# How long a thing may take that ought to happen soon. It only has to be long enough for a busy machine.
PATIENCE = 300
# The exit status that ctest takes for "skipped".
SKIPPED = 77


def windows_path(path):
    """The path under which a Windows program finds a file of this machine."""
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")


def tell_measured(text):
    """Says what was measured, in a form that tools/test.sh finds among the output of all tests."""
    print(f"MEASURED: {text}", flush=True)


def read_terminal(terminal):
    """The next bytes of a terminal; none once the last program has left it, which is an error to the system."""
    try:
        return terminal.read(4096)
    except OSError:
        return b""


def wait_until(condition, what, pause=0.05):
    """Polls until the condition holds, with a pause of some seconds between two looks."""
    deadline = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain: {what}")
        time.sleep(pause)


def limit_file_size(size):
    """For a process about to start: no file that it writes grows beyond the size, as on a disk that is full."""
    def limit():
        # The process is to see the failure and not to be ended by it.
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
    return limit


def clock_at(moment):
    """The environment of a program whose clock stands at a moment in UTC when it starts, and runs on from there.

    Waits and the times of files stay those of the machine, which Wine's server shares.
    """
    seconds = int(moment.replace(tzinfo=datetime.timezone.utc).timestamp())
    return {"LD_PRELOAD": str(OTHER_CLOCK), "FAKETIME": f"@{seconds}", "FAKETIME_FMT": "%s",
            "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"}


class Place:
    """A folder with a copy of the programs, a store below `root` and the agent's log."""

    FOLDER = "Work/Mail/Contacts"

    def __init__(self):
        self._holder = tempfile.TemporaryDirectory(prefix="zeb-e2e-", ignore_cleanup_errors=True)
        self.path = pathlib.Path(self._holder.name)
        self.bin = self.path / "bin"
        self.root = self.path / "root"
        self.log_file = self.path / "agent.log"
        self._agents = []
        self._processes = 0
        self._desktops = 0
        self.bin.mkdir()
        for file in BIN.glob("*.*"):
            if file.suffix.lower() in (".exe", ".dll"):
                shutil.copy2(file, self.bin)
        self.contacts = self.folder(self.FOLDER)

    def close(self):
        if self._desktops:
            self.run_desktop("shutdown")
        for agent in self._agents:
            agent.kill()
            agent.wait(PATIENCE)
        self._holder.cleanup()

    def folder(self, path):
        """Makes a folder of the store."""
        folder = self.root / path
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def environment(self, **more):
        """The environment of a program; of `more`, a variable that is None is not in it."""
        values = dict(os.environ)
        values["LOCALSTORE_ROOT"] = windows_path(self.root)
        values["FENNIC64_LOG"] = windows_path(self.log_file)
        values["FENNIC64_LEVEL"] = "1"
        values.update(more)
        return {name: value for name, value in values.items() if value is not None}

    def drive_c(self):
        """The folder that is the Windows drive C."""
        return pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c"

    def host_path(self, path):
        """Where this machine has a file of the Windows drive C, or of Z, which is all of this machine."""
        drive, below = path.replace("\\", "/").split(":/", 1)
        return pathlib.Path("/", below) if drive == "Z" else self.drive_c() / below

    def application_data(self):
        """The user's application data folder as this machine knows it."""
        shell = self.start(self.drive_c() / "windows/system32/cmd.exe", "/c", "echo %APPDATA%")
        status, output, errors = self.finish(shell)
        if status != 0:
            raise AssertionError(f"the shell ended with {status}: {output}{errors}")
        return self.host_path(output.strip())

    def need_shutdown(self):
        """Notes that the desktop program may start an agent, which stays when it ends."""
        self._desktops += 1

    def start(self, program, *arguments, runner="run-wine.sh", prepare=None, stdin=subprocess.DEVNULL, **more):
        """Starts a Windows program; `more` are variables of its environment, and `prepare` runs in its process before it.

        It writes to files: under Wine an agent that it starts keeps what it writes to open, so a pipe would not end.
        """
        self._processes += 1
        streams = [self.path / f"{self._processes}{name}" for name in (".out", ".err")]
        with open(streams[0], "wb") as output, open(streams[1], "wb") as errors:
            process = subprocess.Popen([str(ROOT / "tools" / runner), windows_path(program), *map(str, arguments)],
                                       env=self.environment(**more), stdin=stdin, stdout=output, stderr=errors,
                                       preexec_fn=prepare)
        process.streams = streams
        return process

    def finish(self, process):
        """Waits for the end of a program. Gives its exit status, output and error output."""
        status = process.wait(PATIENCE)
        output, errors = (stream.read_bytes().decode() for stream in process.streams)
        return status, output, errors

    def start_agent(self, pause=0.05, **more):
        """Starts the agent and waits until it can be reached, with a pause of some seconds between two looks.

        A desktop program that came too early would start another one, which nobody would end.
        """
        ready = "finish Rpc Intliaize"
        before = self.log().count(ready)
        agent = self.start(self.bin / AGENT, **more)
        self._agents.append(agent)
        wait_until(lambda: self.log().count(ready) > before or agent.poll() is not None, "the agent starts",
                   pause)
        return agent

    def settings(self, **keys):
        """Writes the agent's settings file."""
        lines = ["[Outlook]"] + [f"{key}={value}" for key, value in keys.items()]
        (self.bin / "PIMProfile.ini").write_text("\r\n".join(lines) + "\r\n", newline="")

    def log(self):
        return self.log_file.read_bytes().decode() if self.log_file.exists() else ""

    def client(self, *arguments, **more):
        """Starts the test client, whose documents go to a folder of their own."""
        documents = self.path / f"documents{self._processes}"
        documents.mkdir()
        process = self.start(TEST_BIN / "reader_client.exe", "--out", windows_path(documents), *arguments, **more)
        process.documents = documents
        return process

    def run_client(self, *arguments, **more):
        """Runs the test client to its end. Gives its lines and the documents that it received."""
        process = self.client(*arguments, **more)
        status, output, errors = self.finish(process)
        if status != 0:
            raise AssertionError(f"the client ended with {status}: {output}{errors}")
        return output.splitlines(), received(process)

    def run_desktop(self, *arguments, program="zebdesk.exe", **more):
        """Runs the desktop program. Gives its exit status, output and error output."""
        self.need_shutdown()
        return self.finish(self.start(self.bin / program, *arguments, **more))

    def run_desktop_on_terminal(self, *arguments):
        """Runs the desktop program with a terminal as standard error. Gives its exit status and what the terminal got.

        An agent must be there: one that the desktop program started would keep the terminal.
        """
        own, other = pty.openpty()
        try:
            with open(self.path / "terminal.out", "wb") as output:
                process = subprocess.Popen(
                    [str(ROOT / "tools/run-wine.sh"), windows_path(self.bin / "zebdesk.exe"), *arguments],
                    env=self.environment(), stdin=subprocess.DEVNULL, stdout=output, stderr=other)
        finally:
            os.close(other)
        with open(own, "rb", buffering=0) as terminal:
            text = b"".join(iter(lambda: read_terminal(terminal), b""))
        return process.wait(PATIENCE), text.decode()

    def interrupt_desktop(self, *arguments):
        """Runs the desktop program and presses Ctrl+C when its output begins. Gives what run_desktop gives."""
        self._desktops += 1
        return self.finish(self.start(TEST_BIN / "interrupt_program.exe", windows_path(self.bin / "zebdesk.exe"),
                                      *arguments))

    def read_with_desktop(self, *options, kind="contacts", **more):
        """Has the desktop program read all items of a kind. Gives the bytes of the documents by the names of their files.

        Their pictures are with them in a folder of this place.
        """
        self._desktops += 1
        out = self.path / f"read{self._desktops}"
        status, output, errors = self.run_desktop("read", kind, "--out", windows_path(out), *options, **more)
        if status != 0:
            raise AssertionError(f"the desktop program ended with {status}: {output}{errors}\n{self.log()}")
        return {file.name: file.read_bytes() for file in out.glob("*.xml")}

    def make_contacts(self, contacts):
        """Makes contacts through MAPI. Each is a list of lines for make_contacts."""
        self.make_items(["contact", *lines] for lines in contacts)

    def make_items(self, items):
        """Makes items through MAPI. Each is a list of lines for make_contacts, of which the first tells its kind."""
        wishes = self.path / "items.txt"
        wishes.write_text("".join("\n".join(lines) + "\n" for lines in items))
        process = self.start(TEST_BIN / "make_contacts.exe", windows_path(self.bin / "MAPI32.dll"),
                             windows_path(wishes))
        status, output, errors = self.finish(process)
        if status != 0:
            raise AssertionError(f"no items were made: {output}{errors}")

    def multiply_contact(self, text, texts):
        """Makes copies of the one contact that is there, each with another text of the same length in place of `text`."""
        [file] = self.contacts.glob("*.msg")
        content = file.read_bytes()
        file.unlink()
        old = text.encode("utf-16-le")
        assert content.count(old) == 1, f"{text} is not where it can be replaced"
        for number, new in enumerate(texts):
            assert len(new) == len(text), new
            (self.contacts / f"{number:04}.msg").write_bytes(content.replace(old, new.encode("utf-16-le")))


def received(process):
    """The documents that a test client has received so far, in order."""
    return [file.read_bytes().decode("utf-16-le") for file in sorted(process.documents.iterdir())]


class Case(unittest.TestCase):
    """A test with a place of its own."""

    maxDiff = None

    def setUp(self):
        self.place = Place()
        self.addCleanup(self.place.close)

    def assert_exit(self, process, status=0):
        code, output, errors = self.place.finish(process)
        self.assertEqual(code, status, output + errors)
        return output, errors


def run():
    """The end of every script: runs its tests and says aloud what was left out."""
    result = unittest.main(module="__main__", exit=False, verbosity=2).result
    for test, reason in result.skipped:
        print(f"SKIPPED: {test}: {reason}", file=sys.stderr)
    if not result.wasSuccessful():
        sys.exit(1)
    if result.testsRun == len(result.skipped):
        sys.exit(SKIPPED)
