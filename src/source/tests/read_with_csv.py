#!/usr/bin/python3
"""read_with_csv.py FOLDER: reads each *.csv in it with Python's csv module, without a header, and writes beside it
NAME.expected: a line of JSON per row. Ragged rows are brought to the length of the first one."""
import csv
import json
import pathlib
import sys

for path in pathlib.Path(sys.argv[1]).glob("*.csv"):
    with open(path, newline="", encoding="utf-8-sig") as file:
        rows = list(csv.reader(file))
    width = next((len(row) for row in rows if row), 0)
    lines = [json.dumps((row + [""] * width)[:width], ensure_ascii=False, separators=(",", ":"))
             for row in rows if row or width == 1]
    path.with_suffix(".expected").write_text("".join(line + "\n" for line in lines) if width else "empty\n",
                                             encoding="utf-8", newline="")
