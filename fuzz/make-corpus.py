#!/usr/bin/env python3
"""Gathers seed inputs for the fuzz targets from the unit tests' texts, the
test data files, the format pages and a sample diary, into one folder per
target. Usage: fuzz/make-corpus.py OUT [SAMPLE.zbd ...]

The result is raw: tools/fuzz.sh --merge keeps only the inputs that add
coverage, into fuzz/corpus/TARGET."""
import hashlib
import os
import re
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SEP = "#" * 72

# Which test files hold the texts of which reader.
SOURCES = {
    "stream": ["LibObject/tests/stream_roundtrip_test.cpp", "LibObject/tests/calcpair_stream_test.cpp"],
    "database": ["LibDatabase/tests/database_file_test.cpp", "LibDiary/tests/records_file_test.cpp"],
    "param": ["LibCore/tests/param_file_test.cpp", "LibCore/tests/param_sources_test.cpp"],
    "spec": ["LibDatabase/tests/object_spec_test.cpp", "LibDatabase/tests/spec_variables_test.cpp",
             "AppTervalonDiary/tests/cli_spec_test.cpp"],
    "datetext": ["LibDate/tests/date_text_test.cpp", "LibDate/tests/date_format_test.cpp",
                 "AppTervalonDiary/tests/cli_date_test.cpp"],
    "duration": ["LibDate/tests/duration_text_test.cpp"],
    "repeat": ["LibDate/tests/repeat_rules_test.cpp", "AppTervalonDiary/tests/cli_repeat_test.cpp"],
}

# Inputs no test spells out: operators, nesting and the edges of numbers.
EXTRA = {
    "expr": ["1+2*3", "(1+2)*3", "'a'+1", "\"x\"+'y'", "10 % 3", "7/2", "1/0", "-(-3)", "!0", "1 && 0 || 1",
             "3 >= 2", "'a' == 'a'", "'b' < 'a'", "true", "false", "2.5e3", "((((1))))", "1e308*10", "-0",
             "0.1+0.2", "'it''s'", "(1"],
    "duration": ["1h 30m", "1:30", "1.5h", "2d", "-1:30", "90m", "1d 2h 3m 4s 5u", "00000001000000@",
                 "0000000100000000000123@", "3 weeks", "soon", ""],
    "param": ["System=PlanDays=14\nSystem=AutoSave=1\n", "# comment\n\nSystem=LastFile=/tmp/a.zbd;/tmp/b.zbd\n",
              "System=garbage\nAutoSave\n\x01\x02 binary\n", "System=A=1\r\nSystem=A=2\r\n"],
}

LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')


def decode(text):
    out = []
    i = 0
    while i < len(text):
        c = text[i]
        if c != "\\" or i + 1 == len(text):
            out.append(c)
            i += 1
            continue
        n = text[i + 1]
        simple = {"n": "\n", "t": "\t", "r": "\r", "0": "\0", "\\": "\\", '"': '"', "'": "'"}
        if n == "x":
            m = re.match(r"[0-9a-fA-F]{1,2}", text[i + 2:])
            out.append(chr(int(m.group(0), 16)) if m else "x")
            i += 2 + (len(m.group(0)) if m else 0)
            continue
        out.append(simple.get(n, n))
        i += 2
    return "".join(out)


def literals(path):
    """Every string literal, adjacent literals joined as the compiler joins them."""
    with open(os.path.join(ROOT, path), encoding="utf-8", errors="replace") as f:
        source = f.read()
    result = []
    last_end = -1
    for m in LITERAL.finditer(source):
        value = decode(m.group(1))
        if last_end >= 0 and source[last_end:m.start()].strip() == "" and result:
            result[-1] += value
        else:
            result.append(value)
        last_end = m.end()
    return result


def stream_objects(text):
    """The text of each top-level object of a data file."""
    objects = []
    lines = text.split("\n")
    i = 0
    while i < len(lines):
        if lines[i].startswith("{"):
            depth = 0
            start = i
            while i < len(lines):
                if lines[i].startswith("{"):
                    depth += 1
                elif lines[i].startswith("}"):
                    depth -= 1
                    if depth == 0:
                        break
                i += 1
            objects.append("\n".join(lines[start:i + 1]) + "\n")
        i += 1
    return objects


def save(out, target, text):
    folder = os.path.join(out, target)
    os.makedirs(folder, exist_ok=True)
    data = text.encode("utf-8", errors="surrogateescape")
    name = hashlib.sha1(data).hexdigest()
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 1
    out = sys.argv[1]
    diaries = [os.path.join(ROOT, "AppTervalonDiary/tests/data/diary_facets.zbd")] + sys.argv[2:]
    for target, files in SOURCES.items():
        for path in files:
            if os.path.exists(os.path.join(ROOT, path)):
                for text in literals(path):
                    if len(text) < 20000:
                        save(out, target, text)
    for target, texts in EXTRA.items():
        for text in texts:
            save(out, target, text)
    spec_texts = [t for path in SOURCES["spec"] for t in literals(path) if ";" in t]
    for i, text in enumerate(spec_texts):
        save(out, "zbo", SEP + "{Spec%d}\n%s" % (i, text if text.endswith("\n") else text + "\n"))
        # The expressions inside $=(...) of the spec texts.
        for m in re.finditer(r"\$=\(([^\"]*)\)", text):
            save(out, "expr", m.group(1))
    save(out, "zbo", "".join(SEP + "{S%d}\n%s\n" % (i, t) for i, t in enumerate(spec_texts[:8])) + SEP + "[Query]\nx\n")
    for path in diaries:
        with open(path, encoding="utf-8", errors="surrogateescape") as f:
            text = f.read()
        save(out, "database", text)
        for obj in stream_objects(text):
            save(out, "stream", obj)
        # The repeat rules and dates that the entries hold.
        for m in re.finditer(r"^!R!(.*)$", text, re.M):
            save(out, "repeat", m.group(1))
    return 0


if __name__ == "__main__":
    sys.exit(main())
