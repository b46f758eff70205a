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
sys.path.insert(0, str(SOURCE / "scripts"))
sys.dont_write_bytecode = True
import scaling  # noqa: E402, the documents whose cost is measured

# The sanitizers change what a run costs, and how libraries are loaded.
IS_SANITIZED = b"__asan_init" in MIFREAD.read_bytes()
HEADER = b"<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9>>>\n"


def embedded(number, lines):
    """A frame with an embedded object, its data in lines of hexadecimal digits."""
    data = b"".join(b"&%s\n" % line for line in lines)
    return b"<Frame <ID %d> <ImportObject\n=A\n&%%v\n&\\x\n%s=EndInset\n>>\n" % (number, data)


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

    def document(self, name, catalogs, flow):
        """Writes a document, whole, in which the flow is text of body pages."""
        return self.write(name, HEADER + catalogs + b"<TextFlow <TextRectID 9>" + flow + b">\n")

    def seconds(self, *arguments, **options):
        """Runs the program. Returns the processor time that it took, and what it wrote to standard error."""
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        _, err = self.mifread(*arguments, **options)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime, err

    def test_an_object_is_looked_into_once(self):
        costly = embedded(1, [b"0a" * 1000] * 4)  # to tell the type of so many empty lines takes long
        self.document("costly.mif", b"<AFrames " + costly + b">", b"<AFrame 1>" * 3000)
        unreadable = embedded(1, [b"41"] * 20000)
        self.document("unreadable.mif", b"<AFrames " + unreadable + b">", b"<AFrame 1>" * 3000)
        for command in (["html"], ["json", "--objects"], ["info"], ["objects", "-d", "objects"]):
            spent, _ = self.seconds(*command, "costly.mif", stdout=subprocess.DEVNULL, capture_output=False,
                                    stderr=subprocess.PIPE)
            self.assertLess(spent, 20, command)
            _, err = self.seconds(*command, "unreadable.mif", code=1)
            self.assertEqual(err.count(b"cannot be read"), 1, command)

    # Each costs much more than it gives: by command, so that what a page adds is seen, too.
    DEAR = {
        "tables": (b"<Tbls <Tbl <TblID 1>" + b"# comment\n" * 60000 + b">>", b"<ATbl 1>" * 50000),
        "empty tables": (b"<Tbls <Tbl <TblID 1>>>", b"<ATbl 1>" * 120000),
        "families": (b"<PgfCatalog <Pgf <PgfTag `A'>"
                     + b"".join(b"<FFamily `A family of a long name %d'>" % i for i in range(4090)) + b">>",
                     b"<PgfTag `A'>" * 80000),
    }

    def test_work_ends_at_its_limit(self):
        for name, (catalogs, flow) in self.DEAR.items():
            self.document("dear.mif", catalogs, b"<String `begin'>" + flow)
            results = []
            for command in ("text", "text", "html"):
                spent, err = self.seconds(command, "dear.mif", code=5)
                self.assertLess(spent, 60, name)
                self.assertRegex(err, rb"byte \d+: the work limit of 268435456 bytes is reached")
                results.append(err)
            self.assertEqual(results[0], results[1])
            self.assertEqual(results[0], results[2])
            self.mifread("text", "dear.mif", "--max-work", "1M", code=5)
        self.document("good.mif", b"", b"<Para <String `a'>>" * 1000)
        self.mifread("text", "good.mif", "--max-work", "1M")
        self.mifread("text", "good.mif", "--max-work", "20K", code=5)

    def test_time_ends_at_its_limit(self):
        self.document("dear.mif", *self.DEAR["tables"])
        self.document("good.mif", b"", b"<Para <String `a'>>")
        spent, err = self.seconds("text", "dear.mif", "--max-work", "1000G", "--timeout", "0.5", code=5)
        self.assertTrue(0.4 < spent < 10, spent)
        self.assertRegex(err, rb"dear.mif: byte \d+: the limit of 0.5 s of processor time is reached")
        out, _ = self.mifread("text", "dear.mif", "good.mif", "--max-work", "1000G", "--timeout", "0.5", code=1)
        self.assertEqual(out, b"a\n", "each document has a time of its own")
        self.assertIn(b"300 for each of several", self.mifread("text", "--help")[0])

    def test_a_limit_keeps_what_was_read(self):
        self.document("dear.mif", self.DEAR["tables"][0], b"<Para <String `whole'>>" + self.DEAR["tables"][1])
        for limit in (["--max-work", "10M"], ["--max-work", "1000G", "--timeout", "0.2"]):
            out, _ = self.mifread("text", "dear.mif", *limit, code=5)
            self.assertEqual(out, b"whole\n", limit)
            self.mifread("text", "dear.mif", *limit, "-o", "result", code=5)
            self.mifread("text", "dear.mif", *limit, "-d", "results", code=5)
            out, _ = self.mifread("json", "dear.mif", *limit, code=5)
            self.assertIn(b'{"type":"end","status":"failed","messages":["dear.mif', out.splitlines()[-1])
            left = [path for path in self.folder.rglob("*") if path.is_file()]
            self.assertEqual(left, [self.folder / "dear.mif"])

    def interrupt(self, *arguments, number=signal.SIGTERM, **options):
        """Starts the program, sends it a signal when it is at work, and expects its end."""
        options = {"stdout": subprocess.DEVNULL, "stderr": subprocess.PIPE} | options
        with subprocess.Popen([MIFREAD, *arguments], cwd=self.folder, **options) as program:
            time.sleep(1)
            self.assertIsNone(program.poll(), arguments)
            program.send_signal(number)
            try:
                self.assertEqual(program.wait(timeout=5), -number, arguments)
            finally:
                program.kill()
            self.assertIn(b"interrupted", program.stderr.read())

    def test_one_signal_ends_a_run(self):
        self.document("tables.mif", *self.DEAR["tables"])
        self.document("long.mif", b"", b"<Para <String `%s'>>\n" % (b"x" * 1000) * 1000)
        os.mkfifo(self.folder / "fifo")
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.interrupt("text", "tables.mif", "--max-work", "1000G", number=number)
        for jobs in ("1", "2"):  # whichever thread gets the signal
            some = ["long.mif"] * int(jobs) + ["--jobs", jobs]
            self.interrupt("text", *some, stdout=subprocess.PIPE)  # nobody reads
            self.interrupt("text", *some, "fifo")  # nobody writes
            writer = os.open(self.folder / "fifo", os.O_RDWR)
            self.interrupt("text", *some, "fifo")  # somebody writes nothing
            os.close(writer)
            self.interrupt("text", *some, "-", stdin=subprocess.PIPE)
            self.interrupt("text", *some, "-o", "fifo")

    @unittest.skipIf(IS_SANITIZED, "the sanitizers take memory of their own")
    def test_memory_stays_within_its_limit(self):
        """With the program as it is installed, which .ci/run has at hand."""
        limit = 24 * 1024 * 1024
        document = self.folder / "document.mif"

        def check(name):
            for command in ("text", "html", "info"):
                with open("/dev/null", "r+b") as nothing:
                    program = subprocess.Popen([MIFREAD, command, document, "--max-memory", str(limit)],
                                               stdin=nothing, stdout=nothing, stderr=nothing)
                    _, status, usage = os.wait4(program.pid, 0)
                program.returncode = os.waitstatus_to_exitcode(status)
                self.assertIn(program.returncode, (0, 1, 5), name)
                self.assertLess(usage.ru_maxrss * 1024, 1.5 * limit + 16 * 1024 * 1024, (name, command))

        for path in (SOURCE / "tests/documents").glob("*.mif"):
            document.write_bytes(path.read_bytes())
            check(path.name)
        for name, (generate, count) in scaling.FAMILIES.items():
            # In a process of its own: a new one counts the memory of the one that starts it.
            writer = os.fork()
            if writer == 0:
                while name in scaling.GROWING and len(generate(count)) < limit / 8:
                    count *= 2
                scaling.write(document, scaling.HEADER + generate(count))
                os._exit(0)
            os.waitpid(writer, 0)
            check(name)

    def test_losses_are_counted(self):
        frames = b"".join(embedded(i, [b"41\r"] * 4000) for i in range(30))
        anchors = b"".join(b"<AFrame %d>" % i for i in range(30))
        self.document("losses.mif", b"<AFrames " + frames + b">", anchors)
        for command in (["html"], ["objects", "-d", "objects"], ["json", "--objects"], ["info"]):
            _, err = self.mifread(*command, "losses.mif", "-q", "--report", "report.json", code=1)
            self.assertEqual(err.count(b"\n"), 21, command)
            self.assertIn(b"objects that cannot be read: 30, of which the first 20 are told", err)
            self.assertLess((self.folder / "report.json").stat().st_size, 10000)

    def test_input_ends_at_its_limit(self):
        document = self.document("a.mif", b"", b"<String `a'>").read_bytes()
        for limit, code in ((len(document) - 1, 5), (len(document), 0)):
            self.mifread("text", "a.mif", "--max-input", str(limit), code=code)
            self.mifread("text", "-", "--max-input", str(limit), code=code, stdin=None, input=document)
        with open("/dev/zero", "rb") as endless:
            _, err = self.mifread("text", "-", "--max-input", "100K", code=5, stdin=endless,
                                  preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20)))
        self.assertEqual(err, b"mifread: standard input: the document is too large, it has more than 102400 bytes\n")
        os.truncate(self.folder / "a.mif", 1 << 31)
        self.mifread("text", "a.mif", code=5)

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
