#!/usr/bin/env python3
"""Holds the sources against scripts/arrows.txt, and says in a sentence for each mistake which two files it is between.

    scripts/check-arrows.py                 what the sources include
    scripts/check-arrows.py --circles       units that include each other, which may have their reason: look at each
    scripts/check-arrows.py --calls FOLDER  what the objects built in FOLDER call, whoever declared it

A static library is linked with whatever it lacks, and every folder is found from one include root: neither the compiler
nor the linker sees a wrong arrow.
"""

import argparse
import collections
import pathlib
import re
import subprocess
import sys

SOURCE = {".h", ".cpp", ".mm"}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*"([^"]+)"', re.MULTILINE)
EVERYTHING = "*"
OUTSIDE = ("tests/", "bench/", "fuzz/")


class Arrows:
    """Which folder may name which, as the table says it."""

    def __init__(self, table):
        self.direct = {}
        for number, line in enumerate(table.splitlines(), 1):
            line = line.split("#")[0].strip()
            if not line:
                continue
            folder, colon, named = line.partition(":")
            if not colon or folder in self.direct:
                raise ValueError(f"arrows.txt:{number}: not a new folder and what it may name: {line}")
            self.direct[folder] = named.split()
        for named in self.direct.values():
            for each in named:
                if each != EVERYTHING and each not in self.direct:
                    raise ValueError(f"arrows.txt: {each} is named and has no line of its own")

    def room(self, path):
        """The folder of the table that the file belongs to; None for a file of none."""
        folders = [str(parent) for parent in pathlib.PurePosixPath(path).parents]
        return next((folder for folder in folders if folder in self.direct), None)

    def below(self, room):
        """All that the room may name, itself included."""
        found, waiting = set(), [room]
        while waiting:
            each = waiting.pop()
            if each == EVERYTHING:
                return set(self.direct)
            if each not in found:
                found.add(each)
                waiting += self.direct[each]
        return found

    def mistake(self, user, used):
        """Why the one file may not name the other; None when it may."""
        from_room, to_room = self.room(user), self.room(used)
        if from_room is None or to_room is None:
            stray = user if from_room is None else used
            return f"{stray} lies in a folder that arrows.txt does not know"
        if to_room in self.below(from_room):
            return None
        return f"{from_room} may not name {to_room}"


def sources(root):
    """Every source below the root but what was built."""
    folders = [each for each in root.iterdir() if each.is_dir() and not each.name.startswith((".", "build"))]
    return sorted(path.relative_to(root).as_posix()
                  for folder in folders for path in folder.rglob("*") if path.suffix in SOURCE)


def includes(root, paths):
    """For each file, the files of ours that it includes."""
    known = set(paths)
    for path in paths:
        text = (root / path).read_text(encoding="utf-8")
        for included in INCLUDE.findall(text):
            if pathlib.PurePosixPath(included).suffix not in SOURCE:
                continue  # what Qt's tools make of a file lies beside it
            beside = str(pathlib.PurePosixPath(path).parent / included)
            yield path, included if included in known or beside not in known else beside


def wrong_includes(arrows, pairs):
    for user, used in pairs:
        reason = arrows.mistake(user, used)
        if reason:
            yield f"{user} includes {used}: {reason}."


def circles(pairs):
    """Units, a header with its source file, that need each other.

    What no other unit of the program includes is a part of the one that does, and may know its types.
    """
    graph = collections.defaultdict(dict)
    for user, used in pairs:
        unit, other = (str(pathlib.PurePosixPath(each).with_suffix("")) for each in (user, used))
        if unit != other:
            graph[unit].setdefault(other, (user, used))
    users = collections.Counter(other for unit, others in graph.items() if not unit.startswith(OUTSIDE)
                                for other in others)
    graph = {unit: {other: pair for other, pair in others.items() if users[other] > 1}
             for unit, others in graph.items()}
    # Whatever has nothing left to include is taken away, until only circles and what leads to them remain.
    left = {unit: set(others) for unit, others in graph.items()}
    while True:
        ends = {unit for unit in left if not any(other in left for other in left[unit])}
        if not ends:
            break
        for unit in ends:
            del left[unit]
    for unit in sorted(left):
        for other in sorted(left[unit]):
            if unit < other and reaches(left, other, unit):
                user, used = graph[unit][other]
                yield f"{user} includes {used}, and {other} comes back to {unit}: a circle."


def reaches(graph, start, goal):
    seen, waiting = set(), [start]
    while waiting:
        each = waiting.pop()
        if each == goal:
            return True
        if each not in seen:
            seen.add(each)
            waiting += graph.get(each, ())
    return False


def source_of(root, build, made):
    """The file that an object was made of; None for one whose source is gone."""
    match = re.fullmatch(r"(.*?)/?CMakeFiles/[^/]+\.dir/(.*)\.o", made.relative_to(build).as_posix())
    if not match:
        return None
    path = "/".join(filter(None, match.groups()))
    return path if "_autogen/" in path or (root / path).is_file() else None


def stands_in_for_system(source, symbol):
    """A test may put a C function of its own before the system's, for everything in its program."""
    return source.startswith("tests/") and "(" not in symbol


def symbols(root, build):
    """Strong definitions and open references, each with its file: (defined, [(file, symbol)])."""
    objects = {str(made): source_of(root, build, made) for made in build.rglob("*.o")}
    ours = [made for made, source in objects.items() if source]
    if not ours:
        raise ValueError(f"there is nothing built in {build}")
    listed = subprocess.run(["nm", "-A", "-P", "-C", "--no-sort", *ours], check=True, capture_output=True, text=True)
    defined, wanted = {}, []
    for line in listed.stdout.splitlines():
        match = re.match(r"(.*?\.o): (.*) ([A-Za-z])(?: [0-9a-f]+){0,2} *$", line)
        if not match:
            continue
        made, symbol, kind = match.groups()
        if kind == "U":
            wanted.append((objects[made], symbol))
        elif kind in "TDBR" and symbol != "main" and not stands_in_for_system(objects[made], symbol):
            defined.setdefault(symbol, []).append(objects[made])
    return defined, wanted


def wrong_calls(arrows, defined, wanted):
    for user, symbol in sorted(set(wanted)):
        owners = defined.get(symbol, [])
        reasons = [arrows.mistake(user, owner) for owner in owners]
        # Test programs bring their own; what any allowed file defines is no mistake.
        if owners and all(reasons):
            yield f"{user} calls {symbol} of {owners[0]}: {reasons[0]}."


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", type=pathlib.Path, default=pathlib.Path(__file__).resolve().parent.parent)
    parser.add_argument("--calls", type=pathlib.Path, metavar="FOLDER")
    parser.add_argument("--circles", action="store_true")
    arguments = parser.parse_args()
    root = arguments.root.resolve()
    arrows = Arrows((root / "scripts/arrows.txt").read_text(encoding="utf-8"))
    if arguments.calls:
        build = arguments.calls.resolve()
        mistakes = list(wrong_calls(arrows, *symbols(root, build)))
    else:
        pairs = list(includes(root, sources(root)))
        mistakes = list(circles(pairs) if arguments.circles else wrong_includes(arrows, pairs))
    print(*mistakes, sep="\n", end="\n" if mistakes else "")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
