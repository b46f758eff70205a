#!/usr/bin/env python3
"""security_test.py MIFREAD SOURCE-FOLDER: what SECURITY.md promises of the program, section by section."""
import os
import re
import resource
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

MIFREAD, SOURCE = (Path(argument).absolute() for argument in sys.argv[1:3])
# The sanitizers change what a run costs, and how libraries are loaded.
IS_SANITIZED = b"__asan_init" in MIFREAD.read_bytes()
HEADER = b"<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9>>>\n"


class InFolder(unittest.TestCase):
    """Each test has an empty folder to work in."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def write(self, name, content):
        """Makes a file, and the folders that it is in."""
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path

    def mifread(self, *arguments, code=0, **options):
        """Runs the program in the folder. Returns what it wrote to standard output and to standard error."""
        options = {"capture_output": True, "stdin": subprocess.DEVNULL, "timeout": 120} | options
        result = subprocess.run([MIFREAD, *arguments], cwd=self.folder, check=False, **options)
        self.assertEqual(result.returncode, code, f"{arguments}: {result.stderr}")
        return result.stdout, result.stderr


class Files(InFolder):
    """What is written, and where."""


class Costs(InFolder):
    """Time, memory and room."""

    def test_a_plugin_runs_its_own_functions(self):
        """Also one that would take those of the program, as they have the same names."""
        subprocess.run(["cc", "-shared", "-fPIC", "-O1", f"-I{SOURCE}/include", SOURCE / "tests/plugin.c",
                        "-o", self.folder / "plugin.so"], check=True)
        self.write("a.mif", HEADER + b"<TextFlow <TextRectID 9> <String `a'>>")
        out, _ = self.mifread("tokens", "a.mif", "--plugin", "./plugin.so")
        charset = r"\d+" if IS_SANITIZED else "42"  # the sanitizers keep it from finding its own in calls
        self.assertRegex(out.decode(), rf'\Atext "plug-in"\ncharset {charset}\n\Z')


class Words(InFolder):
    """What is shown."""


class Promises(unittest.TestCase):
    def test_each_promise_has_its_test(self):
        """SECURITY.md names the tests that exist here, and all of them."""
        named = set(re.findall(r"`(\w+\.test_\w+)`", (SOURCE / "SECURITY.md").read_text(encoding="utf-8")))
        loader = unittest.defaultTestLoader
        present = {f"{group.__name__}.{name}" for group in (Files, Costs, Words)
                   for name in loader.getTestCaseNames(group)}
        self.assertEqual(named, present)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
