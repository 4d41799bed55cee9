"""The documents for the measurements: written again for each run, and always the same."""

import json
import pathlib
import re
import shutil

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parent

WORDS = ("lamp wick lens vent tower stair gallery logbook storm harbour signal keeper watch "
         "oil brass rock tide ferry chart horn").split()
KINDS = ("glass", "metal", "wood", "paper")

HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n<rows>\n'
TAIL = "</rows>\n"


class Numbers:
    """Pseudo-random numbers, the same in every version of Python."""

    def __init__(self, seed=12345):
        self.state = seed

    def below(self, limit):
        self.state = (self.state * 1103515245 + 12345) % 2**31
        return (self.state >> 8) % limit


def row(number, numbers):
    words = " ".join(WORDS[numbers.below(len(WORDS))] for _ in range(12))
    name = WORDS[numbers.below(len(WORDS))] + "-" + str(numbers.below(10000))
    kind = KINDS[numbers.below(len(KINDS))]
    amount = f"{numbers.below(100000)}.{numbers.below(100):02}"
    return (f'<row id="{number}" kind="{kind}"><name>{name}</name><amount>{amount}</amount>'
            f"<note>{words} &amp; more</note></row>\n")


def write_rows(file, size):
    """Writes rows up to a size in bytes."""
    numbers = Numbers()
    parts, length, number = [HEAD], len(HEAD) + len(TAIL), 0
    while length < size:
        number += 1
        parts.append(row(number, numbers))
        length += len(parts[-1])
    file.write_text("".join(parts) + TAIL)


def ten_rows(seed=12345):
    """Ten short rows, about 1 kB."""
    numbers = Numbers(seed)
    return "".join(f'<row id="{number}" kind="{KINDS[number % len(KINDS)]}"><name>{WORDS[numbers.below(len(WORDS))]}</name>'
                   f"<amount>{numbers.below(100000)}.{numbers.below(100):02}</amount></row>\n" for number in range(10))


def write_ten_rows(file, seed=12345):
    file.write_text(HEAD + ten_rows(seed) + TAIL)


def write_report(folder):
    """Writes the sample report with the node-set function that all three programs have."""
    for file in (PROJECT / "samples").iterdir():
        text = file.read_text()
        if file.name == "report.xsl":
            text = text.replace("http://xml.apache.org/xalan", "http://exslt.org/common")
            text = text.replace("xalan:nodeset", "xalan:node-set")
        (folder / file.name).write_text(text)


def book(chapters):
    """A DocBook book, of the same text again and again."""
    handbook = (PROJECT / "tests" / "data" / "handbook.xml").read_text()
    text = handbook[handbook.index("<section"):handbook.rindex("</article>")]
    parts = [f'<chapter id="c{number}"><title>Book {number}</title>'
             + re.sub(r'\b(id|linkend)="', rf'\1="c{number}-', text) + "</chapter>" for number in range(chapters)]
    return '<book lang="en"><title>A large book</title>' + "\n".join(parts) + "</book>\n"


def reference(entries):
    """A DocBook reference of the same page again and again."""
    page = ('<refentry id="r{0}"><refmeta><refentrytitle>tool{0}</refentrytitle><manvolnum>1</manvolnum></refmeta>'
            "<refnamediv><refname>tool{0}</refname><refpurpose>does something</refpurpose></refnamediv><refsynopsisdiv>"
            "<cmdsynopsis><command>tool{0}</command><arg>-a <replaceable>file</replaceable></arg></cmdsynopsis>"
            "</refsynopsisdiv>" + "<refsect1><title>Description</title><para>It reads <filename>/etc/tool</filename> and "
            "does <emphasis>all</emphasis> of it.</para><variablelist><varlistentry><term><option>-a</option></term>"
            "<listitem><para>All. See <citerefentry><refentrytitle>ls</refentrytitle><manvolnum>1</manvolnum>"
            "</citerefentry>.</para></listitem></varlistentry></variablelist></refsect1>" * 10 + "</refentry>")
    return ('<reference lang="en"><title>Tools</title>' + "\n".join(page.format(number) for number in range(entries))
            + "</reference>\n")


STYLESHEETS = pathlib.Path("/usr/share/xml/docbook/stylesheet/docbook-xsl")
# Stylesheet and source.
DOCBOOK = {"HTML, 900 kB": (STYLESHEETS / "html" / "docbook.xsl", "book.xml"),
           "HTML in chunks, 220 kB": (STYLESHEETS / "html" / "chunk.xsl", "book-small.xml"),
           "FO, 900 kB": (STYLESHEETS / "fo" / "docbook.xsl", "book.xml"),
           "100 man pages": (STYLESHEETS / "manpages" / "docbook.xsl", "reference.xml")}


