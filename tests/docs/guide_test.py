#!/usr/bin/env python3
"""The user guide, held against the program: guide_test.py PROJECT LINTORA-CLI

Every block "```sh run" of a page is run, in a folder of the page's own with the sample; "```sh run=1" ends with that
status. A block "```text shown" behind it is what it prints; a line "…" in it stands for any lines. What is set in bold
stands in the window's sources, and on the list for a Mac what is quoted. Every command is on the page of commands
and in the manual, and its help is Chinese.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

project, cli = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
docs = project / "docs"
pages = sorted((docs / "guide").glob("*.md")) + [docs / "mac-checklist.md"]
failures = []


def fail(page, what):
    failures.append(f"{page.relative_to(project)}: {what}")


def blocks(text):
    """Words behind the fence, and content."""
    return re.findall(r"^```([^\n`]*)\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def is_shown(shown, printed):
    pattern = "".join("(?:.*\n)*?" if line == "…" else re.escape(line) + "\n" for line in shown.splitlines())
    return re.fullmatch(pattern, printed) is not None


def run_page(page, folder):
    shutil.copy(docs / "sample.srt", folder)
    environment = {"PATH": f"{cli.parent}:/usr/bin:/bin", "HOME": str(folder / "home"), "LC_ALL": "C.UTF-8"}
    printed = None
    for words, content in blocks(page.read_text()):
        match = re.fullmatch(r"sh run(?:=(\d+))?", words)
        if match:
            done = subprocess.run(["bash", "-eo", "pipefail", "-c", content], cwd=folder, env=environment, text=True,
                                  capture_output=True, timeout=60)
            printed = done.stdout
            if done.returncode != int(match[1] or 0):
                fail(page, f"ends with {done.returncode}: {content}{done.stderr}")
            if done.returncode and not done.stderr and not printed:
                fail(page, f"refuses without a word: {content}")
        elif words == "text shown" and (printed is None or not is_shown(content, printed)):
            fail(page, f"prints something else:\n{printed}")


def check_names(page, literals):
    text = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.DOTALL | re.MULTILINE)
    pattern = r"“([^”…/]+…?)”" if page.name == "mac-checklist.md" else r"\*\*([^*]+)\*\*"
    for name in re.findall(pattern, text):
        if not any(name in literal for literal in literals):
            fail(page, f"the window has no “{name}”")
    for target in re.findall(r"\]\(([^)#:]+)\)", text):
        if not (page.parent / target).exists():
            fail(page, f"leads nowhere: {target}")


def check_commands():
    help_text = subprocess.run([cli, "--help"], text=True, capture_output=True, check=True).stdout
    commands = set(re.findall(r"^  ([a-z-]+) {2,}", help_text.split("\n命令:\n")[1], re.MULTILINE))
    for command in commands:
        said = subprocess.run([cli, command, "--help"], text=True, capture_output=True, check=True).stdout
        if foreign := re.findall(r"Needs|Excludes|Subcommands|Positionals|REQUIRED|->| in \[", said):
            failures.append(f"{command} --help: {foreign}")
    page = docs / "guide" / "command-line.md"
    rows = [line.split("|")[1] for line in page.read_text().splitlines() if line.startswith("| `")]
    told = set(re.findall(r"`([a-z-]+)`", "".join(rows)))
    manual = project / "packaging" / "linux" / "lintora-cli.1.in"
    for page, names in ((page, told), (manual, set(re.findall(r"^\.TP.*\n\.B ([a-z-]+)$", manual.read_text(), re.M)))):
        if names != commands:
            fail(page, f"commands differ: {sorted(names ^ commands)}")


literals = [literal for folder in ("ai", "app", "core", "fcp", "store") for source in (project / folder).rglob("*.[ch]*")
            for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', source.read_text())]
for page in pages:
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "home").mkdir()
        run_page(page, pathlib.Path(folder))
    check_names(page, literals)
check_commands()
print("\n".join(failures) or f"{len(pages)} pages")
sys.exit(1 if failures else 0)
