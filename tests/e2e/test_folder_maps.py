"""Reads of changes in two contact folders that take turns: with a map for each, and with one for both."""

import harness
from contact_fields import change_fields, fields
from list_case import ListCase

NEW, DELETED = "8", "32"
NOT_BELIEVED = 10
OURS, FAMILY = ["Ada", "Charles"], ["Augusta", "Byron", "Medora"]


class TwoFolders(ListCase):
    def setUp(self):
        super().setUp()
        for name in OURS:
            self.make_contact("Work/Mail/Contacts/Ours", name)
        for name in FAMILY:
            self.make_contact("Work/Mail/Contacts/Family", name)
        self.ours, self.family = (self.identifier("Mail", "Contacts", name) for name in ("Ours", "Family"))
        self.identifiers = {folder: self.identifiers_in(folder) for folder in (self.ours, self.family)}
        self.assertEqual([sorted(names) for names in self.identifiers.values()], [OURS, FAMILY])
        self.reads = 0

    def identifiers_in(self, folder):
        """The identifiers of the contacts of a folder by name, from a full read."""
        documents = map(fields, (one.decode() for one in self.place.read_with_desktop("--folder", folder).values()))
        return {one["LastName"]: one["PIMID"] for one in documents}

    def run_read(self, folder, map_name):
        """Reads what changed in a folder, by a map. Gives the exit status and the flags of the documents by identifier."""
        self.reads += 1
        out = self.place.path / f"changes{self.reads}"
        status, _, errors = self.place.run_desktop(
            "read", "contacts", "--folder", folder, "--changed", harness.windows_path(self.place.path / map_name),
            "--out", harness.windows_path(out))
        documents = [change_fields(file.read_bytes().decode()) for file in out.glob("*.xml")] if out.exists() else []
        flags = {one["PIMID"]: one["lFlag"] for one in documents}
        self.assertEqual(len(flags), len(documents), errors)
        return status, flags

    def changes(self, folder, map_name):
        status, flags = self.run_read(folder, map_name)
        self.assertEqual(status, 0)
        return flags

    def all_of(self, folder, flag):
        return {identifier: flag for identifier in self.identifiers[folder].values()}

    def test_with_a_map_of_its_own_each_knows_its_changes_alone(self):
        self.assertEqual(self.changes(self.ours, "ours.map"), self.all_of(self.ours, NEW))
        self.assertEqual(self.changes(self.family, "family.map"), self.all_of(self.family, NEW))
        (self.place.root / "Work/Mail/Contacts/Family/Byron.msg").unlink()
        self.assertEqual(self.changes(self.ours, "ours.map"), {})
        self.assertEqual(self.changes(self.family, "family.map"), {self.identifiers[self.family]["Byron"]: DELETED})
        self.assertEqual(self.changes(self.family, "family.map"), {})

    def test_with_one_map_those_of_the_other_are_told_as_deleted_at_each_turn(self):
        self.assertEqual(self.changes(self.ours, "one.map"), self.all_of(self.ours, NEW))
        self.assertEqual(self.changes(self.family, "one.map"),
                         self.all_of(self.family, NEW) | self.all_of(self.ours, DELETED))
        self.assertEqual(self.changes(self.ours, "one.map"),
                         self.all_of(self.ours, NEW) | self.all_of(self.family, DELETED))
        # In the store nothing has happened.
        self.assertEqual({folder: self.identifiers_in(folder) for folder in (self.ours, self.family)}, self.identifiers)

    def test_the_desktop_program_does_not_believe_that_all_of_five_are_deleted(self):
        for name in ("Ralph", "Anne"):
            self.make_contact("Work/Mail/Contacts/Family", name)
        self.assertEqual(len(self.changes(self.family, "one.map")), 5)
        known = (self.place.path / "one.map").read_bytes()
        status, flags = self.run_read(self.ours, "one.map")
        self.assertEqual((status, flags), (NOT_BELIEVED, self.all_of(self.ours, NEW)))
        self.assertEqual((self.place.path / "one.map").read_bytes(), known)
        self.assertEqual(self.changes(self.family, "one.map"), {})


if __name__ == "__main__":
    harness.run()
