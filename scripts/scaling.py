#!/usr/bin/env python3
"""How the work of a conversion grows with the document.

usage: scripts/scaling.py MIFREAD [FAMILY...]

Documents of each family are converted in four sizes, each twice the one before. The instructions executed are counted
(by valgrind, so that it does not matter what else the machine does), less those for an empty document, and the exponent
of their growth with the document's bytes is fitted: 1 is linear. The greatest number of instructions a byte is printed
too. Ends with 1 when an exponent is above 1.1.

The anchors of a table are the exception: each costs a reading of the table, whatever the document's size. Their work is
measured against their number, not against bytes.
"""
import math
import os
import re
import subprocess
import sys
import tempfile

HEADER = "<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9> > >\n"
FLOW = "<TextFlow <TextRectID 9>\n"
DATA = "<ImportObject\n=A\n&%v\n&data\n=EndInset\n>"
SIZES = 4
LIMIT = 1.1


def each(text, count):
    """The text once for each number below count, which stands for @."""
    return "".join(text.replace("@", str(i)) for i in range(count))


def text(n):
    return FLOW + each("<Para <ParaLine <String `The quick brown fox jumps over the lazy dog.'>>>\n", n)


def tags(n):
    return ("<PgfCatalog\n" + each(" <Pgf <PgfTag `Tag@'> <PgfLIndent 9 pt>>\n", n) + ">" + FLOW
            + each("<Para <PgfTag `Tag@'> <ParaLine <String `text'>>>\n", n))


def prefixes(n):
    """Each tag is the beginning of the next ones, as far as a statement holds it."""
    names = ["a" * (i % 2000 + 1) for i in range(n)]
    return ("<PgfCatalog\n" + "".join(f" <Pgf <PgfTag `{name}'> <FSize 9>>\n" for name in names) + ">" + FLOW
            + "".join(f"<PgfTag `{name}'>\n" for name in names))


def fonts(n):
    return ("<FontCatalog\n" + each(" <Font <FTag `Tag@'> <FBold Yes>>\n", n) + ">" + FLOW
            + each("<Para <ParaLine <Font <FTag `Tag@'>> <String `text'>>>\n", n))


