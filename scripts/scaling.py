#!/usr/bin/env python3
"""How the work of a conversion grows with the document.

usage: scripts/scaling.py MIFREAD [FAMILY...]

Documents of each family are converted to text and to pages in four sizes, each twice the one before. The instructions
executed are counted (by valgrind, so that it does not matter what else the machine does), less those for an empty
document, and the exponent of their growth with the document's bytes is fitted: 1 is linear. The greatest number of
instructions a byte is printed too. Ends with 1 when an exponent is above 1.1.

Some families have one thing done again and again: a table at each of its anchors, say. Their work is measured against
the number of times, less that for none, and what a byte costs that asks for another time.

Where a byte costs more than 10,000 instructions, a document of the family that is large enough has to end at a limit of
the program, with exit code 5, or the script ends with 1.
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
DEAR = 10000  # instructions a byte
OFTEN = 30000  # more times than any limit allows what is dear
COMMANDS = ("text", "html")


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


def empty_anchors(n):
    """A table that gives nothing."""
    return "<Tbls <Tbl <TblID 1>>>" + FLOW + "<ATbl 1>\n" * n


def comment_anchors(n):
    """A table of ten pages of comments."""
    return "<Tbls <Tbl <TblID 1>\n" + "# a comment\n" * 3333 + ">>" + FLOW + "<ATbl 1>\n" * n


def object_anchors(n):
    """An object of empty lines, whose type takes long to tell."""
    return ("<AFrames <Frame <ID 1> <ImportObject\n=A\n&%v\n&\\x\n" + ("&" + "0a" * 50 + "\n") * 20
            + "=EndInset\n>>>" + FLOW + "<AFrame 1>\n" * n)


def unreadable_anchors(n):
    """An object in pieces too short for the reader."""
    return ("<AFrames <Frame <ID 1> <ImportObject\n=A\n&%v\n&\\x\n" + "&41\r\n" * 20000
            + "=EndInset\n>>>" + FLOW + "<AFrame 1>\n" * n)


def families(n):
    """A format that announces as many fonts as it can."""
    return ("<PgfCatalog <Pgf <PgfTag `A'>\n" + each("<FFamily `A family of a long name, number @'>\n", 4090) + ">>" + FLOW
            + "<PgfTag `A'>\n" * n)


def tab_lists(n):
    """Two formats by turns, each with as many tab stops as it can have."""
    def catalog(tag, position):
        return f" <Pgf <PgfTag `{tag}'> <PgfNumTabs 4080>" + f"<TSX {position}>" * 4080 + ">\n"
    return ("<PgfCatalog\n" + catalog("A", 1) + catalog("B", 2) + ">" + FLOW
            + "<PgfTag `A'><String `a'>\n<PgfTag `B'><String `b'>\n" * n)


def tabs(n):
    """Text behind tabs in two sizes by turns, and a list of tab stops that just fits into the token buffer."""
    return (FLOW + "<PgfNumTabs 13000>" + each("<TSX @ pt>", 13000) + "<Para <ParaLine\n"
            + "<FSize 8><Char Tab><String `a'><FSize 9><Char Tab><String `b'>\n" * n + ">>")


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


# Name: generator, times in the smallest document.
REPEATED = {
    "anchors": (anchors, 10), "empty-anchors": (empty_anchors, 1000), "comment-anchors": (comment_anchors, 20),
    "object-anchors": (object_anchors, 20), "unreadable-anchors": (unreadable_anchors, 100),
    "families": (families, 5), "tab-lists": (tab_lists, 10), "tabs": (tabs, 100),
}

# Name: generator, things in the smallest document.
GROWING = {
    "text": (text, 1000), "tags": (tags, 500), "prefixes": (prefixes, 100), "fonts": (fonts, 500),
    "selections": (selections, 4500), "tab-stops": (tab_stops, 1000), "variables": (variables, 1000),
    "rectangles": (rectangles, 500), "tables": (tables, 300), "columns": (columns, 4500),
    "frames": (frames, 500), "object-data": (object_data, 2000), "nesting": (nesting, 4000),
    "one-line": (one_line, 10000), "long-statements": (long_statements, 1500), "escapes": (escapes, 1500),
    "comments": (comments, 5000), "one-comment": (one_comment, 8000), "brackets": (brackets, 4000),
    "spaced-brackets": (spaced_brackets, 4000), "quotes": (quotes, 4000), "macros": (macros, 4000),
    "macro-calls": (macro_calls, 4000),
}

FAMILIES = REPEATED | GROWING


def instructions(program, command, path):
    command = ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
               program, command, path]
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


def write(path, document):
    with open(path, "w", encoding="ascii") as file:
        file.write(document)


def measure(program, command, name, path):
    """The documents' bytes, and the instructions for each but for those of one that has none of its things."""
    generate, count = FAMILIES[name]
    sizes, counts = [], []
    nothing = HEADER + generate(0) if name in REPEATED else HEADER
    for document in [nothing] + [HEADER + generate(count << doubling) for doubling in range(SIZES)]:
        write(path, document)
        sizes.append(len(document))
        counts.append(instructions(program, command, path))
    return sizes[1:], [one - counts[0] for one in counts[1:]]


def is_limited(program, command, name, path):
    """Whether a document that asks for the same often ends at a limit."""
    write(path, HEADER + FAMILIES[name][0](OFTEN))
    done = subprocess.run([program, command, path], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    return done.returncode == 5


def judge(program, command, name, path):
    """Prints a row. Returns whether it is as it should be."""
    sizes, counts = measure(program, command, name, path)
    if name in REPEATED:
        exponent = slope([(1 << doubling, count) for doubling, count in enumerate(counts)])
        dearest = (counts[-1] - counts[-2]) / (sizes[-1] - sizes[-2])
    else:
        exponent = slope(list(zip(sizes, counts)))
        dearest = max(count / size for size, count in zip(sizes, counts))
    remark = ""
    is_good = exponent <= LIMIT
    if dearest > DEAR:
        ends = is_limited(program, command, name, path)
        is_good = is_good and ends
        remark = "ends at a limit" if ends else "has no limit"
    print(f"{name:18} {command:4} {sizes[0]:12,} {sizes[-1]:9,}  {dearest:19,.1f}  {exponent:8.3f}  {remark}"
          + ("" if is_good else "  ABOVE THE LIMIT"), flush=True)
    return is_good


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    program, *names = sys.argv[1:]
    is_good = True
    print("family             command bytes from        to  instructions a byte  exponent")
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "document.mif")
        for name in names or FAMILIES:
            for command in COMMANDS:
                is_good &= judge(program, command, name, path)
    return 0 if is_good else 1


if __name__ == "__main__":
    sys.exit(main())
