#!/usr/bin/env python3
"""security_test.py MIFREAD SOURCE-FOLDER: what SECURITY.md promises of the program, section by section."""
import base64
import ctypes
import json
import json
import os
import pty
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


HELLO = HEADER + b"<TextRectID 9><Para <String `hello'>>\n"
OBJECTS = (SOURCE / "tests/documents/objects.mif").read_bytes()
NOBODY = 65534


def drop_capability(number):
    """What root may then no longer do in the program that is run next."""
    drop_from_bounding_set = 24
    if os.geteuid() == 0:
        ctypes.CDLL(None).prctl(drop_from_bounding_set, number)


def obey_permissions():
    """For preexec_fn: not even root may write what its permissions forbid."""
    drop_capability(1)


def keep_groups():
    """For preexec_fn: not even root may give a file to a group that it is not in."""
    drop_capability(0)


class Files(InFolder):
    """What is written, and where."""

    def setUp(self):
        super().setUp()
        self.write("a.mif", HELLO)

    def test_a_document_names_no_file(self):
        secret = self.write("secret.png", b"SECRET")
        names = [b"secret.png", str(secret).encode(), b"<r\\><c\\>secret.png"]
        frames = [b"<Frame <ID %d> <ShapeRect 0 0 1 1> <ImportObject <ImportObFileDI `%s'>>>" % named
                  for named in enumerate(names)]
        frames += [b"<Frame <ID %s> <ShapeRect 0 0 1 1> <ImportObject\n=PNG\n&x\n=EndInset\n>>" % number
                   for number in (b"../5", b"7")]
        anchors = b"".join(b"<AFrame %d>" % number for number in range(8))
        body = b"include (secret.png)\n<AFrames %s>\n<TextRectID 9><Para %s>\n" % (b"".join(frames), anchors)
        self.write("in/a.mif", HEADER + body)
        for command in ["text"], ["html"], ["json", "--objects"], ["info"], ["tokens"], ["objects", "-d", "out/x"]:
            output, _ = self.mifread(*command, "in/a.mif")
            self.assertNotRegex(output, b"SECRET|" + base64.b64encode(b"SECRET"))
        written = {str(path.relative_to(self.folder)) for path in self.folder.rglob("*") if path.is_file()}
        self.assertEqual(written, {"a.mif", "in/a.mif", "out/x/7.bin", "secret.png"})

    def test_pictures_are_taken_from_beside_the_document(self):
        picture = base64.b64decode("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7")
        for name in "out.gif", "in/a.gif", "in/below/b.gif":
            self.write(name, picture)
        self.write("in/secret.txt", b"SECRET")
        (self.folder / "in/link.gif").symlink_to("../out.gif")
        os.mkfifo(self.folder / "in/fifo")
        names = ["a.gif", "below/../below/b.gif", "../out.gif", "link.gif", str(self.folder / "out.gif"), "secret.txt", "fifo",
                 "missing.gif", "below", "../in/a.gif"]
        frames = "".join(f"<Frame <ID {n}> <ImportObject <ImportObFile `{name}'>>>" for n, name in enumerate(names))
        anchors = "".join(f"<Para <AFrame {n}>>" for n in range(len(names)))
        self.write("in/a.mif", HEADER + f"<AFrames {frames}><TextFlow <TextRectID 9> {anchors}>".encode())
        url = "data:image/gif;base64," + base64.b64encode(picture).decode()

        def taken(*options):
            page = self.mifread("html", "in/a.mif", *options)[0].decode()
            self.assertNotIn(base64.b64encode(b"SECRET").decode(), page)
            shown = re.findall(r'<img[^>]* src="([^"]*)"|<span class="object">', page)
            self.assertEqual(len(shown), len(names))
            return [names[n] for n, source in enumerate(shown) if source == url]

        self.assertEqual(taken(), [])
        self.assertEqual(taken("--embed-pictures"), ["a.gif", "below/../below/b.gif", "../in/a.gif"])
        self.assertEqual(len(taken("--embed-pictures=all")), 6)
        self.mifread("html", "in/a.mif", "--embed-pictures=x", code=2)

    def test_no_half_result_has_its_name(self):
        self.write("kept.txt", b"kept")
        for name in "kept.txt", "new.txt":
            with subprocess.Popen([MIFREAD, "text", "-", "-o", name], cwd=self.folder, stdin=subprocess.PIPE) as run:
                run.stdin.write(HELLO)
                run.stdin.flush()
                while not list(self.folder.glob(f".mifread-{run.pid}-*")):
                    time.sleep(0.01)
                run.kill()
        self.assertEqual((self.folder / "kept.txt").read_bytes(), b"kept")
        self.assertFalse((self.folder / "new.txt").exists())

    def test_no_file_is_written_twice(self):
        for name in "d1/a.mif", "d2/a.mif", "d2/a.MIF", "d2/b.mif":
            self.write(name, OBJECTS)
        for jobs in "1", "2":
            _, errors = self.mifread("objects", "d1/a.mif", "d2/a.mif", "-d", "out", "-j", jobs, code=2)
            self.assertIn(b"written twice: for d1/a.mif and d2/a.mif", errors)
            _, errors = self.mifread("objects", "-r", "d2", "-d", f"out{jobs}", "-j", jobs, code=1)
            self.assertEqual(errors.count(b"written twice: for d2/a.MIF and d2/a.mif"), 4)
            self.assertEqual([path.name for path in (self.folder / f"out{jobs}").iterdir()], ["b"])
        self.assertFalse((self.folder / "out").exists())
        # The list of objects, the report and standard output are files like others.
        objects = ["objects", "d1/a.mif", "-d", "out"]
        for more in ["-o", "out/1.png"], ["--report", "out/1.png"]:
            _, errors = self.mifread(*objects, *more, code=3)
            self.assertIn(b"out/1.png would be written twice", errors)
        self.assertEqual(json.loads((self.folder / "out/1.png").read_bytes())["exitCode"], 3)
        with open(self.folder / "out/1.png", "wb") as output:
            self.mifread(*objects, code=3, capture_output=False, stdout=output, stderr=subprocess.DEVNULL)
        self.mifread(*objects, "-o", "list", "--report", "d1/../list", code=2)
        # Folders of documents are no files of others.
        self.write("d3/a.mif", OBJECTS)
        self.write("d3/a/1.png.mif", OBJECTS)
        _, errors = self.mifread("objects", "-r", "d3", "-d", "out3", code=1)
        self.assertIn(b"d3/a.mif: out3/a/1.png would be both a file and a folder", errors)
        # So are those that links lead to that lead nowhere yet.
        (self.folder / "out4").mkdir()
        (self.folder / "out4/a").symlink_to("b")
        (self.folder / "soon").symlink_to("soonest")
        (self.folder / "soonest").symlink_to("out5/6.jpg")
        (self.folder / "out5").mkdir()
        _, errors = self.mifread("objects", "-r", "d2", "-d", "out4", code=3)
        self.assertIn(b"out4/b would be written twice: for d2/a.MIF and d2/b.mif", errors)
        _, errors = self.mifread("objects", "d1/a.mif", "-d", "out5", "-o", "soon", code=3)
        self.assertIn(b"out5/6.jpg would be written twice", errors)

    def test_an_open_file_is_added_to(self):
        for path in "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1":
            script = f"echo before; '{MIFREAD}' text a.mif -o {path}; echo after"
            subprocess.run(["sh", "-c", f"{{ {script}; }} >result"], cwd=self.folder, check=True)
            self.assertEqual((self.folder / "result").read_text(), "before\nhello\nafter\n", path)
        self.mifread("text", "a.mif", "-o", "/dev/fd/99", code=3)

    def test_no_input_is_written(self):
        self.write("1.png", OBJECTS)
        os.link(self.folder / "1.png", self.folder / "linked.mif")
        (self.folder / "link.mif").symlink_to("1.png")
        for document in "1.png", "linked.mif", "link.mif":
            for output in ["-d", "."], ["-d", "out", "-o", "1.png"], ["-d", "out", "--report", "1.png"]:
                code = 3 if output == ["-d", "."] else 2
                _, errors = self.mifread("objects", document, *output, code=code)
                self.assertIn(b"1.png would be both read and written", errors)
        with open(self.folder / "1.png", "rb") as document:
            self.mifread("objects", "-", "-d", ".", code=3, stdin=document)
        with open(self.folder / "1.png", "ab") as output:
            self.mifread("text", "1.png", code=2, capture_output=False, stdout=output, stderr=subprocess.DEVNULL)
        self.write("tree/a.mif", HELLO)
        os.link(self.folder / "tree/a.mif", self.folder / "tree/b.txt")
        self.write("tree/b.mif", HELLO)
        _, errors = self.mifread("text", "-r", "tree", "-d", "tree", code=1)
        self.assertIn(b"tree/b.mif: tree/b.txt would be both read and written", errors)
        self.assertEqual((self.folder / "tree/a.txt").read_bytes(), b"hello\n")
        self.assertEqual((self.folder / "tree/b.txt").read_bytes(), HELLO)
        self.assertEqual((self.folder / "1.png").read_bytes(), OBJECTS)

    def test_no_result_leaves_the_folder(self):
        names = "...mif", "..mif", ".mif", "-.mif", "....mif", ".. .mif", "[.mif", "a\\..\\b.mif", "\n.mif"
        for name in names:
            self.write(f"in/{name}", OBJECTS)
        for command in "objects", "text":
            self.mifread(command, "-r", "in", "-d", f"r/{command}/out")
            self.assertEqual(len(list((self.folder / "r" / command / "out").iterdir())), len(names) - 1)  # not .mif
            self.mifread(command, *(f"in/{name}" for name in names), "-d", f"n/{command}/out")
            self.assertEqual(len(list((self.folder / "n" / command / "out").iterdir())), len(names))
        for folder in "r", "n":
            above = [str(path.relative_to(self.folder)) for path in (self.folder / folder).glob("*/*")]
            self.assertEqual(sorted(above), [f"{folder}/objects/out", f"{folder}/text/out"])
        self.assertEqual({path.name for path in self.folder.iterdir()}, {"a.mif", "in", "r", "n"})

    def test_a_replaced_file_gives_no_rights(self):
        umask = os.umask(0o027)
        self.addCleanup(os.umask, umask)
        own, foreign = self.write("own.txt", b""), self.write("foreign.txt", b"")
        own.chmod(0o6751)
        foreign.chmod(0o4777)
        if os.geteuid() == 0:
            os.chown(foreign, NOBODY, NOBODY)  # which takes the bit away
            foreign.chmod(0o4777)
        for name in "own.txt", "foreign.txt", "new.txt":
            self.mifread("text", "a.mif", "-o", name)
        results = [stat.S_IMODE((self.folder / name).stat().st_mode) for name in ("own.txt", "foreign.txt", "new.txt")]
        self.assertEqual(results, [0o751, 0o640 if os.geteuid() == 0 else 0o777, 0o640])
        self.assertEqual(foreign.stat().st_uid, os.geteuid())
        if os.geteuid() == 0:
            for group, mode, keeps in (NOBODY, 0o664, True), (NOBODY, 0o664, False), (NOBODY, 0o604, False):
                os.chown(own, 0, group)
                own.chmod(mode)
                self.mifread("text", "a.mif", "-o", "own.txt", **({} if keeps else {"preexec_fn": keep_groups}))
                result = own.stat()
                self.assertEqual((result.st_gid, stat.S_IMODE(result.st_mode)),
                                 (group, mode) if keeps else (os.getegid(), 0o604 if mode == 0o664 else 0o600))

    def test_a_read_only_file_is_left_alone(self):
        for path in self.write("kept.txt", b"kept"), self.write("out/a.txt", b"kept"):
            path.chmod(0o444)
            to = ["-d", "out"] if path.name == "a.txt" else ["-o", "kept.txt"]
            _, errors = self.mifread("text", "a.mif", *to, code=3, preexec_fn=obey_permissions)
            self.assertIn(b"Permission denied", errors)
            self.assertEqual(path.read_bytes(), b"kept")

    @unittest.skipIf(os.geteuid() != 0, "only root can play another user")
    def test_what_another_user_planted_is_not_followed(self):
        common = self.folder / "common"
        common.mkdir()
        common.chmod(0o1777)
        kept = self.write("kept.txt", b"kept")
        (common / "link.txt").symlink_to(kept)
        (common / "dangling.txt").symlink_to(self.folder / "new.txt")
        (common / "folder").symlink_to(self.folder)
        os.mkfifo(common / "pipe.txt")
        for path in common.iterdir():
            os.lchown(path, NOBODY, NOBODY)
        (self.folder / "own.txt").symlink_to("common/link.txt")
        for name in "own.txt", "common/link.txt", "common/dangling.txt", "common/pipe.txt", "common/folder/kept.txt":
            _, errors = self.mifread("text", "a.mif", "-o", name, code=3, timeout=20)
            self.assertIn(b"of another user", errors)
        for name in "link", "dangling", "pipe", "folder/b":
            self.write(f"in/{name}.mif", HELLO)
        self.mifread("text", "-r", "in", "-d", "common", code=3, timeout=20)
        self.mifread("text", "a.mif", "-d", "common/folder", code=3, timeout=20)
        self.assertEqual(kept.read_bytes(), b"kept")
        self.assertEqual({path.name for path in self.folder.iterdir()},
                         {"a.mif", "in", "kept.txt", "own.txt", "common"})

    def test_no_temporary_file_stays(self):
        self.write("long.mif", HELLO * 100000)
        full = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))}
        _, errors = self.mifread("text", "long.mif", "-o", "result.txt", code=3, **full)
        self.assertIn(b"File too large", errors)
        self.mifread("text", "long.mif", "a.mif", "a.mif", "-j", "2", "-o", "result.txt", code=3, **full)
        self.mifread("text", "long.mif", "a.mif", "-d", "out", code=1, **full)
        with subprocess.Popen([MIFREAD, "text", "-", "-o", "result.txt"], cwd=self.folder, stdin=subprocess.PIPE,
                              stderr=subprocess.DEVNULL) as run:
            while not list(self.folder.glob(".*")):
                time.sleep(0.01)
            run.terminate()
        self.assertEqual(run.returncode, -signal.SIGTERM)
        present = {str(path.relative_to(self.folder)) for path in self.folder.rglob("*")}
        self.assertEqual(present, {"a.mif", "long.mif", "out", "out/a.txt"})

    def test_no_library_comes_from_the_current_folder(self):
        for library in ("libmagic.so.1", "libtbb.so.12", "libfmt.so.9", "libmifreader.so.0"):
            self.write(library, b"planted")
        self.write("a.mif", HEADER)
        self.mifread("text", "a.mif")


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
            plain = ["--plain"] if name == "families" else []  # the extended stream announces what text is set in
            for command in ("text", "text", "html"):
                spent, err = self.seconds(command, *plain, "dear.mif", code=5)
                self.assertLess(spent, 60, name)
                self.assertRegex(err, rb"byte \d+: the work limit of 268435456 bytes is reached")
                results.append(err)
            self.assertEqual(results[0], results[1])
            self.assertEqual(results[0], results[2])
            self.mifread("text", *plain, "dear.mif", "--max-work", "1M", code=5)
        spent, _ = self.seconds("text", "dear.mif")  # the families again
        self.assertLess(spent, 20)
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

    def interrupt(self, *arguments, number=signal.SIGTERM, wait=1, **options):
        """Starts the program, sends it a signal when it is at work, and expects its end."""
        signal.signal(number, signal.SIG_DFL)  # a shell may have started this in the background, which ignores it
        options = {"stdout": subprocess.DEVNULL, "stderr": subprocess.PIPE} | options
        with subprocess.Popen([MIFREAD, *arguments], cwd=self.folder, **options) as program:
            time.sleep(wait)
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
        self.interrupt("text", "--files-from", "-", stdin=subprocess.PIPE)  # the list of documents does not end
        for number in range(2000):
            self.write(f"tree/{number}.mif", b"")
        self.interrupt("text", "-r", *["tree"] * 1000, "--dry-run", wait=0.3)  # to find them all takes long

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

    COMMANDS = "\x1b[31m\x07\x7f\x9b2J\u202e\u2066\t"
    # C0 but line ends and the tabs between the fields of a list, DEL, C1, and what sets the direction of text.
    HARMFUL = re.compile("[\x00-\x08\x0b-\x1f\x7f-\x9f\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")

    def document(self):
        """A document whose name, font, text and object are full of commands."""
        name = f"a{self.COMMANDS}\nforged: 1.mif"
        family = "".join(f"\\x{byte:02x} " for byte in b"\x1b[31m\x07\x7f\n")
        self.write(name, HEADER + f"""<AFrames <Frame <ID 5> <ImportObject
=A
&{self.COMMANDS}
=EndInset
>>>
<TextRectID 9><Para <Font <FFamily `{family}'>> <String `{family} x'> <AFrame 5>> <String `cut""".encode())
        return name

    def test_names_and_messages_are_escaped(self):
        name = self.document()
        folder = f"to{self.COMMANDS}\n"
        for arguments in (["info", name], ["info", "--json", name], ["json", name], ["objects", name, "-d", folder],
                          ["objects", "--json", name, "-d", folder], ["tokens", name],
                          ["text", name, "-d", folder], ["text", "--dry-run", name, "-d", folder],
                          ["text", name + "missing"], [name], ["text", "--" + self.COMMANDS]):
            with self.subTest(arguments=arguments):
                result = subprocess.run([MIFREAD, *arguments], cwd=self.folder, capture_output=True, check=False)
                shown = (result.stdout + result.stderr).decode("utf-8")
                self.assertIsNone(self.HARMFUL.search(shown), shown)
                self.assertNotIn("\nforged", shown)

    def test_rows_of_objects_stay_rows(self):
        name = self.document()
        folder = f"to{self.COMMANDS}\n"
        rows = self.mifread("objects", name, "-d", folder, code=1)[0].decode().split("\n")
        self.assertEqual([row.count("\t") for row in rows], [5, 5, 0])
        raw = self.mifread("objects", "-0", name, "-d", folder, code=1)[0].decode()
        self.assertEqual(raw.split("\t", 5)[5], f"{folder}/5.bin\0")
        listed = json.loads(self.mifread("objects", "--json", name, "-d", folder, code=1)[0])
        self.assertEqual((listed["document"], listed["file"]), (name, f"{folder}/5.bin"))

    def test_text_does_not_command_a_terminal(self):
        name = self.document()
        for to in [], ["-o", "/dev/stdout"]:
            master, terminal = pty.openpty()
            with open(master, "rb", buffering=0) as screen:
                with open(terminal, "wb", buffering=0) as output:
                    subprocess.run([MIFREAD, "text", "--plain", name, *to], cwd=self.folder, stdout=output,
                                   stderr=subprocess.DEVNULL, check=False)
                shown = screen.read(4096).decode("utf-8").replace("\r\n", "\n")
            self.assertIsNone(self.HARMFUL.search(shown), shown)
            self.assertIn("\\x1b[31m\\x07\\x7f", shown)
        self.assertIn(b"\x1b[31m", self.mifread("text", "--plain", name)[0], "a pipe gets what the document holds")

    def test_a_page_runs_no_script_and_loads_pictures_alone(self):
        for path in sorted((SOURCE / "tests" / "documents").glob("*.mif")):
            page = subprocess.run([MIFREAD, "html", path], capture_output=True, check=False).stdout.decode("utf-8")
            self.assertIn("http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                          "'unsafe-inline'; img-src data: 'self' file:; base-uri 'none'; form-action 'none'\"", page)
            tags = re.findall(r"<(\w+)([^>]*)>", page)
            self.assertLessEqual({name for name, _ in tags},
                                 set("html head meta title style body p span br div table caption col tr td th img a ol li"
                                     .split()) | {"colgroup", "tbody", "thead", "tfoot"}, path)
            for _, attributes in tags:
                self.assertIsNone(re.search(r"\son\w+=|src=\"(?!data:|[\w.%-][\w./%-]*\")|href=\"(?!data:|#)",
                                            attributes), path)
        hostile = ["javascript:alert(1)", "data:text/html,x", "http://e.org/\"onclick=x", "/etc/passwd", "c:/x.png"]
        self.write("links.mif", HEADER + b"<AFrames " + b"".join(
            b"<Frame <ID %d> <ImportObject <ImportObFile `%s'>>>" % (number, path.encode())
            for number, path in enumerate(hostile)) + b"><TextRectID 9>" + b"".join(
                b"<Para <ParaLine <Marker <MType 8> <MText `message URL %s'>> <String `link'> <AFrame %d>>>"
                % (path.encode(), number) for number, path in enumerate(hostile)))
        page = self.mifread("html", "links.mif")[0].decode("utf-8")
        self.assertEqual(re.findall(r'(?:src|href)="([^"]*)"', page), ["http://e.org/%22onclick=x"])


class Promises(unittest.TestCase):
    def test_each_promise_has_its_test(self):
        """SECURITY.md names the tests that exist here, and all of them."""
        named = set(re.findall(r"`(\w+\.test_\w+)`", (SOURCE / "SECURITY.md").read_text(encoding="utf-8")))
        loader = unittest.defaultTestLoader
        present = {f"{group.__name__}.{name}" for group in (Files, Costs, Words)
                   for name in loader.getTestCaseNames(group)}
        self.assertEqual(named, present)

    def test_the_tests_of_the_libraries_exist(self):
        named = set(re.findall(r"`([A-Z]\w+\.[A-Z]\w+)`", (SOURCE / "SECURITY.md").read_text(encoding="utf-8")))
        sources = "".join(path.read_text(encoding="utf-8") for path in (SOURCE / "tests").glob("*_test.cpp"))
        present = {".".join(names) for names in re.findall(r"^TEST(?:_P)?\((\w+), (\w+)\)", sources, re.MULTILINE)}
        self.assertGreater(len(named), 5)
        self.assertLessEqual(named, present)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
