#!/usr/bin/python3
"""Recomputes all metrics and lists of a text file's fields and compares them with a dump.

    check_figures.py FILE.csv DUMP.json

Written from docs/definitions.md alone, with Python's csv, unicodedata, statistics and exact fractions, so it shares no
code with the program. The dump: {"rows": n, "fields": [{"name", "type", "rule", "metrics": {column: value},
"percentiles": [[interval, value]], "outliers": [[side, position, value, count, fence]], "values": [[value, count]],
"patterns": [[pattern, count]]}]}. Python's csv module does not distinguish an empty quoted cell from an empty one, so the
file must not have any. Prints the differences; the exit code is 1 if there are any.
"""
import collections
import csv
import datetime
import decimal
import itertools
import json
import math
import re
import statistics
import sys
import unicodedata
from fractions import Fraction

INTERVALS = [1, 5, 10, 20, 25, 30, 40, 50, 60, 70, 75, 80, 90, 95, 99]
WHITE = set("\t\n\v\f\r \x85\xa0\u1680\u2028\u2029\u202f\u205f\u3000") | {chr(c) for c in range(0x2000, 0x200B)}
INTEGER = re.compile(r"[+-]?(0|[1-9][0-9]*)\Z")
REAL = re.compile(r"[+-]?((0|[1-9][0-9]*)(\.[0-9]*)?|\.[0-9]+)([eE][+-]?[0-9]+)?\Z")
DATE = re.compile(r"([0-9]{4})-([0-9]{2})-([0-9]{2})(?:[T ]([0-9]{2}):([0-9]{2})(?::([0-9]{2})(?:[.,]([0-9]{1,9}))?)?"
                  r"(Z|[+-][0-9]{2}(?::?[0-9]{2})?)?)?\Z")


def instant(text):
    """Nanoseconds since 0001-01-01, or None."""
    m = DATE.match(text)
    if not m:
        return None
    year, month, day, hour, minute, second = (int(g or 0) for g in m.groups()[:6])
    try:
        moment = datetime.datetime(year, month, day, hour, minute, second)
    except ValueError:
        return None
    offset = 0
    if m[8] and m[8] != "Z":
        hours, minutes = int(m[8][1:3]), int(m[8][3:].strip(":") or 0)
        if hours > 23 or minutes > 59:
            return None
        offset = (hours * 60 + minutes) * (-1 if m[8][0] == "-" else 1)
    seconds = (moment - datetime.datetime(1, 1, 1)) // datetime.timedelta(seconds=1) - offset * 60
    return seconds * 10**9 + int((m[7] or "").ljust(9, "0"))


def in_range(text):
    value = float(text)
    return not math.isinf(value) and (value != 0 or Fraction(text) == 0)


def kind(text):
    if text.lower() in ("true", "false") and text.isascii():
        return "B"
    if INTEGER.match(text):
        return "I" if len(text) < 300 or in_range(text) else "S"
    if REAL.match(text):
        return "R" if in_range(text) else "S"
    return "D" if instant(text) is not None else "S"


def pattern(text):
    def mark(c):
        category = unicodedata.category(c)
        if category in ("Lu", "Lt"):
            return "A"
        return "a" if category[0] == "L" else "9" if category == "Nd" else c
    return "".join(map(mark, text))


def places(text):
    mantissa, _, exponent = text.lower().partition("e")
    return max(0, len(mantissa.partition(".")[2]) - int(exponent or 0))


def type7(ordered, percent):
    h = Fraction((len(ordered) - 1) * percent, 100)
    low = math.floor(h)
    high = min(low + 1, len(ordered) - 1)
    return ordered[low] + (h - low) * (ordered[high] - ordered[low])


def by_code_point(text):
    return text.encode("utf-8")


