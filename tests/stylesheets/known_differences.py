"""The differences to xsltproc that are known, each with its cause.

Each takes our events and theirs of one file, and removes what is known to differ.
"""

import re

XML_LANG = "http://www.w3.org/XML/1998/namespace lang"


def is_blank(event):
    return event[1] == "text" and not event[2][0].strip()


def indentation(ours, theirs):
    """With indent="yes" xsltproc indents by two spaces for each level; vexa-xslt begins a new line only.
    In HTML they do not agree which elements may be indented.
    """
    return [[each for each in events if not is_blank(each)] for events in (ours, theirs)]


def digits(ours, theirs):
    """xsltproc writes numbers with 15 digits; vexa-xslt with all that XPath 1.0 asks for."""
    def rounded(text):
        return re.sub(r"[0-9]+\.[0-9]{10,}", lambda match: f"{float(match.group()):.15g}", text)
    return [[(line, kind, tuple(map(rounded, strings))) for line, kind, strings in events] for events in (ours, theirs)]


def xhtml(ours, theirs):
    """Where the document type is that of XHTML 1.0, xsltproc adds a <meta> to the head, and lang to xml:lang."""
    kept = []
    is_meta = False
    for line, kind, strings in theirs:
        was_meta = is_meta
        is_meta = kind == "element" and strings[0].endswith(" meta") and "Content-Type" in strings
        if kind == "element" and XML_LANG in strings and strings[-2] == "lang":
            strings = strings[:-2]
        if not is_meta and not was_meta:
            kept.append((line, kind, strings))
    return ours, kept


def copied_namespaces(ours, theirs):
    """xsltproc copies with an element the namespaces only that this element declares itself or uses. In HTML they are
    attributes; in XML it makes no difference, as nothing uses the others.
    """
    def without(events):
        return [(line, kind, strings[:1] + tuple(
            each for pair in zip(strings[1::2], strings[2::2]) if not re.match("xmlns(:|$)", pair[0]) for each in pair)
            if kind == "element" else strings) for line, kind, strings in events]
    return without(ours), without(theirs)


def system_id(ours, theirs):
    """The stylesheet puts the folder of the source before the names of pictures where it finds saxon:systemId(), which
    xsltproc has, too.
    """
    def without_folder(text):
        return re.sub(r"^url\(/[^()]*/([^/()]*)\)$", r"url(\1)", text)
    return ours, [(line, kind, tuple(map(without_folder, strings))) for line, kind, strings in theirs]


def legacy_compat(ours, theirs):
    """xsltproc leaves the system identifier "about:legacy-compat" out of an HTML result."""
    legacy = "DOCTYPE html SYSTEM \"about:legacy-compat\""
    return [(line, kind, ("DOCTYPE html",)) if (kind, strings) == ("doctype", (legacy,)) else (line, kind, strings)
            for line, kind, strings in ours], theirs


def time_of_run(ours, theirs):
    """The runs are not at the same time."""
    def without(events):
        return [(line, kind, tuple(re.sub(r"[0-9-]{10}T[0-9:]{8}Z", "time", each) for each in strings))
                for line, kind, strings in events]
    return without(ours), without(theirs)


KNOWN_DIFFERENCES = {each.__name__: each for each in (
    indentation, digits, xhtml, copied_namespaces, legacy_compat, system_id, time_of_run)}
