#!/usr/bin/env python3
"""How the time of a conversion grows with the document.

usage: scripts/scaling.py MIFREAD [FAMILY...]

For each family of documents, one with N things and one with ten times as many (tables and frames: twice) is converted,
by turns, and the ratio of their median CPU times is printed. The things are used in the order of their declaration.
Ends with 1 when a ratio is above its limit.
"""
import os
import resource
import statistics
import subprocess
import sys
import tempfile

HEADER = "<MIFFile 5.50>\n<Page <PageType BodyPage> <TextRect <ID 9> > >\n"
DATA = "<ImportObject\n=A\n&%v\n&data\n=EndInset\n>"


def tags(count):
    yield "<PgfCatalog\n"
    for i in range(count):
        yield f" <Pgf <PgfTag `Tag{i}'> <PgfLIndent {i % 90} pt>>\n"
    yield "><TextFlow <TextRectID 9>\n"
    for i in range(count):
        yield f"<Para <PgfTag `Tag{i}'> <ParaLine <String `text'>>>\n"
    yield ">\n"


def fonts(count):
    yield "<FontCatalog\n"
    for i in range(count):
        yield f" <Font <FTag `Tag{i}'> <FBold Yes>>\n"
    yield "><TextFlow <TextRectID 9>\n"
    for i in range(count):
        yield f"<Para <ParaLine <Font <FTag `Tag{i}'>> <String `text'>>>\n"
    yield ">\n"


def variables(count):
    yield "<VariableFormats\n"
    for i in range(count):
        yield f" <VariableFormat <VariableName `Name{i}'> <VariableDef `value {i}'>>\n"
    yield "><TextFlow <TextRectID 9>\n"
    for i in range(count):
        yield f"<Variable <VariableName `Name{i}'>>\n"
    yield ">\n"


def pages(count):
    for i in range(count):
        yield f"<Page <PageType BodyPage> <TextRect <ID {i + 10}>>>\n"
    yield "<TextFlow\n"
    for i in range(count):
        yield f"<Para <ParaLine <TextRectID {i + 10}> <String `text'>>>\n"
    yield ">\n"


def tables(count):
    yield "<Tbls\n"
    for i in range(count):
        yield f"<Tbl <TblID {i}> <TblNumColumns 1> <TblColumnWidth 1.0\"> <Row <Cell <Para <String `{i}'>>>>>\n"
    yield "><TextFlow <TextRectID 9>\n"
    for i in range(count):
        yield f"<ATbl {i}>\n"
    yield ">\n"


def frames(count):
    yield "<AFrames\n"
    for i in range(count):
        yield f"<Frame <ID {i}>\n{DATA}\n>\n"
    yield "><TextFlow <TextRectID 9>\n"
    for i in range(count):
        yield f"<AFrame {i}>\n"
    yield ">\n"


# Name: generator, count, factor, the highest ratio.
FAMILIES = {
    "tags": (tags, 10000, 10, 12),
    "fonts": (fonts, 10000, 10, 12),
    "variables": (variables, 10000, 10, 12),
    "pages": (pages, 10000, 10, 12),
    "tables": (tables, 20000, 2, 2.3),
    "frames": (frames, 20000, 2, 2.3),
}


def cpu_time():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def conversion_time(program, path):
    before = cpu_time()
    subprocess.run([program, "tokens", path], stdout=subprocess.DEVNULL, check=True)
    return cpu_time() - before


def ratio(program, generate, count, factor, folder, runs=9):
    paths = []
    for n in (count, count * factor):
        paths.append(os.path.join(folder, f"{n}.mif"))
        with open(paths[-1], "w", encoding="ascii") as file:
            file.write(HEADER)
            file.writelines(generate(n))
    times = [[conversion_time(program, path) for path in paths] for _ in range(runs)]
    small, large = (statistics.median(column) for column in zip(*times))
    return small, large


def main():
    program, *names = sys.argv[1:]
    failed = False
    for name in names or FAMILIES:
        generate, count, factor, limit = FAMILIES[name]
        with tempfile.TemporaryDirectory() as folder:
            small, large = ratio(program, generate, count, factor, folder)
        failed |= large / small > limit
        print(f"{name:10} {count:6} {small:6.3f} s   {count * factor:6} {large:6.3f} s   "
              f"ratio {large / small:5.2f} (at most {limit})")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
