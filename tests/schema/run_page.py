"""Runs the commands of a page in a folder that has its files, and compares what they write with what
the page shows. Its lines of C++ are in page_test.cpp.

usage: run_page.py TOOL PAGE [--update]      --update writes the outputs into the page
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
FILE = re.compile(r"^`([\w.-]+)`:\n\n```\w+\n(.*?)^```$", re.M | re.S)
CONSOLE = re.compile(r"^```console\n(.*?)^```$", re.M | re.S)


def output_of(command, folder, tool):
    path = f"{tool.parent}{os.pathsep}{os.environ['PATH']}"
    done = subprocess.run(["sh", "-c", command], cwd=folder, env={**os.environ, "PATH": path},
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    return done.stdout.decode()


def main():
    tool, page = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
    text = page.read_text()
    runs = 0

    with tempfile.TemporaryDirectory() as folder:
        for name, content in FILE.findall(text):
            (pathlib.Path(folder) / name).write_text(content)

        def shown(match):
            nonlocal runs
            lines = []
            for line in match.group(1).splitlines():
                if line.startswith("$ "):
                    runs += 1
                    lines += [line, *output_of(line[2:], folder, tool).splitlines()]
            return "```console\n" + "".join(line.rstrip() + "\n" for line in lines) + "```"

        expected = CONSOLE.sub(shown, text)

    compiled = [line.strip() for line in (HERE / "page_test.cpp").read_text().splitlines()]
    for snippet in re.findall(r"^```cpp\n(.*?)^```$", text, re.M | re.S):
        for line in snippet.splitlines():
            if line.strip() not in compiled:
                sys.exit(f"{page.name} shows C++ that page_test.cpp does not have:\n{line}")

    if "--update" in sys.argv[3:]:
        page.write_text(expected)
    if runs == 0:
        sys.exit(f"{page.name}: no command was found")
    if expected != text:
        for shows, writes in zip(text.splitlines(), expected.splitlines()):
            if shows != writes:
                sys.exit(f"{page.name} shows\n{shows}\nbut the command writes\n{writes}")
        sys.exit(f"{page.name}: the commands write more or fewer lines than it shows")


main()
