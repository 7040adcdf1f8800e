"""Tries what scripts/check-arrows.py has to find: run with the folder of the sources as the argument."""

import contextlib
import importlib.util
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop(1)).resolve()
SCRIPT = ROOT / "scripts/check-arrows.py"
TABLE = (ROOT / "scripts/arrows.txt").read_text(encoding="utf-8")

loader = importlib.util.spec_from_file_location("check_arrows", SCRIPT)
check = importlib.util.module_from_spec(loader)
loader.loader.exec_module(check)

# What the architecture says, once more and by itself: a table that lets one of these through is wrong.
BELOW = {
    "core": "",
    "fcp": "core",
    "store": "fcp core",
    "ai": "core",
    "fcp/render": "fcp ai core",
    "cli": "store fcp ai fcp/render core",
    "app/platform": "",
    "app/titles": "fcp core",
    "app/fonts": "fcp core",
    "app/model": "store fcp ai fcp/render core",
    "app/window": "app/model app/platform app/fonts store fcp ai fcp/render core",
    "app/Lintora/controls": "app/titles app/platform fcp core",
}
ROOMS = ["app/Lintora/" + room for room in ("cues", "tools", "look", "drag", "ai", "sound")]
UNDER_ROOMS = set(BELOW) - {"cli", "app/window"}
BELOW.update({room: " ".join(UNDER_ROOMS) for room in ROOMS})
BELOW["app/Lintora"] = " ".join([*UNDER_ROOMS, *ROOMS])
BELOW["app"] = " ".join([*UNDER_ROOMS, *ROOMS, "app/Lintora", "app/window"])


class Tree(tempfile.TemporaryDirectory):
    """A folder of sources with the project's table."""

    def __init__(self, files):
        super().__init__()
        self.root = pathlib.Path(self.name)
        for path, text in {"scripts/arrows.txt": TABLE, **files}.items():
            (self.root / path).parent.mkdir(parents=True, exist_ok=True)
            (self.root / path).write_text(text, encoding="utf-8")

    def run(self, *arguments):
        done = subprocess.run([SCRIPT, "--root", self.name, *arguments], capture_output=True, text=True)
        return done.returncode, done.stdout


class Includes(unittest.TestCase):
    def test_every_forbidden_pair_is_refused_by_the_names_of_both_files_and_every_other_is_not(self):
        everything = [*BELOW, "tests", "bench", "fuzz", "scripts"]
        arrows = check.Arrows(TABLE)
        self.assertEqual(sorted(arrows.direct), sorted(everything))
        for user in BELOW:
            for used in everything:
                pair = (f"{user}/User.cpp", f"{used}/Used.h")
                found = list(check.wrong_includes(arrows, [pair]))
                is_allowed = used == user or used in BELOW[user].split()
                self.assertEqual(found == [], is_allowed, pair)
                if not is_allowed:
                    self.assertIn(f"{user}/User.cpp includes {used}/Used.h", found[0])

    def test_a_wrong_include_fails_the_check_however_it_is_written(self):
        for line in ('#include "app/Lintora/cues/A.h"', '  #  include "app/Lintora/cues/A.h" // why not',
                     '#import "app/Lintora/cues/A.h"', '#include "../cues/A.h"'):
            with Tree({"app/Lintora/cues/A.h": "", "app/Lintora/tools/B.cpp": line + "\n"}) as name:
                done = subprocess.run([SCRIPT, "--root", name], capture_output=True, text=True)
            self.assertEqual(done.returncode, 1, line)
            self.assertIn("app/Lintora/tools/B.cpp includes", done.stdout)
            self.assertIn("cues/A.h", done.stdout)

    def test_a_folder_without_a_line_is_refused(self):
        tree = Tree({"gui/A.h": "", "app/main.cpp": '#include "gui/A.h"\n#include "main.moc"\n'})
        with tree:
            status, said = tree.run()
        self.assertEqual((status, said), (1, "app/main.cpp includes gui/A.h: gui/A.h lies in a folder that arrows.txt "
                                             "does not know.\n"))

    def test_a_circle_is_found_unless_it_is_a_unit_and_its_part(self):
        part = {"core/A.h": "", "core/A.cpp": '#include "core/A.h"\n#include "core/B.h"\n',
                "core/B.h": '#include "core/A.h"\n'}
        tree = Tree(part)
        with tree:
            self.assertEqual(tree.run("--circles"), (0, ""))
        tree = Tree({**part, "core/C.cpp": '#include "core/B.h"\n', "core/D.cpp": '#include "core/A.h"\n'})
        with tree:
            status, said = tree.run("--circles")
        self.assertEqual((status, said), (1, "core/A.cpp includes core/B.h, and core/B comes back to core/A: a circle.\n"))

    def test_a_table_that_contradicts_itself_is_refused(self):
        for table in ("core:\ncore:\n", "core: fcp\n", "core\n"):
            with self.assertRaises(ValueError):
                check.Arrows(table)


class Calls(unittest.TestCase):
    def test_a_call_that_no_include_shows_is_found_in_the_objects(self):
        files = {"core/A.cpp": "void write();\nvoid begin() { write(); }\n", "store/B.cpp": "void write() {}\n",
                 "app/model/C.cpp": "void write();\nvoid save() { write(); }\n"}
        tree = Tree(files)
        with tree:
            for path in files:
                source = pathlib.PurePosixPath(path)
                made = tree.root / "build" / source.parent / "CMakeFiles/library.dir" / (source.name + ".o")
                made.parent.mkdir(parents=True)
                subprocess.run(["c++", "-c", tree.root / path, "-o", made], check=True)
            status, said = tree.run("--calls", tree.root / "build")
            (tree.root / "core/A.cpp").unlink()
            left = tree.run("--calls", tree.root / "build")
        self.assertEqual((status, said), (1, "core/A.cpp calls write() of store/B.cpp: core may not name store.\n"))
        self.assertEqual(left, (0, ""), "an object whose source is gone calls nothing")

    def test_a_folder_without_objects_is_no_success(self):
        with tempfile.TemporaryDirectory() as empty, contextlib.redirect_stderr(io.StringIO()):
            with self.assertRaises(ValueError):
                check.symbols(ROOT, pathlib.Path(empty))


if __name__ == "__main__":
    unittest.main()
