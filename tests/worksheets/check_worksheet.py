#!/usr/bin/python3
"""Reads every NAME.xls of a folder with an independent reader and compares its cells with NAME.tsv.

    check_worksheet.py xlrd|libreoffice FOLDER

A line of NAME.tsv: sheet, row and column from 0, kind, value. Kind "t" is a text and "h" a bold one, as UTF-8 in
hexadecimal digits; "n" is a number in hexadecimal. Cells that are not listed must be empty. Kind "w" is the width of the
column in digits, and "f" the number of frozen rows; only xlrd checks these. Prints the differences; the exit code is 1
if there are any.
"""
import csv
import math
import os
import struct
import subprocess
import sys

import xlrd
import xlrd.compdoc

SHOWN = 10
MAX_RECORD = 8224


def expected(path):
    """The cells by sheet and position, and the widths and frozen rows: [(sheet, column, kind, value)]."""
    sheets, looks = {}, []
    with open(path, encoding="utf-8") as file:
        for line in file:
            sheet, row, column, kind, value = line.rstrip("\n").split("\t")
            if kind in "wf":
                looks.append((sheet, int(column), kind, int(value)))
                continue
            cell = float.fromhex(value) if kind == "n" else bytes.fromhex(value).decode()
            sheets.setdefault(sheet, {})[int(row), int(column)] = (kind, cell)
    return sheets, looks


def check_records(path):
    """The readers here tolerate longer records, but some spreadsheet programs do not."""
    with open(path, "rb") as file:
        stream = xlrd.compdoc.CompDoc(file.read()).get_named_stream("Workbook")
    at = 0
    while at < len(stream):
        kind, length = struct.unpack_from("<HH", stream, at)
        if length > MAX_RECORD:
            sys.exit("%s: record 0x%04X at %d has %d bytes" % (path, kind, at, length))
        at += 4 + length


def check_looks(book, looks):
    for name, column, kind, value in looks:
        sheet = book.sheet_by_name(name)
        found = sheet.colinfo_map[column].width / 256 if kind == "w" else sheet.panes_are_frozen * sheet.horz_split_pos
        if found != value:
            sys.exit("xlrd: %s: %s is %s, not %s" % (name, "the width" if kind == "w" else "the number of frozen rows", found, value))


def with_xlrd(path, looks):
    book = xlrd.open_workbook(path, formatting_info=True)
    check_records(path)
    check_looks(book, looks)
    sheets = {}
    for sheet in book.sheets():
        cells = sheets[sheet.name] = {}
        for row in range(sheet.nrows):
            for column, cell in enumerate(sheet.row(row)):
                if cell.ctype == xlrd.XL_CELL_TEXT:
                    bold = book.font_list[book.xf_list[cell.xf_index].font_index].weight >= 700
                    cells[row, column] = ("h" if bold else "t", cell.value)
                elif cell.ctype == xlrd.XL_CELL_NUMBER:
                    cells[row, column] = ("n", cell.value)
                elif cell.ctype not in (xlrd.XL_CELL_EMPTY, xlrd.XL_CELL_BLANK):
                    cells[row, column] = ("?", repr(cell))
    return sheets


def with_libreoffice(path, folder):
    # Comma-separated, quotes around every text but no number, UTF-8, every sheet.
    out = "csv:Text - txt - csv (StarCalc):44,34,76,1,,0,true,true,false,false,false,-1"
    subprocess.run(
        ["soffice", "--headless", "-env:UserInstallation=file://" + os.path.join(folder, "profile"),
         "--convert-to", out, "--outdir", folder, path],
        check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=100)
    sheets = {}
    start = os.path.splitext(os.path.basename(path))[0] + "-"
    csv.field_size_limit(1 << 20)
    for name in os.listdir(folder):
        if not (name.startswith(start) and name.endswith(".csv")):
            continue
        cells = sheets[name[len(start):-len(".csv")]] = {}
        with open(os.path.join(folder, name), encoding="utf-8", newline="") as file:
            for row, line in enumerate(csv.reader(file, quoting=csv.QUOTE_NONNUMERIC)):
                for column, cell in enumerate(line):
                    if cell != "":
                        cells[row, column] = ("n" if isinstance(cell, float) else "t", cell)
    return sheets


def shortened(cell):
    text = repr(cell)
    return text if len(text) < 120 else "%s... (%d characters)" % (text[:100], len(cell[1]))


def same_exactly(want, have):
    return want == have


def same_in_csv(want, have):
    """As far as the CSV file says: it has no bold, and LibreOffice writes only 15 digits of a number."""
    if not want or not have:
        return False
    if want[0] == "n":
        return have[0] == "n" and math.isclose(want[1], have[1], rel_tol=1e-14)
    # LibreOffice converts these characters.
    text = want[1].replace("\r\n", "\n").replace("\r", "\n").replace("\0", "?")
    return have == ("t", text)


def differences(name, wanted, found, same):
    """The number of differences; prints the first ones."""
    count = 0
    if sorted(wanted) != sorted(found):
        print("%s: the sheets are %s, not %s" % (name, list(found), list(wanted)))
        count += 1
    for sheet in wanted:
        for place in sorted(set(wanted[sheet]) | set(found.get(sheet, {}))):
            want = wanted[sheet].get(place)
            have = found.get(sheet, {}).get(place)
            if not same(want, have):
                count += 1
                if count <= SHOWN:
                    print("%s: %s, row %d, column %d: %s, not %s"
                          % (name, sheet, place[0] + 1, place[1] + 1, shortened(have), shortened(want)))
    return count


def main():
    reader, folder = sys.argv[1:]
    names = sorted(name[:-len(".xls")] for name in os.listdir(folder) if name.endswith(".xls"))
    cells = wrong = 0
    for name in names:
        path = os.path.join(folder, name)
        wanted, looks = expected(path + ".tsv")
        if reader == "xlrd":
            wrong += differences(name, wanted, with_xlrd(path + ".xls", looks), same_exactly)
        else:
            wrong += differences(name, wanted, with_libreoffice(path + ".xls", folder), same_in_csv)
        cells += sum(len(sheet) for sheet in wanted.values())
    print("%s: %d cells in %d workbooks, %d differences" % (reader, cells, len(names), wrong))
    # Without cells nothing was compared.
    return 1 if wrong or cells == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
