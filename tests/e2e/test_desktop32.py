"""The 32-bit desktop program with the 64-bit agent."""

import unittest

import harness
from contact_fields import BODY, fields, tag_line

RUNNER = "run-wine32.sh"
PROGRAM = "zebdesk32.exe"
LONG = "y" * 100000
TEXTS = ["plain", "\u65e5\u672c\u8a9e \U0001F600", "x" * 2000]


class Desktop32(harness.Case):
    def setUp(self):
        super().setUp()
        if not (self.place.bin / PROGRAM).exists():
            raise unittest.SkipTest(f"{PROGRAM} IS NOT BUILT (cmake --preset desktop32)")
        process = self.place.start(self.place.bin / PROGRAM, "--help", runner=RUNNER)
        status, output, errors = self.place.finish(process)
        if status == harness.SKIPPED:
            raise unittest.SkipTest(errors.strip())
        self.assertEqual(status, 0, output + errors)
        self.place.make_contacts([[tag_line("3A11001F", text), tag_line(BODY, LONG)] for text in TEXTS])

    def read32(self):
        return self.place.read_with_desktop(program=PROGRAM, runner=RUNNER)

    def test_it_reads_what_the_64_bit_one_reads(self):
        self.place.start_agent()
        documents = self.read32()
        self.assertEqual(sorted(fields(document.decode())["LastName"] for document in documents.values()),
                         sorted(TEXTS))
        for document in documents.values():
            self.assertEqual(fields(document.decode())["SP-BODY"], LONG)
        self.assertEqual(documents, self.place.read_with_desktop())

    def test_it_starts_the_agent_and_ends_it(self):
        self.assertEqual(len(self.read32()), len(TEXTS))
        self.assertEqual(self.place.run_desktop("shutdown", program=PROGRAM, runner=RUNNER), (0, "", ""))
        self.assertIn("Calling RpcMgmtStopServerListening\n", self.place.log())

    def test_an_unknown_profile_is_refused(self):
        status, output, _ = self.place.run_desktop("count", "--profile", "nobody", program=PROGRAM, runner=RUNNER)
        self.assertEqual((status, output), (3, ""))


if __name__ == "__main__":
    harness.run()
