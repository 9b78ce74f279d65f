"""The log of one whole session, character by character."""

import re

import harness
from contact_fields import tag_line

NAME = "CMAPIObject::"

START = [
    "Begin  Rpc Intliaize-----------------------------------",
    "#### Load tarnlib32.dll function enter ####",
    "#### Load tarnlib32.dll function return TRUE ####",
    "finish Rpc Intliaize-----------------------------------",
]


def operation(name, *lines):
    return [f"{NAME}{name} - {line}\r\n" for line in lines]


def log_on(profile):
    name = "MAPILogOn"
    return [
        *operation(name, f"Begin ---------ProfileName({profile})", "MAPIInitialize(Succeeded)"),
        f"{NAME}MAPIRelease : Begin\r\n",
        f"{NAME}MAPIRelease : Finish\r\n",
        *operation(name, "MAPILogonEx(0X00000000)", "m_lpMAPISession->GetMsgStoresTable(0X00000000)",
                   "pfnHrQueryAllRows(0X00000000)", "m_lpMAPISession->OpenMsgStore(0X00000000)",
                   "Finish(Succeeded)"),
    ]


def count():
    return [
        *operation("GetContactCount", "Begin", "GetProps(0X00000000)"),
        *operation("GetContactCountFromFolder", "Begin", "m_lpContactFolder->OpenEntry(0X00000000)",
                   "lpContainer->GetContentsTable(0X00000000)", "pfnHrQueryAllRows(0X00000000)", "Finish"),
        *operation("GetContactCount", "Finish"),
    ]


def read(contacts, result="Succeeded", within=()):
    name = "ReadContactFromFolder"
    return [
        *operation("ReadContacts", "Begin"),
        *count(),
        *operation("ReadContacts", f"Contact Count({contacts})", "m_lpContactFolder->GetProps(0X00000000)",
                   "Read All Items(NULL lParam1)"),
        *operation(name, "Begin", "m_lpContactFolder->OpenEntry(0X00000000)",
                   "lpContainer->GetContentsTable(0X00000000)", "pfnHrQueryAllRows(0X00000000)"),
        *within,
        *operation(name, f"Finish({result})"),
        *(operation("ReadContacts", "Failed to read contacts from folder") if result == "Failed" else []),
        *operation("ReadContacts", "Finish"),
    ]


LOG_OFF = [
    f"{NAME}MAPILogOff : Begin\r\n",
    f"{NAME}MAPIRelease : Begin\r\n",
    f"{NAME}MAPIRelease - m_lpMAPISession->Logoff(0X00000000)\r\n",
    f"{NAME}MAPIRelease : Finish\r\n",
    f"{NAME}MAPIUninitialize : Begin\r\n",
    f"{NAME}MAPIUninitialize - pfnMAPIUninitialize(0X00000000)\r\n",
    f"{NAME}MAPIUninitialize : Finish\r\n",
    f"{NAME}MAPILogOff : Finish\r\n",
]

STOP = operation("Stop", "Begin", "Finish")


class Log(harness.Case):
    def session(self, *commands):
        self.place.make_contacts([[tag_line("3A11001F", f"number {i}")] for i in range(3)])
        self.place.start_agent()
        self.place.run_client(*commands)
        return self.place.log()

    def assert_log(self, log, *lines):
        # Uninitialising has no result; the line shows the last error of the thread, whatever that was about.
        log = re.sub(r"(pfnMAPIUninitialize\(0X)[0-9A-F]{8}\)", r"\g<1>00000000)", log)
        # As lists, so that a difference shows its line.
        self.assertEqual(log.splitlines(keepends=True), "".join(lines).splitlines(keepends=True))

    def test_log_on_read_and_log_off(self):
        log = self.session("logon=Work", "count", "read", "logoff")
        self.assert_log(log, *START, *log_on("Work"), *count(), *read(3), *LOG_OFF)

    def test_a_second_log_on_ends_the_first_session(self):
        log = self.session("logon", "logon", "logoff")
        again = log_on("")
        again.insert(3, f"{NAME}MAPIRelease - m_lpMAPISession->Logoff(0X00000000)\r\n")
        self.assert_log(log, *START, *log_on(""), *again, *LOG_OFF)

    def test_a_stopped_read(self):
        log = self.session("--stop-after", "2", "logon", "read", "logoff")
        self.assert_log(log, *START, *log_on(""), *read(3, "Failed", STOP), *LOG_OFF)

    def test_private_lines_are_left_out_unless_asked_for(self):
        self.place.make_contacts([[tag_line("3A11001F", "one")]])
        self.place.start_agent(FENNIC64_LEVEL="")
        self.place.run_client("logon", "read", "logoff")
        self.assert_log(self.place.log(), *START, *operation("ReadContacts", "Read All Items(NULL lParam1)"))


if __name__ == "__main__":
    harness.run()
