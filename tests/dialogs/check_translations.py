#!/usr/bin/env python3
"""Every text the sources pass through tr()/translate() has a finished
English translation in the committed .ts file, and the file holds nothing
the sources no longer use.

    check_translations.py <lupdate> <src folder> <committed .ts>

lupdate scans the sources into a copy of the committed file: a text new in
the code comes out "unfinished", a text gone from the code "vanished" or
"obsolete". Translations must also keep the %N place markers of their
source, and the robot names that the servo-error rule compares with the
controller's own Chinese text stay untranslated.
"""
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET
from pathlib import Path

# Texts compared with what the controller sends: identical in every language.
KEPT_AS_IS = {("Robot", "机器人%d" % n) for n in range(1, 5)}


def messages(ts_path):
    for context in ET.parse(ts_path).getroot().iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            yield name, message.findtext("source") or "", message.find("translation")


def markers(text):
    return sorted(re.findall(r"%\d+", text or ""))


def main():
    lupdate, src, committed = sys.argv[1:4]
    problems = []
    with tempfile.TemporaryDirectory() as tmp:
        scanned = Path(tmp) / Path(committed).name
        shutil.copyfile(committed, scanned)
        run = subprocess.run([lupdate, "-locations", "none", src, "-ts", str(scanned)],
                             capture_output=True, text=True)
        if run.returncode != 0:
            print(run.stdout, run.stderr)
            return 2
        found = 0
        for context, source, translation in messages(scanned):
            found += 1
            kind = translation.get("type") if translation is not None else "missing"
            text = translation.text if translation is not None else None
            where = "%s: %r" % (context, source)
            if kind in ("unfinished", "missing"):
                problems.append("not translated yet: " + where)
            elif kind in ("vanished", "obsolete"):
                problems.append("no longer in the code: " + where)
            elif not text:
                problems.append("empty translation: " + where)
            elif markers(text) != markers(source):
                problems.append("place markers differ (%s vs %s): %s" % (markers(text), markers(source), where))
            elif (context, source) in KEPT_AS_IS and text != source:
                problems.append("must stay as the controller writes it: " + where)
        if found == 0:
            problems.append("lupdate found no text at all in " + src)
        # The committed file is what lupdate makes of it (one step to refresh).
        if Path(committed).read_bytes() != scanned.read_bytes() and not problems:
            problems.append("the committed file differs from a fresh lupdate run: run scripts/update-translations")
    for p in problems:
        print(p)
    print("%d texts checked, %d problems" % (found, len(problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
