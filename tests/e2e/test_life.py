"""How the agent starts and ends."""

import shutil

import harness
from contact_fields import fields, tag_line

BEGIN = "Begin  Rpc Intliaize-----------------------------------"
FINISH = "finish Rpc Intliaize-----------------------------------"
ENTER = "#### Load tarnlib32.dll function enter ####"
# The process may end as soon as the listening has stopped, so the log may break off behind any of these.
STOPPING = [
    "Calling RpcMgmtStopServerListening\n",
    "RpcMgmtStopServerListening returned: 0x%x\n",
    "Calling RpcServerUnregisterIf\n",
    "RpcServerUnregisterIf returned 0x%x\n",
]
FAILED_LOG_ON = "CMAPIObject::MAPILogOn - Failed\r\n"


def files_below(folder):
    return {file.relative_to(folder) for file in folder.rglob("*") if file.is_file()}


class Start(harness.Case):
    def setUp(self):
        super().setUp()
        # The agent makes the folder of its lists when it takes its settings.
        self.place.settings(XMLPath=self.place.path.name)
        self.lists = self.place.application_data() / self.place.path.name
        self.addCleanup(shutil.rmtree, self.lists, ignore_errors=True)

    def assert_useless_but_alive(self, agent, start_log):
        """An agent without a mail system answers, and every logon fails. It has not even looked for settings."""
        lines, documents = self.place.run_client("logon", "count", "read", "logon=Work", "logoff")
        self.assertEqual(lines, ["logon 1", "count 0 0", "read 1 0", "logon 1"])
        self.assertEqual(documents, [])
        self.assertTrue(self.place.log().startswith(start_log), self.place.log())
        self.assertEqual(self.place.log().count(FAILED_LOG_ON), 2)
        self.assertFalse(self.lists.exists())
        self.assertIsNone(agent.poll())
        lines, _ = self.place.run_client("shutdown", "await-end")
        self.assertEqual(lines, ["end announced"])
        self.assert_exit(agent)

    def test_without_a_mail_system(self):
        (self.place.bin / "MAPI32.dll").unlink()
        agent = self.place.start_agent()
        self.assert_useless_but_alive(agent, BEGIN + "unable open MAPI32.dll failed\n" + FINISH +
                                      "CMAPIObject::MAPILogOn - Begin")

    def test_with_a_mail_system_that_lacks_a_function(self):
        shutil.copyfile(harness.TEST_BIN / "mapi_without_profiles.dll", self.place.bin / "MAPI32.dll")
        agent = self.place.start_agent()
        self.assert_useless_but_alive(agent, BEGIN + ENTER + "LoadLibrary MAPI32.dll failed\n" + FINISH +
                                      "CMAPIObject::MAPILogOn - Begin")

    def test_with_a_mail_system_the_settings_are_taken(self):
        self.place.start_agent()
        self.assertTrue(self.lists.is_dir())

    def test_without_settings_the_lists_go_nowhere(self):
        (self.place.bin / "PIMProfile.ini").unlink()
        data = self.place.application_data()
        before = files_below(data)
        agent = self.place.start_agent()
        lines, _ = self.place.run_client("logon", "folders", "profiles", "count", "logoff")
        self.assertEqual(lines, ["logon 0", "folders 0", "profiles 0", "count 0 0"])
        self.assertIsNone(agent.poll())
        self.assertEqual(files_below(data), before)
        self.assertEqual([file for file in files_below(self.place.path) if file.suffix == ".xml"], [])

    def test_a_store_beside_its_library_needs_no_variable(self):
        self.place.make_contacts([[tag_line("3A11001F", "beside")]])
        self.place.root.rename(self.place.bin / "LocalStore")
        self.place.start_agent(LOCALSTORE_ROOT=None)
        lines, documents = self.place.run_client("logon", "count", "read", "logoff")
        self.assertEqual(lines, ["logon 0", "count 1 0", "read 0 1"])
        self.assertEqual([fields(document)["LastName"] for document in documents], ["beside"])

    def test_the_command_line_is_ignored(self):
        agent = self.place.start(self.place.bin / harness.AGENT, "--help", "/?", "x y")
        lines, _ = self.place.run_client("logon", "logoff", "shutdown", "await-end")
        self.assertEqual(lines, ["logon 0", "end announced"])
        self.assertEqual(self.assert_exit(agent), ("", ""))


class End(harness.Case):
    def assert_stopping(self, log):
        tail = log[log.index(STOPPING[0]):]
        self.assertIn(tail, ["".join(STOPPING[:lines]) for lines in range(1, 5)])

    def test_shutdown_before_any_logon_calls_nobody(self):
        agent = self.place.start_agent()
        lines, _ = self.place.run_client("shutdown", "await-end")
        self.assertEqual(lines, ["end not announced"])
        self.assert_exit(agent)
        self.assert_stopping(self.place.log())

    def test_shutdown_announces_itself_to_the_client_of_the_last_logon(self):
        agent = self.place.start_agent()
        lines, _ = self.place.run_client("logon", "logoff", "shutdown", "await-end")
        self.assertEqual(lines, ["logon 0", "end announced"])
        self.assert_exit(agent)
        self.assert_stopping(self.place.log())

    def test_shutdown_with_an_open_session(self):
        agent = self.place.start_agent()
        lines, _ = self.place.run_client("logon", "shutdown", "await-end")
        self.assertEqual(lines, ["logon 0", "end announced"])
        self.assert_exit(agent)
        self.assertNotIn("MAPILogOff", self.place.log())

    def test_shutdown_with_nobody_left_to_tell_ends_the_process_unwell(self):
        agent = self.place.start_agent()
        lines, _ = self.place.run_client("--no-endpoint", "logon", "shutdown", "await-end")
        self.assertEqual(lines, ["logon 0", "end not announced"])
        self.assertNotEqual(self.place.finish(agent)[0], 0)
        self.assertNotIn(STOPPING[0], self.place.log())


class Desktop(harness.Case):
    def test_it_starts_the_agent_and_ends_it(self):
        self.assertEqual(self.place.run_desktop("count")[:2], (0, "contacts: 0\n"))
        self.assertEqual(self.place.run_desktop("count")[:2], (0, "contacts: 0\n"))
        self.assertEqual(self.place.log().count(BEGIN), 1)
        self.assertEqual(self.place.run_desktop("shutdown"), (0, "", ""))
        self.assertIn(STOPPING[0], self.place.log())
        self.assertEqual(self.place.run_desktop("shutdown"), (0, "", ""))
        self.assertEqual(self.place.run_desktop("count")[:2], (0, "contacts: 0\n"))
        self.assertEqual(self.place.log().count(BEGIN), 2)


if __name__ == "__main__":
    harness.run()
