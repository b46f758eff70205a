#!/usr/bin/env python3
"""json_test.py MIFREAD DOCUMENTS EXAMPLES TOKEN-STREAM.MD: what `mifread json` and `mifread info` write."""
import base64
import collections
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

MIFREAD, DOCUMENTS, EXAMPLES, MANUAL = (Path(argument).absolute() for argument in sys.argv[1:5])
HEADER = b"<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9>>>\n"
VOLATILE = {"peakMemory", "seconds", "bytesPerSecond"}


def mifread(*arguments, code=0):
    result = subprocess.run([MIFREAD, *arguments], capture_output=True, check=False)
    if result.returncode != code:
        raise AssertionError(f"{arguments}: exit code {result.returncode}: {result.stderr}")
    return result.stdout


def objects_of(*arguments, code=0):
    """The objects of all lines, which must be lines of valid UTF-8."""
    lines = mifread(*arguments, code=code).decode("utf-8").split("\n")
    assert lines.pop() == "", "the last line has no end"
    return [json.loads(line) for line in lines]


def quoted(text):
    """As the listing quotes the text, but for the undefined characters."""
    escape = {'"': '\\"', "\\": "\\\\", "\ufffd": "\\undefined"}
    return '"' + "".join(escape.get(c) or (c if " " <= c <= "~" else f"\\x{c.encode('cp1252')[0]:02x}")
                         for c in text) + '"'


def listing_of(objects):
    """The lines of `mifread tokens`, made from objects."""
    for o in objects:
        kind = o.pop("type")
        if kind in ("text", "line-spacing"):
            (value,) = o.values()
            yield f"{kind} {quoted(value) if kind == 'text' else value}"
        elif kind == "tab-stops":
            stops = " ".join(f"{stop['kind']}={stop['position']}" for stop in o["stops"])
            yield f"tab-stops {stops or 'none'}"
        elif kind == "attribute":
            yield f"attribute {o['mode']} {'on' if o['on'] else 'off'}"
        elif kind == "table-row":
            yield f"table-row columns={len(o['widths'])} widths={','.join(map(str, o['widths']))} offset={o['offset']}"
        elif kind == "charset":
            yield f"charset {o['number']}"
        elif kind == "font-face":
            yield f"# font {o['number']} {quoted(o['name'])} class={o['class']}"
        elif kind not in ("document", "object", "end"):
            fields = [f" {name}={quoted(value) if name == 'id' else value}" for name, value in o.items()]
            yield kind + "".join(fields)


def without_mode_ends(lines):
    """All but the modes that go off between two paragraphs: those that the plain stream leaves on do not stay on."""
    between = False
    for line in lines:
        between = line == "para-end" or (between and re.fullmatch("attribute .* off", line) is not None)
        if not between or line == "para-end":
            yield line


def tokens_of(path):
    text = mifread("tokens", path).decode("ascii")
    return re.sub(r'\\([\\"]|x81|x8d|x8f|x90|x9d|x..)',
                  lambda m: "\\undefined" if m[1] in ("x81", "x8d", "x8f", "x90", "x9d") else m[0], text).splitlines()


def frame(number, lines):
    return (b"<Frame <ID %d> <ShapeRect  0.0\" 0.0\" 1.0\" 0.5\"> <ImportObject\n=A\n%s=EndInset\n>>\n"
            % (number, lines))


def info_of(path, code=0):
    (info,) = objects_of("info", "--json", path, code=code)
    return info


