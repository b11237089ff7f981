#!/usr/bin/env python3
"""Writes a large task list in the JSON export form, one object a line, for
`tervalon import` and its benchmarks (see doc/import.md).

    tools/make_tasks_json.py N [SEED] > tasks.json

N tasks in projects of 50 (ten projects to an area: "Area 1.Project 3"),
estimates of 1 to 16 hours, one task in five depending on the task before it,
one in three with a due date. The same N and SEED always give the same file.
"""
import datetime
import json
import random
import sys
import uuid


def main(argv):
    if len(argv) < 2 or not argv[1].isdigit():
        sys.stderr.write(__doc__)
        return 1
    count = int(argv[1])
    rng = random.Random(int(argv[2]) if len(argv) > 2 else 1)
    start = datetime.datetime(2026, 11, 23, 9, 0, 0)
    previous = None
    out = sys.stdout
    for i in range(count):
        project = i // 50
        task = {
            "id": i + 1,
            "uuid": str(uuid.UUID(int=rng.getrandbits(128), version=4)),
            "description": "Task %d of project %d" % (i % 50 + 1, project + 1),
            "status": "pending",
            "project": "Area %d.Project %d" % (project // 10 + 1, project + 1),
            "entry": start.strftime("%Y%m%dT%H%M%SZ"),
            "estimate": "PT%dH" % rng.randint(1, 16),
        }
        if i % 3 == 0:
            due = start + datetime.timedelta(days=rng.randint(1, 365), hours=rng.randint(0, 8))
            task["due"] = due.strftime("%Y%m%dT%H%M%SZ")
        if i % 5 == 4 and previous is not None:
            task["depends"] = [previous]
        previous = task["uuid"]
        out.write(json.dumps(task, separators=(",", ":")) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
