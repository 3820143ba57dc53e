#!/usr/bin/env python3
"""A night run over a folder of drawings, with nothing but Python's standard library.

    python3 pipeline.py DRAWINGS REPORTS [--lvxhost PROGRAM] [--jobs N]

It finds the LandXML drawings below DRAWINGS, asks each what it holds, writes a job for every report that it is good for,
runs all jobs and prints a message that is ready to be mailed. In REPORTS lie then the reports, in the folders of their
drawings, and beside them jobs.jsonl, journal.jsonl and summary.json. Started again it runs only what isn't done or whose
drawing changed. It ends with 0 where every report was written.
"""

import argparse
import email.message
import json
import pathlib
import subprocess
import sys


def ask(program, *arguments):
    """The document that `lvxhost … --json` answers with; words go to nobody."""
    run = subprocess.run([program, *arguments, "--json", "--quiet"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                         check=False)
    try:
        return json.loads(run.stdout)
    except json.JSONDecodeError:
        sys.exit(f"{program} {arguments[0]} gave no answer and ended with {run.returncode}")


def jobs_of(drawing, info, out):
    """A job for each report that the drawing is good for."""
    for site in info["sites"]:
        for alignment in site["alignments"]:
            job = {"drawing": str(drawing), "site": site["name"], "alignment": alignment["name"]}
            stem = out / alignment["name"].replace("/", "-")
            design = next((p["name"] for p in alignment["profiles"] if p["kind"] == "design" and p["points"] > 1), None)
            for group in alignment["sampleLineGroups"]:
                name = group["name"].replace("/", "-")
                if design:
                    yield job | {"command": "gls", "profile": design, "group": group["name"],
                                 "out": f"{stem} {name} table"}
                for surface in info["surfaces"]:
                    yield job | {"command": "projection", "group": group["name"], "surface": surface["name"],
                                 "out": f"{stem} {name} {surface['name'].replace('/', '-')}"}
            for group in info["pointGroups"]:
                yield job | {"command": "points", "point-group": group["name"],
                             "out": f"{stem} {group['name'].replace('/', '-')} points"}


def write_jobs(program, drawings, reports):
    """Writes the job file; gives the drawings that can't be read, with what is wrong."""
    unread = []
    with open(reports / "jobs.jsonl", "w", encoding="utf-8") as file:
        for drawing in sorted(drawings.rglob("*.xml")):
            info = ask(program, "info", str(drawing))
            if info["exit"] != 0:
                unread.append((drawing, info["diagnostics"][-1]["text"]))
                continue
            out = reports / drawing.relative_to(drawings).with_suffix("")
            out.mkdir(parents=True, exist_ok=True)
            for job in jobs_of(drawing, info, out):
                file.write(json.dumps(job) + "\n")
    return unread


def mail(answer, unread, reports):
    """What the morning begins with."""
    failed = len(answer["failedJobs"]) + len(answer["brokenJobs"]) + answer["notBegun"]
    message = email.message.EmailMessage()
    message["Subject"] = f"Road reports: {answer['done']} done, {failed} failed, {len(unread)} drawings not read"
    message["From"] = "reports@example.org"
    message["To"] = "roads@example.org"
    lines = [f"{answer['done']} of {answer['count']} reports stand in {reports}, {answer['doneBefore']} of them from before.",
             f"This run wrote {len(answer['written'])} files in {answer['seconds']:.0f} seconds."]
    for job in answer["failedJobs"] + answer["brokenJobs"]:
        lines += ["", f"Job {job['line']}, {job['command']} of {job['drawing']} into {job['out']}:"]
        lines += [f"  {words}" for words in job["diagnostics"]]
    for drawing, words in unread:
        lines += ["", f"{drawing} can't be read:", f"  {words}"]
    message.set_content("\n".join(lines) + "\n")
    return message


def main():
    parser = argparse.ArgumentParser(description="Reports of all drawings in a folder")
    parser.add_argument("drawings", type=pathlib.Path)
    parser.add_argument("reports", type=pathlib.Path)
    parser.add_argument("--lvxhost", default="lvxhost", metavar="PROGRAM")
    parser.add_argument("--jobs", type=int, metavar="N", help="reports at a time")
    given = parser.parse_args()

    given.reports.mkdir(parents=True, exist_ok=True)
    unread = write_jobs(given.lvxhost, given.drawings, given.reports)
    at_once = ["--jobs", str(given.jobs)] if given.jobs else []
    answer = ask(given.lvxhost, "batch", str(given.reports / "jobs.jsonl"), "--overwrite", *at_once,
                 "--journal", str(given.reports / "journal.jsonl"), "--resume",
                 "--summary", str(given.reports / "summary.json"))
    if "count" not in answer:  # not a single job was begun
        sys.exit("\n".join(diagnostic["text"] for diagnostic in answer["diagnostics"]))
    print(mail(answer, unread, given.reports).as_string(), end="")
    return 1 if unread else answer["exit"]


if __name__ == "__main__":
    sys.exit(main())