def figures(column, ordinal):
    """The expected field, with numbers as exact fractions or floats."""
    counts = collections.Counter(column)
    nulls = counts.pop(None, 0)
    present = [v for v in column if v is not None]
    blank = lambda v: v != "" and all(c in WHITE for c in v)
    telling = [v for v in counts if v != "" and not blank(v)]
    kinds = {kind(v) for v in telling}
    code = None if not kinds else kinds.pop() if len(kinds) == 1 else "R" if kinds == {"I", "R"} else "S"
    numeric = code in ("I", "R")
    if code == "I":
        value = int
    elif code == "R":
        value = lambda v: Fraction(float(v))
    elif code == "D":
        value = instant
    elif code == "B":
        value = lambda v: v.lower() == "true"
    else:
        value = by_code_point
    taking = sorted(telling if code in ("I", "R", "D", "B") else counts, key=lambda v: (value(v), by_code_point(v)))
    rows = list(itertools.chain.from_iterable([v] * counts[v] for v in taking))
    as_number = value
    if code == "I" and any(not -2**63 <= int(v) < 2**63 for v in taking):
        as_number = lambda v: Fraction(float(v))
    numbers = [as_number(v) for v in rows] if numeric else []
    n = len(rows)

    def quantile(percent):
        if numeric:
            return type7(numbers, percent)
        return rows[max(math.ceil(Fraction(percent * n, 100)), 1) - 1]

    patterns = collections.Counter()
    for v, count in counts.items():
        patterns[pattern(v)] += count
    share = lambda part: Fraction(100 * part, len(column)) if column else None
    words = {"S": "text", "I": "integer", "R": "real", "D": "date", "B": "boolean", None: None}
    metrics = dict(count=len(column), unique_count=len(counts), null_count=nulls, non_null_count=len(present),
                   blank_count=sum(map(blank, present)), pattern_count=len(patterns),
                   minimum_value=taking[0] if n else None, maximum_value=taking[-1] if n else None,
                   minimum_length=min(map(len, present), default=None),
                   maximum_length=max(map(len, present), default=None),
                   mean=Fraction(sum(numbers), n) if numeric else None, median=quantile(50) if n else None,
                   mode=max(taking, key=lambda v: counts[v]) if n else None,
                   standard_deviation=None, standard_error=None, defined_type=None, defined_length=None,
                   ordinal=ordinal, primary_key=None, nullable=None,
                   decimal_precision=max(map(places, taking)) if code == "R" else None, actual_type=words[code],
                   unique_percent=share(len(counts)), percent_null=share(nulls))
    if numeric and n > 1:
        variance = Fraction(statistics.variance(map(Fraction, numbers)))
        with decimal.localcontext() as context:
            context.prec = 40
            deviation = (decimal.Decimal(variance.numerator) / decimal.Decimal(variance.denominator)).sqrt()
        if deviation <= decimal.Decimal(sys.float_info.max):
            metrics["standard_deviation"] = float(deviation)
            metrics["standard_error"] = float(deviation) / math.sqrt(n)

    def fence(v):
        if not numeric:
            return 0
        q1, q3 = type7(numbers, 25), type7(numbers, 75)
        beyond = lambda k: as_number(v) < q1 - k * (q3 - q1) or as_number(v) > q3 + k * (q3 - q1)
        return 2 if beyond(3) else 1 if beyond(Fraction(3, 2)) else 0

    outliers = [[side, i, v, counts[v], fence(v)]
                for side, some in (("L", taking[:10]), ("H", taking[::-1][:10])) for i, v in enumerate(some)]
    order = lambda item: (-item[1], by_code_point(item[0]))
    values = [[v, c] for v, c in sorted(counts.items(), key=order)]
    if nulls:
        values.insert(sum(c > nulls for _, c in values), [None, nulls])
    rule = "" if not n else "linear interpolation (R type 7)" if numeric else "nearest rank"
    return dict(type=code or "", rule=rule, metrics=metrics,
                percentiles=[["%d%%" % p, quantile(p)] for p in INTERVALS] if n else [], outliers=outliers,
                values=values, patterns=[[p, c] for p, c in sorted(patterns.items(), key=order)])


def same(found, expected):
    """Compares texts and counts exactly, computed numbers up to a few units in the last place of a double."""
    if isinstance(expected, (Fraction, float)):
        if found is None:
            return False
        if isinstance(expected, Fraction) and expected.denominator == 1 and abs(expected) < 2**53:
            return Fraction(str(found)) == expected
        return math.isclose(float(found), float(expected), rel_tol=1e-13, abs_tol=1e-300)
    if isinstance(expected, list):
        return isinstance(found, list) and len(found) == len(expected) and all(map(same, found, expected))
    if isinstance(expected, int) and isinstance(found, str):
        return found == str(expected)
    return found == expected


def read(path):
    with open(path, newline="", encoding="utf-8-sig") as file:
        rows = list(csv.reader(file))
    head = rows[0]
    body = [row for row in rows[1:] if row or len(head) == 1]
    body = [(row + [""] * len(head))[:len(head)] for row in body]
    return head, [[row[i] if row[i] != "" else None for row in body] for i in range(len(head))]


def main(path, dump_path):
    names, columns = read(path)
    with open(dump_path, encoding="utf-8") as file:
        dump = json.load(file)
    wrong = compared = 0

    def compare(where, found, expected):
        nonlocal wrong, compared
        compared += 1
        if not same(found, expected):
            wrong += 1
            print("%s: found %.300r, expected %.300r" % (where, found, expected))

    compare("columns", [field["name"] for field in dump["fields"]], names)
    compare("rows", dump["rows"], len(columns[0]))
    for i, (name, column, field) in enumerate(zip(names, columns, dump["fields"])):
        expected = figures(column, i + 1)
        for metric, value in expected["metrics"].items():
            compare("%s, %s" % (name, metric), field["metrics"][metric], value)
        for part in ("type", "rule", "percentiles", "outliers", "values", "patterns"):
            compare("%s, %s" % (name, part), field[part], expected[part])
    print("%s: %d results compared, %d differ" % (path, compared, wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
