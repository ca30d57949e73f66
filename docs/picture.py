#!/usr/bin/env python3
"""picture.py ZEBCFG SAMPLE: runs a short session with zebcfg on a copy of the sample, and draws the terminal as SVG."""

import html
import os
import pathlib
import re
import subprocess
import sys
import tempfile

SESSION = [
    "zebcfg search -LLL '(&(objectclass=zeb-slapdBackend)(zeb-slapdReadOnly=true))' zeb-slapdSuffix",
    "zebcfg set cn=Configuration zeb-slapdPort=70000",
    "zebcfg -n set cn=Configuration zeb-slapdPort=1389",
    "zebcfg set cn=Configuration zeb-slapdPort=1389",
    "zebcfg diff",
]
COLORS = {"1": "#ffffff", "31": "#ff7b72", "32": "#7ee787", "33": "#e3b341", "34": "#79c0ff", "35": "#d2a8ff", "36": "#76e3ea"}
PLAIN, PROMPT, GROUND = "#c9d1d9", "#8b949e", "#0d1117"
LINE, MARGIN, WIDTH = 18, 16, 8.43  # pixels; the width of a character


def spans(line):
    """The pieces of a line with their colours, which ANSI sequences set."""
    color = PLAIN
    for piece in re.split(r"(\x1b\[[0-9;]*[mK])", line):
        if piece.startswith("\x1b"):
            codes = [code for code in re.findall(r"\d+", piece) if code in COLORS]
            color = COLORS[codes[-1]] if codes else PLAIN
        elif piece:
            yield color, piece


def run(command, directory, zebcfg):
    words = command.replace("zebcfg", f"{zebcfg} --color=always", 1)
    environment = {**os.environ, "ZEBCFG_FILE": "zebslapd.conf", "LC_ALL": "C.UTF-8"}
    ended = subprocess.run(
        ["bash", "-c", words + " 2>&1"], cwd=directory, env=environment, capture_output=True, text=True, check=False
    )
    return ended.stdout.rstrip("\n").split("\n") if ended.stdout else []


def svg(lines):
    rows = []
    for number, line in enumerate(lines, 1):
        texts = "".join(f'<tspan fill="{color}">{html.escape(text)}</tspan>' for color, text in spans(line))
        rows.append(f'<text x="{MARGIN}" y="{MARGIN + LINE * number - 5}" xml:space="preserve">{texts}</text>')
    longest = max(len(re.sub(r"\x1b\[[0-9;]*[mK]", "", line)) for line in lines)
    size = (round(2 * MARGIN + WIDTH * longest), 2 * MARGIN + LINE * len(lines))
    return "\n".join(
        [
            f'<svg xmlns="http://www.w3.org/2000/svg" width="{size[0]}" height="{size[1]}" '
            'font-family="ui-monospace, Menlo, Consolas, monospace" font-size="14">',
            f'<rect width="100%" height="100%" rx="8" fill="{GROUND}"/>',
            *rows,
            "</svg>\n",
        ]
    )


def main(zebcfg, sample):
    with tempfile.TemporaryDirectory() as directory:
        target = pathlib.Path(directory, "zebslapd.conf")
        target.write_bytes(pathlib.Path(sample).read_bytes())
        subprocess.run([zebcfg, "-F", str(target), "set", "cn=Configuration", "zeb-slapdPort=389"], check=True)
        lines = []
        for command in SESSION:
            lines += [f"\x1b[1m$ {command}\x1b[0m", *run(command, directory, os.path.realpath(zebcfg))]
    sys.stdout.write(svg(lines))


if __name__ == "__main__":
    main(*sys.argv[1:])