def entities(levels):
    """An entity with ten references to an entity with ten references, and so on."""
    declared = ['<!ENTITY e0 "abc">']
    declared += [f'<!ENTITY e{level} "{f"&e{level - 1};" * 10}">' for level in range(1, levels + 1)]
    return f"<!DOCTYPE a [{''.join(declared)}]><a>&e{levels};</a>"


def nested(depth):
    return "<a>" * depth + "</a>" * depth


def ampersands(count):
    return "<a>" + "&amp;" * count + "</a>"


def attributes(count):
    return "<a " + " ".join(f'n{number}="x"' for number in range(count)) + "/>"


# Input that costs more than its size suggests, in two sizes each.
HOSTILE = {"entity expansion, 4 levels": lambda: entities(4), "entity expansion, 5 levels": lambda: entities(5),
           "20,000 nested elements": lambda: nested(20_000), "50,000 nested elements": lambda: nested(50_000),
           "50,000 &amp; in one text": lambda: ampersands(50_000), "100,000 &amp; in one text": lambda: ampersands(100_000),
           "20,000 attributes": lambda: attributes(20_000), "40,000 attributes": lambda: attributes(40_000)}


def hostile_file(title):
    return "hostile-" + "".join(c if c.isalnum() else "-" for c in title) + ".xml"


BATCHES = (10, 10_000)


def write_batches(folder):
    """Writes small sources into one folder for each batch, and their names into a list."""
    for count in BATCHES:
        sources = folder / f"batch-{count}"
        sources.mkdir(exist_ok=True)
        names = [f"{sources.name}/{number}.xml" for number in range(count)]
        for number, name in enumerate(names):
            write_ten_rows(folder / name, number + 1)
        (folder / f"{sources.name}.list").write_text("\n".join(names))


RECORDS = 1_000_000  # in one document
SOURCES = 100_000  # the same records as files, and as requests
FEW_REQUESTS = 10_000


def write_records(folder):
    """Writes a document of 1 GB, its first records as files of their own, and as requests for the worker."""
    texts = [f"<rows>\n{ten_rows(number)}{TAIL}" for number in range(1000)]
    with open(folder / "records.xml", "w") as file:
        file.write("<all>\n")
        for _ in range(RECORDS // len(texts)):
            file.write("".join(texts))
        file.write("</all>\n")
    names = [f"records/{number}.xml" for number in range(SOURCES)]
    if not (folder / "records").exists():  # writing them again would take minutes on some disks
        (folder / "records").mkdir()
        for number, name in enumerate(names):
            (folder / name).write_text(texts[number % len(texts)])
    (folder / "records.list").write_text("\n".join(names))
    lines = [json.dumps({"id": number, "xml": texts[number % len(texts)]}) + "\n" for number in range(SOURCES)]
    (folder / "requests").write_text("".join(lines))
    (folder / "few-requests").write_text("".join(lines[:FEW_REQUESTS]))


def write_documents(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for stylesheet in (HERE / "stylesheets").iterdir():
        shutil.copy(stylesheet, folder)
    (folder / "empty.xml").write_text("<empty/>\n")
    (folder / "rows-tiny.xml").write_text(
        '<rows><row id="1" kind="glass"><name>lens</name><amount>12.50</amount></row></rows>')
    (folder / "rows-calls.xml").write_text("<rows>" + "<row/>" * 1000 + "</rows>")
    write_ten_rows(folder / "rows-ten.xml")
    write_rows(folder / "rows-medium.xml", 20_000)
    (folder / "rows-elements.xml").write_text("<rows>" + "<row><name>1</name></row>" * 40_000 + "</rows>")
    write_rows(folder / "rows-strings.xml", 500_000)
    write_rows(folder / "rows-sorted.xml", 2_000_000)
    write_rows(folder / "rows-large.xml", 10_000_000)
    write_report(folder)
    write_batches(folder)
    write_records(folder)
    for title, make in HOSTILE.items():
        (folder / hostile_file(title)).write_text(make())
    shutil.copy(PROJECT / "tests" / "data" / "handbook.xml", folder)
    (folder / "book.xml").write_text(book(160))
    (folder / "book-small.xml").write_text(book(40))
    (folder / "reference.xml").write_text(reference(100))
