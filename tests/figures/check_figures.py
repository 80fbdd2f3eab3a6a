#!/usr/bin/python3
"""Recomputes all metrics and lists of a text file's fields and compares them with a dump.

    check_figures.py FILE.csv DUMP.json

Written from docs/definitions.md alone, with Python's csv, unicodedata, statistics and exact fractions, so it shares no
code with the program. The dump: {"rows": n, "fields": [{"name", "type", "rule", "metrics": {column: value},
"percentiles": [[interval, value]], "outliers": [[side, position, value, count, fence]], "values": [[value, count]],
"patterns": [[pattern, count]], "breakdown": {"values", "rows", "forms": [[form, values, rows, example]], "reading",
"fit_values", "fit_rows", "ambiguity", "has_figures"}}]}. Python's csv module does not distinguish an empty quoted cell from an empty one, so the
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


# Type breakdown: forms of values, readings of columns.
CURRENCIES = """
AED AFN ALL AMD ANG AOA ARS AUD AWG AZN BAM BBD BDT BGN BHD BIF BMD BND BOB BRL BSD BTN BWP BYN BZD CAD CDF CHF CLP
CNY COP CRC CUP CVE CZK DJF DKK DOP DZD EGP ERN ETB EUR FJD FKP GBP GEL GHS GIP GMD GNF GTQ GYD HKD HNL HTG HUF IDR
ILS INR IQD IRR ISK JMD JOD JPY KES KGS KHR KMF KPW KRW KWD KYD KZT LAK LBP LKR LRD LSL LYD MAD MDL MGA MKD MMK MNT
MOP MRU MUR MVR MWK MXN MYR MZN NAD NGN NIO NOK NPR NZD OMR PAB PEN PGK PHP PKR PLN PYG QAR RON RSD RUB RWF SAR SBD
SCR SDG SEK SGD SHP SLE SOS SRD SSP STN SVC SYP SZL THB TJS TMT TND TOP TRY TTD TWD TZS UAH UGX USD UYU UZS VED VES
VND VUV WST XAF XCD XCG XOF XPF YER ZAR ZMW ZWG
""".split()
SEPARATORS = " '\u2019\u00a0\u202f\u2009"
MONTHS = "january february march april may june july august september october november december".split()
NAME = "|".join(MONTHS + [m[:3] for m in MONTHS] + ["sept"])
POINTED = "|".join([m for m in MONTHS if len(m) <= 4] + [m[:3] for m in MONTHS] + ["sept"])
WEEKDAYS = "monday tuesday wednesday thursday friday saturday sunday".split()
WEEKDAY = r"(?:(?:%s)(?:, *| +))?" % "|".join(WEEKDAYS + [d[:3] for d in WEEKDAYS])
TIME = (r"(?P<time>(?:, *| +|T)(?P<h>[0-9]{1,2}):(?P<m>[0-9]{2})(?::(?P<s>[0-9]{2})(?:[.,](?P<f>[0-9]{1,9}))?)?"
        r"(?: *(?P<half>am|pm)(?![a-z]))?(?: *(?P<zone>z|utc|gmt|[+-][0-9]{2}(?::?[0-9]{2})?))?)?\Z")
NUMERIC = re.compile(r"(?P<a>[0-9]{1,4})(?P<sep>[/.-])(?P<b>[0-9]{1,2})(?P=sep)(?P<c>[0-9]{1,4})" + TIME, re.I | re.A)
NAMED = [(order, re.compile(WEEKDAY + text + TIME, re.I | re.A)) for order, text in (
    ("DMY", r"(?P<day>[0-9]{1,2})(?P<sep> +|/|-|)(?P<month>%s)(?P<sep2> +|/|-|)(?P<year>[0-9]{4}|[0-9]{2})" % NAME),
    ("MDY", r"(?P<month>(?:%s)\.|%s)(?P<sep> +|/|-)(?P<day>[0-9]{1,2})(?P<sep2>, *| +|/|-)(?P<year>[0-9]{4}|[0-9]{2})"
     % (POINTED, NAME)))]


def day(year, month, day_of_month):
    """Nanoseconds since 0001-01-01; years of two digits need a day that exists in this century."""
    try:
        number = int(year) + (2000 if len(year) == 2 else 0)
        return (datetime.date(number, int(month), int(day_of_month)).toordinal() - 1) * 86400 * 10**9
    except ValueError:
        return None


def time_of(m):
    """What the time of a match adds to the day, or None if there is no such time."""
    if not m["time"]:
        return 0
    if m["time"][0] == "t":
        return None
    hour, minute, second = int(m["h"]), int(m["m"]), int(m["s"] or 0)
    if m["half"]:
        if not 1 <= hour <= 12:
            return None
        hour = hour % 12 + (12 if m["half"].lower() == "pm" else 0)
    zone = (m["zone"] or "").replace(":", "")
    offset = 0
    if zone[:1] in ("+", "-"):
        hours, minutes = int(zone[1:3]), int(zone[3:] or 0)
        if hours > 23 or minutes > 59:
            return None
        offset = (hours * 60 + minutes) * (-1 if zone[0] == "-" else 1)
    if hour > 23 or minute > 59 or second > 59:
        return None
    return ((hour * 60 + minute - offset) * 60 + second) * 10**9 + int((m["f"] or "").ljust(9, "0")[:7] + "00")


def written_date(text):
    """(kind of form, separator, has a time, the instant day first, month first), or None."""
    def found(shape, sep, m, first, second):
        time = time_of(m)
        if time is None or (first is None and second is None):
            return None
        plus = lambda t: None if t is None else t + time
        return shape, sep, bool(m["time"]), plus(first), plus(second)
    m = NUMERIC.match(text)
    if m:
        a, b, c = m["a"], m["b"], m["c"]
        if len(a) == 4:
            return found("Y", m["sep"], m, *[day(a, b, c)] * 2) if len(c) <= 2 else None
        if len(a) > 2 or len(c) not in (2, 4):
            return None
        first, second = day(c, b, a), day(c, a, b)
        if len(c) == 4:
            return found("N", m["sep"], m, first, second)
        return found("short", m["sep"], m, first or (day(a, b, c) if len(a) == 2 else None), second)
    for order, expression in NAMED:
        m = expression.match(text)
        if not m:
            continue
        sep = m["sep"][:1]
        other = m["sep2"][:1]
        if (" " if other == "," else other) != sep or (other == "," and sep != " "):
            return None
        month = [x[:3] for x in MONTHS].index(m["month"].lower()[:3]) + 1
        moment = day(m["year"], month, m["day"])
        return found("short" if len(m["year"]) == 2 else order, sep, m, moment, moment)
    return None


def mark_reading(digits, mark):
    """(value as text with a point, is whole, is grouped) when the number is read with this decimal mark, or None."""
    group = "[%s%s]" % ("," if mark == "." else ".", SEPARATORS)
    m = re.match(r"(?P<g>[1-9][0-9]{0,2}(?P<s>%s)[0-9]{3}(?:(?P=s)[0-9]{3})*)(?:%s(?P<p>[0-9]+))?\Z"
                 % (group, re.escape(mark)), digits)
    if m:
        plain = "".join(c for c in m["g"] if c in "0123456789") + ("." + m["p"] if m["p"] else "")
        return plain, m["p"] is None, True
    if mark == ",":
        if "." in digits or digits.endswith(",") or re.search(",[eE]", digits):
            return None
        digits = digits.replace(",", ".")
    if not REAL.match(digits) or digits[0] in "+-" or not in_range(digits):
        return None
    return digits, bool(INTEGER.match(digits)), False


def written_number(text):
    """(sign, unit, kind of negative mark, reading by point, reading by comma), or None."""
    negative = ""
    signed = False
    if len(text) > 2 and text[0] == "(" and text[-1] == ")":
        text, negative, signed = text[1:-1], " in parentheses", True
    sign = -1 if signed else 1

    def take_sign(text):
        nonlocal sign, signed
        if not signed and text[:1] in ("+", "-", "\u2212"):
            sign, signed, text = 1 if text[0] == "+" else -1, True, text[1:]
        return text
    is_symbol = lambda c: c != "" and unicodedata.category(c) == "Sc"
    blanks = " \u00a0\u202f"
    strip = lambda text, at: text[1:] if at == 0 and text[:1] and text[0] in blanks else \
        text[:-1] if at == -1 and text[-1:] and text[-1] in blanks else text
    text = take_sign(text)
    unit = ""
    if is_symbol(text[:1]):
        unit = text[0]
    elif text[:3] in CURRENCIES and len(text) > 3 and not (text[3].isascii() and text[3].isalpha()):
        unit = text[:3]
    if unit:
        text = take_sign(strip(text[len(unit):], 0))
    else:
        if text[-1:] == "%" or is_symbol(text[-1:]):
            unit = text[-1]
        elif text[-3:] in CURRENCIES and len(text) > 3 and not (text[-4].isascii() and text[-4].isalpha()):
            unit = text[-3:]
        if unit:
            text = strip(text[:-len(unit)], -1)
    if not signed and text[-1:] in ("-", "\u2212") and text[-1:]:
        text, sign, negative = text[:-1], -1, " trailing minus"
    if not text:
        return None
    point, comma = mark_reading(text, "."), mark_reading(text, ",")
    if point is None and comma is None:
        return None
    same = point is not None and comma is not None and not set(text) & set(".,")
    return sign, unit, negative, point, comma, same


def strip_white(text):
    return text.strip("".join(WHITE))


class Form:
    """What a value that is neither empty nor blank may be read as."""

    def __init__(self, value):
        text = strip_white(value)
        self.blanks = " with blanks" if text != value else ""
        self.strict = kind(text)
        self.number = written_number(text) if self.strict in ("I", "R") else None
        self.date = None
        if self.strict == "D":
            self.date = ("iso", "", False, instant_100ns(text), instant_100ns(text))
        elif self.strict == "S":
            self.number = written_number(text)
            self.date = written_date(text) if not self.number else None
        short = self.date and self.date[0] == "short"
        self.padded = bool(re.match(r"0[0-9]+\Z", text))
        self.size = len(text)
        self.family = "N" if self.number else "short" if short else "D" if self.date else \
            "B" if self.strict == "B" else "S"

    def evidence(self):
        """0, 1: only the first or second reading; 2: both, but differently; None: no matter."""
        if self.family == "N":
            point, comma, same = self.number[3:]
            return None if same else 2 if point and comma else 0 if point else 1
        if self.family == "D":
            first, second = self.date[3:]
            return None if first == second else 2 if first is not None and second is not None else \
                0 if first is not None else 1
        return None

    def name(self, mark, order):
        which = self.evidence()
        if self.padded:
            return "digits with leading zeros" + self.blanks
        if self.family in ("S", "short"):
            return "text" if self.family == "S" else "date with two-digit year" + self.blanks
        if self.family == "B":
            return "boolean" + self.blanks
        if self.family == "D":
            shape, sep, time = self.date[:3]
            if shape == "iso":
                return "date" + self.blanks
            join = sep.join
            if shape == "N":
                names = [join(["DD", "MM", "YYYY"]), join(["MM", "DD", "YYYY"])]
                if which in (0, 1):
                    text = names[which]
                elif order is None:
                    text = " or ".join(names)
                else:
                    text = names[order]
            else:
                text = join({"Y": ["YYYY", "MM", "DD"], "DMY": ["DD", "Mon", "YYYY"], "MDY": ["Mon", "DD", "YYYY"]}[shape])
            return "date " + text + (" hh:mm" if time else "") + self.blanks
        _, unit, negative, point, comma, _ = self.number
        by_comma = which == 1 or (which == 2 and mark == ",")
        if which == 2 and mark is None:
            text = "number grouped or decimal"
        else:
            _, whole, grouped = comma if by_comma else point
            text = ("integer" if whole else "real") + (" grouped" if grouped else "") + \
                (" decimal-comma" if by_comma else "")
        return text + (" with " + unit if unit else "") + (negative if self.strict == "S" else "") + self.blanks


def instant_100ns(text):
    return instant(text) // 100 * 100


def choose(evidence):
    """0 or 1, or None without a decision; and whether one is needed."""
    if not sum(evidence):
        return None, False
    proof = evidence[0] + evidence[1]
    if proof and 20 * min(evidence[:2]) <= proof:
        return (0 if evidence[0] > evidence[1] else 1), True
    return None, True


def breakdown(counts, share):
    """The expected breakdown and a function that reads a value that fits, else gives None."""
    telling = {v: c for v, c in counts.items() if strip_white(v) != ""}
    forms = {v: Form(v) for v in telling}
    rows = sum(telling.values())
    kinds = {kind(v) for v in telling}
    code = None if not kinds else kinds.pop() if len(kinds) == 1 else "R" if kinds == {"I", "R"} else "S"
    families = collections.Counter()
    marks, orders = [0, 0, 0], [0, 0, 0]
    for v, f in forms.items():
        families[f.family] += telling[v]
        if f.evidence() is not None:
            (marks if f.family == "N" else orders)[f.evidence()] += telling[v]
    chosen, needed = choose(marks)
    mark = ".," [chosen] if chosen is not None else None if needed and code in ("S", None) else "."
    if code in ("I", "R"):
        mark = "."
    order, order_needed = choose(orders)
    names = collections.defaultdict(lambda: [0, 0, []])
    for v, f in forms.items():
        entry = names[f.name(mark, order)]
        entry[0] += 1
        entry[1] += telling[v]
        entry[2].append(v)
    example = lambda values: min(values, key=lambda v: (-telling[v], by_code_point(v)))
    listed = sorted(([n, e[0], e[1], example(e[2])] for n, e in names.items()), key=lambda e: (-e[2], by_code_point(e[0])))
    result = dict(values=len(telling), rows=rows, forms=listed, reading="", fit_values=0, fit_rows=0, ambiguity="",
                  has_figures=False)
    padded = [f.size for f in forms.values() if f.padded]
    integers = [len(v) for v, f in forms.items() if kind(v) == "I"]
    if padded and min(padded) <= min(integers, default=min(padded)):
        families["N"] = 0
    family = max("NDB", key=lambda f: families[f])  # the first of equals
    if rows == 0 or 2 * families[family] < rows:
        return result, None
    ambiguity = []
    unit = ""
    if family == "N":
        if mark is None:
            ambiguity.append("decimal point or decimal comma")
        by = lambda f: f.number[3] if mark == "." else f.number[4] if mark == "," else f.number[3] or f.number[4]
        units = collections.Counter()
        for v, f in forms.items():
            if f.family == "N" and by(f):
                units[f.number[1]] += telling[v]
        bare = units.pop("", 0)
        top = [u for u in units if units[u] == max(units.values())]
        top.sort(key=lambda u: (len(u), u))
        if len(top) > 1:
            ambiguity.append("unit " + " or ".join(top))
        elif top == ["%"]:
            if units["%"] > bare:
                unit = "%"
            elif units["%"] == bare:
                ambiguity.append("with or without %")
        elif top:
            unit = top[0]

        def read(f):
            if f.family != "N" or (mark is None and not f.number[5]) or \
                    not (f.number[1] == unit or (f.number[1] == "" and unit != "%")):
                return None
            return f.number[4] if mark == "," else f.number[3]
        fitting = {v: f for v, f in forms.items() if read(f)}
        whole = all(read(f)[1] for f in fitting.values())
        words = ["integer" if whole else "real"] + {".": [], ",": ["decimal-comma"], None: ["open-mark"]}[mark] + \
            (["unit=" + unit] if unit else [])
        as_int = whole and all(-2**63 <= f.number[0] * int(read(f)[0]) < 2**63 for f in fitting.values())
        number = lambda f: f.number[0] * (int(read(f)[0]) if as_int else Fraction(float(read(f)[0])))
        value = number
        type_code = "I" if whole else "R"
    elif family == "D":
        def read(f):
            if f.family != "D":
                return None
            first, second = f.date[3:]
            return (first if first == second else None) if order is None else (first, second)[order]
        fitting = {v: f for v, f in forms.items() if read(f) is not None}
        words = ["date"] + ([] if order is None else [["day-first", "month-first"][order]])
        if order is None and order_needed:
            ambiguity.append("day-first or month-first")
        value = read
        type_code = "D"
    else:
        fitting = {v: f for v, f in forms.items() if f.family == "B"}
        words = ["boolean"]
        value = None
        type_code = "B"
    fit_rows = sum(telling[v] for v in fitting)
    result["ambiguity"] = "; ".join(ambiguity)
    if 2 * fit_rows < rows and not ambiguity:
        return result, None
    result.update(reading=" ".join(words), fit_values=len(fitting), fit_rows=fit_rows,
                  has_figures=code == "S" and 100 * fit_rows >= share * rows)
    if not result["has_figures"]:
        return result, None
    if type_code == "B":
        return result, (type_code, {v: strip_white(v).lower() == "true" for v in fitting})
    return result, (type_code, {v: value(f) for v, f in fitting.items()})


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
    parts, fit = breakdown(counts, 95)
    numeric = (fit[0] if fit else code) in ("I", "R")
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
    if fit:
        value = lambda v: fit[1][v]
        telling = list(fit[1])
    taking = sorted(telling if fit or code in ("I", "R", "D", "B") else counts, key=lambda v: (value(v), by_code_point(v)))
    rows = list(itertools.chain.from_iterable([v] * counts[v] for v in taking))
    as_number = value
    if not fit and code == "I" and any(not -2**63 <= int(v) < 2**63 for v in taking):
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
                   mode=max(sorted(counts, key=by_code_point) if fit else taking, key=lambda v: counts[v]) if n else None,
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
                values=values, breakdown=parts, patterns=[[p, c] for p, c in sorted(patterns.items(), key=order)])


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
    if isinstance(expected, dict):
        return isinstance(found, dict) and found.keys() == expected.keys() and \
            all(same(found[key], expected[key]) for key in expected)
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
        for part in ("type", "rule", "percentiles", "outliers", "values", "patterns", "breakdown"):
            compare("%s, %s" % (name, part), field[part], expected[part])
    print("%s: %d results compared, %d differ" % (path, compared, wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
