#!/usr/bin/env python3
"""Feeds check_rooms.py small trees that break one rule each, and one that breaks none."""

import tempfile
import unittest
from pathlib import Path

import check_rooms

CLEAN = {
    "support/text.h": "#pragma once\n#include <string>\n",
    "support/owners.h": "#include <windows.h>\nvoid f(HANDLE h) { CloseHandle(h); }\n",
    "support/CMakeLists.txt": "zeb_room(support\n  PURE\n    text.cpp  # texts\n  PLATFORM\n    keys.cpp\n  LINK x)\n",
    "support/text.cpp": '#include "support/text.h"\n#ifdef _WIN32\n#include <windows.h>\n#endif\n#include <cstring>\n',
    "support/keys.cpp": '#include "support/owners.h"\n#include <winreg.h>\n',
    "agent/main.cpp": '#include "contacts/contact.h"\n#include "command.h"\n',
    "contacts/contact.h": '#include "support/text.h"\n',
}


OWNERS = {("support/owners.h", "release"): "the owners themselves"}


class CheckRoomsTest(unittest.TestCase):
    def check(self, changes, exceptions=OWNERS):
        """The findings as (path, line, rule) for the clean tree with some files changed."""
        with tempfile.TemporaryDirectory() as root:
            for name, text in {**CLEAN, **changes}.items():
                path = Path(root) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            _, findings = check_rooms.check(root, exceptions)
            return [(finding.path, finding.line, finding.rule) for finding in findings]

    def test_clean_tree(self):
        self.assertEqual(self.check({}), [])

    def test_include_against_the_direction(self):
        self.assertEqual(self.check({"support/back.cpp": '\n#include "contacts/contact.h"\n'}),
                         [("support/back.cpp", 2, "include")])

    def test_siblings_do_not_include_each_other(self):
        self.assertEqual(self.check({"calendar/event.cpp": '#include "contacts/contact.h"\n'}),
                         [("calendar/event.cpp", 1, "include")])

    def test_localstore_and_desktop_see_support_only(self):
        self.assertEqual(self.check({"localstore/a.cpp": '#include "contacts/contact.h"\n#include "support/text.h"\n',
                                     "desktop/b.cpp": '#include "contacts/contact.h"\n#include "callback.h"\n'}),
                         [("desktop/b.cpp", 1, "include"), ("localstore/a.cpp", 1, "include")])

    def test_shared_types_of_a_library(self):
        log_item = {"changelog/log_item.h": "", "libraries/dunmere/a.cpp": '#include "changelog/log_item.h"\n'}
        self.assertEqual(self.check(log_item), [])
        self.assertEqual(self.check({**log_item, "libraries/fennic/a.cpp": '#include "changelog/log_item.h"\n'}),
                         [("libraries/fennic/a.cpp", 1, "include")])

    def test_generated_header_outside_its_rooms(self):
        self.assertEqual(self.check({"mapi/a.cpp": '#include "command.h"\n'}), [("mapi/a.cpp", 1, "include")])

    def test_header_beside_a_file(self):
        fixture = {"tests/unit/fixture.h": "", "tests/unit/a_test.cpp": '#include "fixture.h"\n'}
        self.assertEqual(self.check(fixture), [])
        self.assertEqual(self.check({"mapi/fixture.h": "", "mapi/a.cpp": '#include "fixture.h"\n'}),
                         [("mapi/a.cpp", 1, "include")])
        self.assertEqual(self.check({"tests/unit/a_test.cpp": '#include "fixture.h"\n'}),
                         [("tests/unit/a_test.cpp", 1, "include")])

    def test_include_of_what_is_not_there(self):
        self.assertEqual(self.check({"mapi/a.cpp": '#include "support/gone.h"\n'}), [("mapi/a.cpp", 1, "include")])

    def test_include_in_a_comment_does_not_count(self):
        self.assertEqual(self.check({"mapi/a.cpp": '// #include "command.h"\n/*\n#include "agent/x.h"\n*/\n'}), [])

    def test_windows_header_in_a_pure_file(self):
        self.assertEqual(self.check({"support/text.cpp": "#include <windows.h>\n"}), [("support/text.cpp", 1, "pure")])

    def test_windows_header_through_another_header(self):
        self.assertEqual(self.check({"support/text.h": '#include "support/owners.h"\n'}),
                         [("support/owners.h", 1, "pure")])

    def test_windows_header_in_the_native_branch(self):
        source = "#ifndef _WIN32\n#include <a.h>\n#else\n#include <b.h>\n#endif\n#if defined(_WIN32)\n#else\n" \
                 "#include <c.h>\n#endif\n#if !defined(_WIN32)\n#include <d.h>\n#endif\n"
        self.assertEqual(self.check({"support/text.cpp": source}),
                         [("support/text.cpp", line, "pure") for line in (2, 8, 11)])

    def test_pure_file_that_is_missing(self):
        lists = {"support/CMakeLists.txt": "zeb_room(support PURE gone.cpp)\n"}
        self.assertEqual(self.check(lists), [("support/gone.cpp", 1, "pure")])

    def test_each_raw_release(self):
        lines = ["object->Release();", "object.Release();", "pfnMAPIFreeBuffer(x);", "MAPIFreeBuffer(x);",
                 "pfnFreeProws(x);", "::FreeProws(x);", "CloseHandle(x);", "if (x) ::RegCloseKey(x);",
                 "SysFreeString(x);", "FindClose(x);", "FreeLibrary(x);"]
        self.assertEqual(self.check({"mapi/a.cpp": "\n".join(lines) + "\n"}),
                         [("mapi/a.cpp", line + 1, "release") for line in range(len(lines))])

    def test_what_only_looks_like_a_release(self):
        lines = ["// object->Release();", "parser.ReleaseDocument();", 'Log(L"CloseHandle(x)");', "Find(pfnFreeProws);",
                 "ULONG Store::Release() { return 0; }", "owner.Reset();", 'R"(object->Release();)";']
        self.assertEqual(self.check({"mapi/a.cpp": "\n".join(lines) + "\n"}), [])

    def test_the_rights_of_another_user(self):
        lines = ["RpcImpersonateClient(nullptr);", "::ImpersonateNamedPipeClient(pipe);", "SetThreadToken(nullptr, token);",
                 "LogonUserW(name);", "CreateProcessAsUserW(token);"]
        self.assertEqual(self.check({"agent/a.cpp": "\n".join(lines)}),
                         [("agent/a.cpp", line + 1, "rights") for line in range(len(lines))])
        self.assertEqual(self.check({"agent/a.cpp": "// RpcImpersonateClient();\nCreateProcessW(program);\n"}), [])

    def test_size(self):
        self.assertEqual(self.check({"mapi/a.cpp": "\n" * 500}), [])
        self.assertEqual(self.check({"mapi/a.cpp": "\n" * 501}), [("mapi/a.cpp", 501, "size")])
        self.assertEqual(self.check({"tools/long.sh": "\n" * 501}), [("tools/long.sh", 501, "size")])

    def test_exceptions(self):
        raw = {"mapi/a.cpp": "x->Release();\n"}
        self.assertEqual(self.check(raw, {**OWNERS, ("mapi/a.cpp", "release"): "left open"}), [])
        self.assertEqual(self.check({}, {**OWNERS, ("mapi/b.cpp", "release"): "gone"}), [("mapi/b.cpp", 1, "release")])


if __name__ == "__main__":
    unittest.main()