def selections(n):
    """One format with as many statements as there are paragraphs that select it."""
    return ("<PgfCatalog <Pgf <PgfTag `A'>\n" + "<FSubScript Yes><FSize 9>\n" * (n // 2) + ">>" + FLOW
            + "<PgfTag `A'>\n" * n)


def tab_stops(n):
    """A list of 2000 stops, compared with the one before at each text."""
    return FLOW + "<PgfNumTabs 2000>" + "<TSX 1>" * 2000 + each("<FSize @><String `a'>\n", n)


def variables(n):
    return ("<VariableFormats\n" + each(" <VariableFormat <VariableName `Name@'> <VariableDef `value @'>>\n", n) + ">"
            + FLOW + each("<Variable <VariableName `Name@'>>\n", n))


def rectangles(n):
    return (each("<Page <PageType BodyPage> <TextRect <ID 1@>>>\n", n) + "<TextFlow\n"
            + each("<Para <ParaLine <TextRectID 1@> <String `text'>>>\n", n))


def tables(n):
    row = "<Tbl <TblID @> <TblNumColumns 1> <TblColumnWidth 1.0\"> <Row <Cell <Para <String `@'>>>>>\n"
    return "<Tbls\n" + each(row, n) + ">" + FLOW + each("<ATbl @>\n", n)


def anchors(n):
    """One table of four pages, anchored again and again."""
    row = "<Row <Cell <CellContent <Para <String `cell'>>>>>\n"
    return "<Tbls <Tbl <TblID 1>\n" + row * 330 + ">>" + FLOW + "<ATbl 1>\n" * n


def columns(n):
    """The columns of a table, and its rows, are as many as may be."""
    return ("<Tbls <Tbl <TblID 1> <TblNumColumns 4096>\n" + "<TblColumnWidth 1>\n" * n + ">>" + FLOW + "<ATbl 1>\n")


def frames(n):
    return "<AFrames\n" + each(f"<Frame <ID @>\n{DATA}\n>\n", n) + ">" + FLOW + each("<AFrame @>\n", n)


def object_data(n):
    return "<AFrames <Frame <ID 1> <ImportObject\n=A\n&\\x\n" + "&00112233445566778899aabbccddeeff\n" * n + "=EndInset\n"


def nesting(n):
    return FLOW + "<A\n" * n + "<String `a'>" + ">" * n


def one_line(n):
    return FLOW + "<String `" + "word " * n + "'>"


def long_statements(n):
    return FLOW + ("<String `" + "word " * 800 + "'>") * (n // 100)


def escapes(n):
    return FLOW + ("<String `" + "\\t\\x8e \\q" * 300 + "'>") * (n // 100)


def comments(n):
    return FLOW + "# a comment\n" * n


def one_comment(n):
    return FLOW + "#" + "comment " * n


def brackets(n):
    return FLOW + "<" * (20 * n)


def spaced_brackets(n):
    return FLOW + "< " * (4 * n)


def quotes(n):
    return FLOW + "<`" * (4 * n)


def macros(n):
    return FLOW + "define" * (2 * n)


def macro_calls(n):
    return FLOW + "define(x)\n" * n


# Name: generator, things in the smallest document.
FAMILIES = {
    "text": (text, 1000), "tags": (tags, 500), "prefixes": (prefixes, 100), "fonts": (fonts, 500),
    "selections": (selections, 4500), "tab-stops": (tab_stops, 1000), "variables": (variables, 1000),
    "rectangles": (rectangles, 500), "tables": (tables, 300), "anchors": (anchors, 10), "columns": (columns, 4500),
    "frames": (frames, 500), "object-data": (object_data, 2000), "nesting": (nesting, 4000),
    "one-line": (one_line, 10000), "long-statements": (long_statements, 1500), "escapes": (escapes, 1500),
    "comments": (comments, 5000), "one-comment": (one_comment, 8000), "brackets": (brackets, 4000),
    "spaced-brackets": (spaced_brackets, 4000), "quotes": (quotes, 4000), "macros": (macros, 4000),
    "macro-calls": (macro_calls, 4000),
}


def instructions(program, path):
    command = ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
               program, "tokens", path]
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
    count = re.search(r"I\s+refs:\s+([0-9,]+)", done.stderr)
    if count is None:
        sys.exit(f"valgrind counted nothing:\n{done.stderr}")
    return int(count.group(1).replace(",", ""))


def slope(points):
    """Of the line through the points that has the least squares."""
    xs, ys = zip(*((math.log(x), math.log(y)) for x, y in points))
    x_mean, y_mean = sum(xs) / len(xs), sum(ys) / len(ys)
    return (sum((x - x_mean) * (y - y_mean) for x, y in zip(xs, ys)) / sum((x - x_mean) ** 2 for x in xs))


def measure(program, name, folder):
    generate, count = FAMILIES[name]
    path = os.path.join(folder, "document.mif")

    def counted(document):
        with open(path, "w", encoding="ascii") as file:
            file.write(document)
        return instructions(program, path)

    nothing = counted(HEADER)
    points = []
    for doubling in range(SIZES):
        document = HEADER + generate(count << doubling)
        size = count << doubling if name == "anchors" else len(document)
        points.append((size, counted(document) - nothing))
    return points


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    program, *names = sys.argv[1:]
    failed = False
    print("family             bytes from        to  instructions a byte  exponent")
    with tempfile.TemporaryDirectory() as folder:
        for name in names or FAMILIES:
            points = measure(program, name, folder)
            exponent = slope(points)
            failed |= exponent > LIMIT
            dearest = max(count / size for size, count in points)
            print(f"{name:16} {points[0][0]:12} {points[-1][0]:9}  {dearest:19.1f}  {exponent:8.3f}"
                  + ("  above the limit" if exponent > LIMIT else ""), flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
