"""Compares two folders of results as trees."""

import html.parser
import os
import re
import xml.parsers.expat

# Both programs generate identifiers: ours from two addresses, xsltproc as id1234.
ADDRESS = r"0x(?:[0-9a-f]{12}|[0-9a-f]{8})"
OUR_ID = re.compile(rf"N(?:{ADDRESS}|\(nil\))N{ADDRESS}")
THEIR_ID = re.compile(r"(?<![A-Za-z])id[mp]?[0-9]+")


class Difference(Exception):
    """The results differ; the text says where and how."""


class Identifiers:
    """One of our generated identifiers stands for one of theirs, and the reverse, wherever it is found."""

    def __init__(self):
        self.theirs = {}
        self.ours = {}

    def same(self, ours, theirs):
        if not self._same_literals(ours, theirs):
            return False
        for our, their in zip(OUR_ID.findall(ours), THEIR_ID.findall(theirs)):
            if self.theirs.setdefault(our, their) != their or self.ours.setdefault(their, our) != our:
                return False
        return True

    @staticmethod
    def _same_literals(ours, theirs):
        return OUR_ID.split(ours) == THEIR_ID.split(theirs)

    def translated(self, ours):
        """Our text with their identifiers, or None if one of them is not known yet."""
        found = OUR_ID.findall(ours)
        if not all(each in self.theirs for each in found):
            return None
        return OUR_ID.sub(lambda match: self.theirs[match.group()], ours)


class Events(list):
    """A document as a list of (line, kind, strings); adjacent pieces of text are one event."""

    def add(self, line, kind, *strings):
        if kind == "text" and self and self[-1][1] == "text":
            line, _, (before,) = self.pop()
            strings = (before + strings[0],)
        self.append((line, kind, strings))


def attribute_strings(attributes):
    return [part for pair in sorted(attributes) for part in pair]


def xml_events(data):
    events = Events()
    parser = xml.parsers.expat.ParserCreate(namespace_separator=" ")
    parser.ordered_attributes = True
    namespaces = []

    def add(kind, *strings):
        events.add(parser.CurrentLineNumber, kind, *(each or "" for each in strings))

    def start(name, attributes):
        add("element", name, *attribute_strings(zip(attributes[::2], attributes[1::2])))

    parser.StartElementHandler = start
    parser.EndElementHandler = lambda name: add("end", name)
    parser.CharacterDataHandler = lambda text: add("text", text)
    parser.CommentHandler = lambda text: add("comment", text)
    parser.ProcessingInstructionHandler = lambda target, text: add("instruction", target, text)
    parser.StartDoctypeDeclHandler = lambda name, system, public, _: add("doctype", name, system, public)
    parser.XmlDeclHandler = lambda version, encoding, standalone: add(
        "declaration", version, (encoding or "UTF-8").upper(), str(standalone))
    parser.Parse(data, True)
    return events


class HtmlEvents(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.events = Events()
        self.feed(text)
        self.close()

    def add(self, kind, *strings):
        self.events.add(self.getpos()[0], kind, *strings)

    def handle_starttag(self, tag, attrs):
        self.add("element", tag, *attribute_strings((name, name if value is None else value) for name, value in attrs))

    def handle_endtag(self, tag):
        self.add("end", tag)

    def handle_data(self, data):
        self.add("text", data)

    def handle_comment(self, data):
        self.add("comment", data)

    def handle_decl(self, decl):
        self.add("doctype", re.sub("^doctype html", "DOCTYPE html", decl, flags=re.IGNORECASE))

    def handle_pi(self, data):
        self.add("instruction", data)


def html_events(text):
    # What follows the last tag is no part of the tree, as in XML.
    return HtmlEvents(text.rstrip()).events


def text_events(text):
    events = Events()
    for number, line in enumerate(text.split("\n"), 1):
        events.append((number, "line", (line,)))
    return events


def events_of(path):
    with open(path, "rb") as file:
        data = file.read()
    if data.lstrip().startswith(b"<"):
        try:
            return xml_events(data)
        except xml.parsers.expat.ExpatError as error:
            if not re.match(rb"\s*<(!doctype )?html", data, re.IGNORECASE):
                raise Difference(f"{path}: {error}") from error
            return html_events(data.decode(html_encoding(data)))
    return text_events(data.decode("utf-8"))


def html_encoding(data):
    match = re.search(rb"<meta [^>]*charset=([A-Za-z0-9-]+)", data)
    return match.group(1).decode() if match else "utf-8"


def described(event):
    line, kind, strings = event
    return f"line {line}: {kind} " + " ".join(repr(each) for each in strings)


def compare_files(ours, theirs, identifiers, settle):
    """settle(our events, their events) removes the differences that are known."""
    our_events, their_events = settle(events_of(ours), events_of(theirs))
    for our, their in zip(our_events, their_events):
        same_kind = our[1] == their[1] and len(our[2]) == len(their[2])
        if not same_kind or not all(identifiers.same(*pair) for pair in zip(our[2], their[2])):
            raise Difference(f"{ours}: {described(our)}\n{theirs}: {described(their)}")
    if len(our_events) != len(their_events):
        raise Difference(f"{ours} has {len(our_events)} events, {theirs} has {len(their_events)}")


def files_below(folder):
    return {os.path.relpath(os.path.join(path, name), folder)
            for path, _, names in os.walk(folder) for name in names}


def compare_folders(ours, theirs, settle=lambda our_events, their_events: (our_events, their_events)):
    """Compares the files of both folders, and returns their number. Names may have generated identifiers."""
    our_files, their_files = files_below(ours), files_below(theirs)
    identifiers = Identifiers()
    compared = 0
    # A file that is named by an identifier is compared when other files have told which one of theirs it is.
    while our_files:
        ready = sorted(name for name in our_files if identifiers.translated(name) is not None)
        if not ready:
            raise Difference(f"no other file refers to {', '.join(sorted(our_files))}")
        for name in ready:
            their_name = identifiers.translated(name)
            if their_name not in their_files:
                raise Difference(f"an additional file: {os.path.join(ours, name)}")
            compare_files(os.path.join(ours, name), os.path.join(theirs, their_name), identifiers, settle)
            our_files.remove(name)
            their_files.remove(their_name)
            compared += 1
    if their_files:
        raise Difference(f"missing files: {', '.join(sorted(their_files))}")
    return compared
