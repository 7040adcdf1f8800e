#!/usr/bin/env python3
"""What packages say of the program, held against it: packaging_test.py PROJECT LINTORA-CLI BUILD"""
import pathlib
import plistlib
import re
import subprocess
import sys

project, cli, build = (pathlib.Path(argument) for argument in sys.argv[1:4])
packaging = project / "packaging"
failures = []


def expect(what, is_so):
    if not is_so:
        failures.append(what)


def told(*arguments):
    return subprocess.run([cli, *arguments], text=True, capture_output=True, check=True).stdout


version = re.search(r"^## (\d+\.\d+\.\d+) \(", (project / "CHANGELOG.md").read_text(), re.MULTILINE)[1]
expect("--version is not the change log's", told("--version") == f"lintora-cli {version}\n")

bundle = plistlib.loads((packaging / "macos" / "Info.plist.in").read_bytes())
types = [set(kind["CFBundleTypeExtensions"]) for kind in bundle["CFBundleDocumentTypes"]]
media = set(re.search(r"^读取音频和视频：(.*)$", told("transcribe", "--help"), re.MULTILINE)[1].split())
expect("the bundle opens other media than the program", media in types)
expect("the bundle opens other documents", set().union(*types) - media == {"srt", "fcpxml", "fcpxmld"})
expect("a bundled project is no folder", any("fcpxmld" in kind["CFBundleTypeExtensions"] and kind.get("LSTypeIsPackage")
                                             for kind in bundle["CFBundleDocumentTypes"]))
expect("the bundle's links", bundle["CFBundleURLTypes"][0]["CFBundleURLSchemes"] == ["lintora"])
for key in ("CFBundleVersion", "CFBundleShortVersionString"):
    expect(f"{key} is no version of CMake's", bundle[key].endswith("VERSION_STRING}") or bundle[key].endswith("VERSION}"))
icon = subprocess.run([packaging / "macos" / "make-icns.py", "--check", packaging / "macos" / "local.lintora.workflow.icns"])
expect("the bundle's icon", icon.returncode == 0)

linux = build / "packaging" / "linux"
if linux.exists():
    expect("the store's page tells another version",
           f'<release version="{version}"' in (linux / "local.lintora.workflow.metainfo.xml").read_text())
    entry = (packaging / "linux" / "local.lintora.workflow.desktop").read_text()
    expect("the desktop's links", "x-scheme-handler/lintora;" in entry and "Exec=lintora %U\n" in entry)

print("\n".join(failures) or "packages tell the truth")
sys.exit(1 if failures else 0)
