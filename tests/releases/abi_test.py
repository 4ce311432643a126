#!/usr/bin/python3
"""The comparison of the C interface's header with those of releases, on headers that break it."""
import pathlib
import sys
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(SOURCE / "scripts"))
import abi  # noqa: E402

HEADER = (SOURCE / abi.C_HEADER).read_text()


class Changes(unittest.TestCase):
    def changes(self, before, after):
        self.assertIn(before, HEADER)
        return list(abi.changed_declarations(HEADER, HEADER.replace(before, after)))

    def test_SameHeader_HasNone(self):
        self.assertEqual(list(abi.changed_declarations(HEADER, HEADER)), [])

    def test_EveryFunctionAndRecord_IsCompared(self):
        declared = abi.declarations(HEADER)
        functions = {name for name in declared if name.startswith("kestova_") and "(" in str(declared[name])}
        self.assertEqual(len(functions), HEADER.count("KESTOVA_C_API ") - HEADER.count("define KESTOVA_C_API")
                         + HEADER.count("typedef void("))
        self.assertEqual(declared["kestova_drive_info"], ["int disk", "int partition", "kestova_char letter"])
        self.assertEqual(declared["KESTOVA_SWITCH_NO_RECOVERY_FILES"], "3")
        self.assertEqual(declared["kestova_char"], "typedef unsigned short kestova_char")

    def test_EnumeratorWithAnotherValue_IsNamed(self):
        self.assertEqual(self.changes("KESTOVA_STYLE_GPT = 2", "KESTOVA_STYLE_GPT = 3"),
                         ["KESTOVA_STYLE_GPT was 2, and is 3"])

    def test_FunctionLost_IsNamed(self):
        self.assertEqual(self.changes("kestova_clear_active(kestova *handle)", "kestova_clear(kestova *handle)"),
                         ["kestova_clear_active is missing"])

    def test_ParameterAdded_IsNamed(self):
        changes = self.changes("kestova_clear_active(kestova *handle)", "kestova_clear_active(kestova *handle, int disk)")
        self.assertEqual(len(changes), 1)
        self.assertRegex(changes[0], "^kestova_clear_active was KESTOVA_C_API int")

    def test_FieldsInAnotherOrder_AreNamed(self):
        changes = self.changes("    int has_result; ", "    int more; int has_result; ")
        self.assertRegex(changes[0], r"^kestova_problem was \['unsigned int size'")

    def test_Additions_BreakNothing(self):
        self.assertEqual(self.changes("} kestova_problem;", "int more; } kestova_problem;"), [])
        self.assertEqual(self.changes("enum kestova_style {", "int kestova_new(int a); enum kestova_style {"), [])


if __name__ == "__main__":
    unittest.main()
