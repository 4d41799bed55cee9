"""Runs vexa-xslt and xsltproc with one stylesheet over one document, and compares all that they write.

  run_both.py --vexa-xslt FILE --folder FOLDER [--known NAME]... [--param NAME=VALUE]... STYLESHEET... DOCUMENT

Of several stylesheets each one but the first runs over the result of the one before.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys

from compare_results import Difference, compare_folders
from known_differences import KNOWN_DIFFERENCES


def run(command, folder):
    """Runs the command in the folder; returns the processor time."""
    process = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT)
    output = process.stdout.read().decode(errors="replace")
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Difference(f"{' '.join(command)}\nended with {process.returncode}:\n{output[-3000:]}")
    return usage.ru_utime + usage.ru_stime


def run_all(command, folder, stylesheets, document):
    """Runs the stylesheets in the folder, which is emptied first; returns the processor time."""
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    seconds = 0.0
    for stylesheet in stylesheets:
        for file in (stylesheet, document):
            if not os.path.exists(os.path.join(folder, file)):
                raise Difference(f"no file {file}: ./dev test installs the packages that have the stylesheets")
        result = "result" if stylesheet == stylesheets[-1] else f"result-of-{os.path.basename(stylesheet)}"
        seconds += run([*command, "-o", result, stylesheet, document], folder)
        document = result
    return seconds


def drop_empty_result(ours, theirs):
    """Where a stylesheet writes chunks only, xsltproc writes no result, and vexa-xslt an empty one."""
    result = os.path.join(ours, "result")
    if os.path.exists(os.path.join(theirs, "result")):
        return
    with open(result, encoding="utf-8") as file:
        if re.fullmatch(r"(<\?xml [^>]*>)?\s*", file.read()):
            os.remove(result)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--vexa-xslt", required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--known", action="append", default=[])
    parser.add_argument("--param", action="append", default=[])
    parser.add_argument("stylesheets", nargs="+")
    parser.add_argument("document")
    arguments = parser.parse_args()
    seen = set()

    def settle(our_events, their_events):
        for name in arguments.known:
            settled = KNOWN_DIFFERENCES[name](our_events, their_events)
            if settled != (our_events, their_events):
                seen.add(name)
            our_events, their_events = settled
        return our_events, their_events

    ours, theirs = (os.path.join(arguments.folder, each) for each in ("vexa-xslt", "xsltproc"))
    our_command = [arguments.vexa_xslt, "transform"]
    their_command = ["xsltproc", "--nonet"]
    for parameter in arguments.param:
        our_command += ["-p", parameter]
        their_command += ["--stringparam", *parameter.split("=", 1)]
    try:
        our_time = run_all(our_command, ours, arguments.stylesheets, arguments.document)
        their_time = run_all(their_command, theirs, arguments.stylesheets, arguments.document)
        print(f"processor time {our_time:.2f} s, of xsltproc {their_time:.2f} s: {our_time / their_time:.2f}")
        drop_empty_result(ours, theirs)
        count = compare_folders(ours, theirs, settle)
        unseen = set(arguments.known) - seen
        if unseen:
            raise Difference(f"known differences that are not there: {', '.join(sorted(unseen))}")
    except Difference as difference:
        sys.exit(str(difference))
    print(f"{count} files are equal")


main()