class Test(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        os.chdir(folder.name)

    def write(self, name, content):
        with open(name, "wb") as file:
            file.write(HEADER + content)
        return name

    def allDocuments(self):
        # Bytes that JSON escapes, that Windows-1252 does not define, and that stand for three bytes in UTF-8.
        allBytes = bytes(c for c in range(1, 256) if c not in b"\n\r'>\\")
        self.write("bytes.mif", b"<TextRectID 9><String `%s \\\\\\q\\>'><String `'><FFamily `\"\\x8e \\\\'><String `x'>"
                   % allBytes)
        return sorted([*DOCUMENTS.glob("*.mif"), *EXAMPLES.glob("*.mif"), Path("bytes.mif")])

    def testTokensAreThoseOfTheListing(self):
        for path in self.allDocuments():
            code = 1 if path.name == "bytes.mif" else 0
            for options in ([], ["--objects"]):
                objects = objects_of("json", "--plain", *options, path, code=code)
                self.assertEqual((objects[0]["type"], objects[0]["name"]), ("document", str(path)))
                self.assertEqual(objects[0]["size"], path.stat().st_size)
                self.assertEqual(objects[-1]["status"], "losses" if code else "converted")
                self.assertEqual(list(without_mode_ends(listing_of(objects))), list(without_mode_ends(tokens_of(path))),
                                 path)
        text = "".join(o.get("text", "") for o in objects_of("json", "--plain", "bytes.mif", code=1))
        for part in ('\x01\x02', '!"#', "\x7f€\ufffd‚", "ÿ \\"):
            self.assertIn(part, text)

    def testTheExtendedStreamIsThatOfTheListing(self):
        names = {"document-field": "document"}
        for path in [*DOCUMENTS.glob("*.mif"), *EXAMPLES.glob("*.mif")]:
            objects = objects_of("json", path, code=1 if path.stem in ("hostile", "text") else 0)[1:-1]
            kinds = [names.get(o["type"], o["type"]) for o in objects if o["type"] != "font-face"]
            listing = mifread("tokens", "--extended", path, code=1 if path.stem in ("hostile", "text") else 0).decode("ascii")
            self.assertEqual(kinds, [line.split()[0] for line in listing.splitlines() if line[0] != "#"])

    def testObjectsAreWholeAndOnce(self):
        found = [o for o in objects_of("json", "--plain", "--objects", DOCUMENTS / "objects.mif") if o["type"] == "object"]
        data = {o["id"]: base64.b64decode(o["data"], validate=True) for o in found}
        files = {path.stem: path.read_bytes() for path in (DOCUMENTS / "objects").iterdir()}
        self.assertEqual(len(found), len(files))
        self.assertEqual(data, files)
        for o in found:
            self.assertEqual((o["size"], o["complete"]), (len(files[o["id"]]), True))
        self.assertEqual({o["id"]: o["mimeType"] for o in found}["6"], "image/jpeg")

    def testADamagedObjectEndsNothing(self):
        whole = bytes(range(200)) * 2000  # several blocks
        lines = b"".join(b"&%s\n" % whole[i:i + 100].hex().encode() for i in range(0, len(whole), 100))
        late = b"&\\x\n" + lines + (b"&41" + b"\n" * 2000) * 1000
        self.write("damaged.mif", b"<AFrames " + frame(5, late) + frame(6, b"&xyz\n") +
                   b"><TextRectID 9><AFrame 5><AFrame 6>")
        first, second = (o for o in objects_of("json", "--objects", "damaged.mif", code=1) if o["type"] == "object")
        data = base64.b64decode(first["data"], validate=True)
        self.assertTrue(whole.startswith(data) and len(data) > 65536 and not first["complete"], len(data))
        self.assertEqual(base64.b64decode(second["data"]), b"xyz")
        info = info_of("damaged.mif", code=1)
        self.assertEqual([(o["id"], o["size"], o["complete"]) for o in info["objects"]],
                         [("5", len(data), False), ("6", 3, True)])
        self.assertRegex(info["messages"][0], "object 5 ")
        self.assertIn(b"not complete", mifread("info", "damaged.mif", code=1))
        # A failure in the middle of an object: the line and the document are still ended.
        *_, last, end = objects_of("json", "--objects", "--max-output", "50000", "damaged.mif", code=5)
        self.assertEqual((last["complete"], end["status"]), (False, "failed"))
        self.assertRegex(end["messages"][-1], "output limit")

    def testSeveralDocumentsAndOddNames(self):
        name = b"\xff\"\n\xc3\xa9.mif"
        self.write(name, b"<TextRectID 9><String `a'>")
        self.write("cut.mif", b"<TextRectID 9><String `b'><String `c")
        Path("other").write_bytes(b"no document")
        objects = objects_of("json", name, "cut.mif", "other", code=1)
        self.assertEqual([(o["type"], o.get("name"), o.get("status")) for o in objects if o["type"] in ("document", "end")],
                         [("document", '\ufffd"\né.mif', None), ("end", None, "converted"),
                          ("document", "cut.mif", None), ("end", None, "losses")])
        self.assertRegex(objects[-1]["messages"][0], "ends inside")
        infos = objects_of("info", "--json", name, "cut.mif", "other", code=1)
        self.assertEqual([(o["name"], o["status"]) for o in infos],
                         [('\ufffd"\né.mif', "converted"), ("cut.mif", "losses")])

    def testInfoCountsTheListing(self):
        for path in self.allDocuments():
            code = 1 if path.name == "bytes.mif" else 0
            (info,) = objects_of("info", "--json", "--plain", path, code=code)
            self.assertEqual((info["name"], info["size"]), (str(path), path.stat().st_size))
            tokens = objects_of("json", "--plain", path, code=code)
            kinds = collections.Counter(o["type"] for o in tokens if o["type"] not in ("document", "font-face", "end"))
            self.assertEqual({kind: count for kind, count in info["tokens"].items() if count}, kinds)
            self.assertEqual(info["characters"], sum(len(o["text"]) for o in tokens if o["type"] == "text"))
            sizes = collections.defaultdict(set)
            for o in tokens:
                if o["type"] == "font":
                    sizes[o["number"]].add(o["size"])
            fonts = [{"name": o["name"], "class": o["class"], "sizes": sorted(sizes[o["number"]])}
                     for o in tokens if o["type"] == "font-face"]
            self.assertEqual(sorted(info["fonts"], key=str), sorted(fonts, key=str))
            self.assertEqual(sum(table["count"] for table in info["tables"]), kinds["table-end"])
            listed = mifread("objects", "--plain", path, "-d", path.stem).decode().splitlines()[1:] if code == 0 else []
            self.assertEqual([[o["id"], o["mimeType"], str(o["size"]), str(o["width"]), str(o["height"])]
                              for o in info["objects"]], [line.split("\t")[:5] for line in listed])
            self.assertTrue(0 < info["peakMemory"] < 1e6 and info["seconds"] > 0)
        self.assertEqual(info_of(EXAMPLES / "handbook.mif")["tables"],
                         [{"columns": 3, "count": 3}, {"columns": 4, "count": 1}])
        self.write("long.mif", b"<TextRectID 9><String `a'>\n<String `%s'>\n<FFamily `\x1b[31m'><String `b'>" % (b"x" * 5000))
        info = info_of("long.mif", code=1)
        self.assertEqual([(loss["kind"], loss["count"]) for loss in info["losses"]], [("statement", 1)])
        text = mifread("info", "long.mif", code=1)
        self.assertTrue(text.startswith(b"long.mif\n") and b"\x1b" not in text and b"1 of kind statement" in text, text)

    def testTheExamplesOfTheManual(self):
        manual = MANUAL.read_text(encoding="utf-8")
        (document,) = re.findall(r"^```mif\n(.*?)^```$", manual, re.M | re.S)
        lines, info = re.findall(r"^```json\n(.*?)^```$", manual, re.M | re.S)
        Path("note.mif").write_text(document, encoding="ascii")
        self.assertEqual(mifread("json", "--objects", "note.mif").decode(), lines)
        expected = json.loads(info)
        found = info_of("note.mif")
        self.assertEqual(list(found), list(expected))
        self.assertEqual({key: value for key, value in found.items() if key not in VOLATILE},
                         {key: value for key, value in expected.items() if key not in VOLATILE})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
