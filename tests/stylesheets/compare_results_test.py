"""The comparison of results finds what differs."""

import os
import shutil
import tempfile
import unittest

from compare_results import Difference, compare_folders
from known_differences import KNOWN_DIFFERENCES

PAGE = '<!DOCTYPE html>\n<html><body><p id="{0}">a<br>&lt;</p><a href="#{0}">b</a><i id="{1}"></i></body></html>'
XML = '<?xml version="1.0"?><a xmlns="urn:a" id="{0}"><b xml:lang="en" c="{1}">text</b></a>'
OURS = ("N(nil)N0x55d3ce34a3d0", "N0x55d3ce34a3d0N0x55d3ce34a3f8")
THEIRS = ("id7", "id12")


class CompareResultsTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folders = [os.path.join(temporary.name, each) for each in ("ours", "theirs")]

    def compare(self, ours, theirs, **arguments):
        """Each a dictionary of names and contents; returns the number of files."""
        for folder, files in zip(self.folders, (ours, theirs)):
            shutil.rmtree(folder, ignore_errors=True)
            for name, text in files.items():
                path = os.path.join(folder, name)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
        return compare_folders(*self.folders, **arguments)

    def expect_difference(self, ours, theirs, text, **arguments):
        with self.assertRaisesRegex(Difference, text):
            self.compare(ours, theirs, **arguments)

    def test_generated_identifiers_may_differ(self):
        for text in (PAGE, XML, "see {0}, {1} and {0}"):
            self.assertEqual(self.compare({"r": text.format(*OURS)}, {"r": text.format(*THEIRS)}), 1)

    def test_a_link_to_another_place_is_found(self):
        for text in (PAGE, XML + "<!--{0}-->", "see {0}, {1} and {0}"):
            ours = "{1}".join(text.rsplit("{0}", 1))
            self.expect_difference({"r": ours.format(*OURS)}, {"r": text.format(*THEIRS)}, "line ")

    def test_two_places_with_one_identifier_are_found(self):
        for text in (PAGE, XML):
            self.expect_difference({"r": text.format(OURS[0], OURS[0])}, {"r": text.format(*THEIRS)}, "line ")
            self.expect_difference({"r": text.format(*OURS)}, {"r": text.format(THEIRS[0], THEIRS[0])}, "line ")

    def test_a_link_to_another_file_is_found(self):
        one, other = "<a/>", '<a href="x{0}.html"/>'
        names = "x{0}.html", "x{1}.html"
        ours = {name.format(*OURS): one for name in names}
        theirs = {name.format(*THEIRS): one for name in names}
        both = '<a b="{0} {1}"/>'
        self.assertEqual(self.compare(ours | {"r": both.format(*OURS)}, theirs | {"r": both.format(*THEIRS)}), 3)
        self.expect_difference({"r": both.format(*OURS), "s": other.format(*OURS)},
                               {"r": both.format(*THEIRS), "s": other.format(THEIRS[1])}, "line 1")

    def test_whatever_is_changed_is_found(self):
        for before, after in (("text", "texts"), ("<b ", "<b d='' "), ("xml:lang", "lang"), ("urn:a", "urn:b"),
                              ('"en"', '"de"'), ("text", "<i/>text"), ("text", ""), ("text", "te<!---->xt"),
                              ("<a ", "<!DOCTYPE a SYSTEM 's'><a "), ('version="1.0"', 'version="1.0" encoding="ASCII"'),
                              ("text", " text"), ("text<", "text <")):
            changed = XML.replace(before, after, 1)
            self.assertNotEqual(changed, XML)
            self.expect_difference({"r": changed}, {"r": XML}, "line 1")
            self.expect_difference({"r": XML}, {"r": changed}, "line 1")
        for before, after in (("a<br>", "a"), (' html', ' html PUBLIC "p"'), ("&lt;", "&gt;"), (">b<", ">c<"), ("<i", "<b")):
            changed = PAGE.replace(before, after, 1)
            self.assertNotEqual(changed, PAGE)
            self.expect_difference({"r": changed}, {"r": PAGE}, "line ")
        self.expect_difference({"r": "one\ntwo"}, {"r": "one\n two"}, "line 2")
        self.expect_difference({"r": "one\ntwo"}, {"r": "one\ntwo\nthree"}, "2 events.* 3")

    def test_files_that_are_not_there_are_found(self):
        self.expect_difference({"r": "1"}, {"r": "1", "d/s": "2"}, "missing files: d/s")
        self.expect_difference({"r": "1", "d/s": "2"}, {"r": "1"}, "additional file: .*d/s")
        self.expect_difference({"x" + OURS[0]: "1"}, {"x" + THEIRS[0]: "1"}, "no other file")

    def test_xml_that_is_not_well_formed_is_found(self):
        self.expect_difference({"r": "<a><b></a>"}, {"r": "<a><b/></a>"}, "mismatched tag")

    def test_attributes_have_no_order(self):
        self.assertEqual(self.compare({"r": "<a b='1' c='2'/>"}, {"r": "<a c='2' b='1'/>"}), 1)
        self.assertEqual(self.compare({"r": "<html b='1' c='2'><br>"}, {"r": "<html c='2' b='1'><br>"}), 1)

    def test_known_differences_are_narrow(self):
        for name, ours, theirs, other in (
                ("indentation", "<a>\n<b/></a>", "<a>\n  <b/>\n</a>", "<a>\n  <b/>x</a>"),
                ("digits", "<a>20.735999999999997pt</a>", "<a>20.736pt</a>", "<a>20.7360001pt</a>"),
                ("xhtml", "<h xmlns='x'><t xml:lang='en'/></h>",
                 "<h xmlns='x'><meta http-equiv='Content-Type'/><t xml:lang='en' lang='en'/></h>",
                 "<h xmlns='x'><meta/><t xml:lang='en' lang='en'/></h>"),
                ("copied_namespaces", "<html><m:m xmlns='urn:x' xmlns:m='urn:m'><br>",
                 "<html><m:m xmlns:m='urn:m'><br>", "<html><m:m xmlns:m='urn:m' xml:m=''><br>"),
                ("legacy_compat", "<!DOCTYPE HTML SYSTEM \"about:legacy-compat\"><html><br>", "<!DOCTYPE html><html><br>",
                 "<!DOCTYPE html SYSTEM 'x'><html><br>"),
                ("system_id", "<i src='url(a.svg)'/>", "<i src='url(/b/a.svg)'/>", "<i src='url(/b/c.svg)'/>"),
                ("time_of_run", "<a>2026-11-23T02:28:55Z</a>", "<a>2026-11-23T02:28:56Z</a>", "<a>2026-11-23</a>")):
            settle = {"settle": KNOWN_DIFFERENCES[name]}
            self.expect_difference({"r": ours}, {"r": theirs}, "line 1")
            self.assertEqual(self.compare({"r": ours}, {"r": theirs}, **settle), 1)
            self.expect_difference({"r": ours}, {"r": other}, "line ", **settle)


unittest.main()
