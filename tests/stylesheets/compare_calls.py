"""Compares how often each template is called with what xsltproc --profile counts."""

import argparse
import collections
import os
import re
import subprocess
import sys
from xml.parsers import expat

XSL = "http://www.w3.org/1999/XSL/Transform "


def key(match, name, mode):
    # xsltproc writes columns that may touch; LCOV has no commas in names.
    return "".join((match + name + mode).replace(",", ";").split())


def counted_by_vexa_xslt(coverage):
    """The calls of each template, and the modules."""
    calls = collections.Counter()
    modules = []
    for line in coverage.splitlines():
        kind, _, value = line.partition(":")
        if kind == "SF":
            modules.append(value)
        elif kind == "FNDA":
            count, _, title = value.partition(",")
            parts = dict(re.findall(r'(match|name|mode)="(.*?)"(?= (?:match|name|mode)=|$)', title))
            if parts:
                calls[key(*(parts.get(part, "") for part in ("match", "name", "mode")))] += int(count)
    return +calls, modules


def counted_by_xsltproc(table):
    """A row that has long texts has two lines."""
    calls = collections.Counter()
    lines = iter(table.splitlines())
    while not next(lines).startswith("number "):
        pass
    row = ""
    for line in lines:
        row += " " + line
        if line.strip().startswith("Total"):
            break
        found = re.match(r"\s*\d+\s+(.*\S)\s+(\d+)\s+\d+\s+\d+$", row)
        if found:
            calls[key(found.group(1), "", "")] += int(found.group(2))
            row = ""
    return calls


def empty_templates(module):
    """xsltproc does not count them."""
    found = set()
    template = None

    def start(name, attributes):
        nonlocal template
        if name == XSL + "template":
            template = key(*(attributes.get(part, "") for part in ("match", "name", "mode")))
        elif name != XSL + "param":
            template = None

    def text(characters):
        nonlocal template
        if characters.strip():
            template = None

    def end(name):
        nonlocal template
        if name == XSL + "template" and template is not None:
            found.add(template)

    parser = expat.ParserCreate(namespace_separator=" ")
    parser.StartElementHandler = start
    parser.CharacterDataHandler = text
    parser.EndElementHandler = end
    with open(module, "rb") as file:
        parser.ParseFile(file)
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("vexa_xslt")
    parser.add_argument("stylesheet")
    parser.add_argument("source")
    arguments = parser.parse_args()
    documents = [arguments.stylesheet, arguments.source]

    profile = subprocess.run([arguments.vexa_xslt, "profile", *documents, "--coverage", "-"],
                             capture_output=True, text=True, check=True)
    ours, modules = counted_by_vexa_xslt(profile.stdout)
    other = subprocess.run(["xsltproc", "--nonet", "--profile", "-o", os.devnull, *documents],
                           capture_output=True, text=True, check=True)
    theirs = counted_by_xsltproc(other.stderr)

    empty = set().union(*map(empty_templates, modules))
    differences = [template for template in sorted(ours.keys() | theirs.keys())
                   if ours[template] != theirs[template]
                   and not (theirs[template] == 0 and template in empty)]
    for template in differences:
        print(f"{template}: {ours[template]} calls, xsltproc counts {theirs[template]}")
    print(f"{len(theirs)} templates, {sum(theirs.values())} calls, {len(differences)} differences")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
