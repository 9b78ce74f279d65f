"""What the tests of wear share: a store with contacts and appointments, and the client that wears the agent out."""

import os
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "e2e"))

import harness  # noqa: E402
from contact_fields import tag_line  # noqa: E402
from appointments import appointment  # noqa: E402

HOLLOW_AGENT = "hollow_agent.exe"
FULL = os.environ.get("ZEB_SOAK") == "full"
SEED = int(os.environ.get("ZEB_SEED", "20111"))


class SoakCase(harness.Case):
    ITEMS = 20

    def setUp(self):
        super().setUp()
        self.place.settings(subfolder="true")
        self.place.folder("Work/Mail/Calendar")
        self.make_items("Ada", "Review")

    def make_items(self, contact, subject):
        """Makes items of each kind in the default folders, whose names end with numbers."""
        self.place.make_contacts([[tag_line("3A06001F", f"{contact} {number}")] for number in range(self.ITEMS)])
        self.place.make_items(appointment(f"{subject} {number}") for number in range(self.ITEMS))

    def start_hollow_agent(self, kept=0):
        """Starts what the agent stands on without the agent, which serves as many items. For each document it keeps some bytes."""
        program = self.place.start(harness.TEST_BIN / HOLLOW_AGENT, str(self.ITEMS), str(kept))
        harness.wait_until(lambda: program.streams[0].read_bytes() or program.poll() is not None, "the calls are served")
        return program

    def end(self, process):
        """Ends a process that serves calls."""
        process.kill()
        process.wait(harness.PATIENCE)

    def start_stress(self, *words):
        """Starts the stress client."""
        return self.place.start(harness.TEST_BIN / "stress_client.exe", harness.windows_path(self.place.path) + "\\", *words)

    def stress(self, *words):
        """Runs the stress client, however long that takes. Gives its lines."""
        return self.lines_of(self.start_stress(*words))

    def lines_of(self, process):
        """Waits for the end of a stress client."""
        status = process.wait(None)
        output, errors = (stream.read_bytes().decode() for stream in process.streams)
        self.assertEqual(status, 0, output + errors)
        return output.splitlines()
