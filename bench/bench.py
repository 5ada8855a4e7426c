#!/usr/bin/env python3
"""Times docmerge against the office's own floor.

Makes N documents of P pages with the office, then times, in one run:
  - docmerge count over the N documents,
  - docmerge merge of pages 2 to 9 of each,
  - the floor: the same office loading each source once and saving it once
    (soffice --headless --convert-to over the same files, one office process).
Prints each time, the ratios to the floor, and how the merge time grows from the
first to the last size. Not run by the tests.

  python3 bench/bench.py [--sizes 20x10,100x10] [--docmerge build/bin/docmerge] [--keep]
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OFFICE = "/usr/lib/libreoffice/program/soffice.bin"
# Named, so that sources and floor are written by the same filter the server saves .docx with.
DOCX_FILTER = "docx:MS Word 2007 XML"

FODT_HEAD = """<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
 office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">
 <office:automatic-styles>
  <style:style style:name="Break" style:family="paragraph">
   <style:paragraph-properties fo:break-before="page"/>
  </style:style>
 </office:automatic-styles>
 <office:body><office:text>
"""
FODT_TAIL = "</office:text></office:body></office:document>\n"


def office(args, profile):
    """Runs the office once with a private profile; a fresh profile asks for one restart."""
    cmd = [OFFICE, "--headless", "--invisible", "--nologo", "--norestore", "--nolockcheck",
           "-env:UserInstallation=file://" + profile] + args
    for _ in range(2):
        done = subprocess.run(cmd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if done.returncode != 81:
            return done.returncode
    return done.returncode


def make_documents(folder, count, pages, profile):
    flat = os.path.join(folder, "flat")
    os.makedirs(flat)
    for n in range(1, count + 1):
        body = []
        for p in range(1, pages + 1):
            style = ' text:style-name="Break"' if p > 1 else ""
            body.append('<text:p%s>Document %d page %d. %s</text:p>\n'
                        % (style, n, p, "Lorem ipsum dolor sit amet. " * 20))
        with open(os.path.join(flat, "doc%03d.fodt" % n), "w", encoding="utf-8") as f:
            f.write(FODT_HEAD + "".join(body) + FODT_TAIL)
    sources = os.path.join(folder, "sources")
    os.makedirs(sources)
    files = sorted(os.path.join(flat, name) for name in os.listdir(flat))
    if office(["--convert-to", DOCX_FILTER, "--outdir", sources] + files, profile) != 0:
        sys.exit("bench: the office could not make the documents")
    made = sorted(os.path.join(sources, name) for name in os.listdir(sources))
    if len(made) != count:
        sys.exit("bench: the office made %d of %d documents" % (len(made), count))
    return made


def timed(cmd, **kwargs):
    start = time.monotonic()
    done = subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **kwargs)
    return time.monotonic() - start, done


def run_size(docmerge, count, pages, work, profile):
    folder = os.path.join(work, "%dx%d" % (count, pages))
    os.makedirs(folder)
    print("making %d documents of %d pages ..." % (count, pages), flush=True)
    sources = make_documents(folder, count, pages, profile)

    counted_s, counted = timed([docmerge, "count"] + sources)
    lines = counted.stdout.splitlines()
    if counted.returncode != 0 or any(not l.startswith("%d\t" % pages) for l in lines):
        sys.exit("bench: docmerge count failed:\n" + counted.stdout + counted.stderr)

    output = os.path.join(folder, "merged.docx")
    last = min(9, pages)
    merged_s, merged = timed([docmerge, "merge", "-o", output]
                             + ["%s:2-%d" % (s, last) for s in sources])
    if merged.returncode != 0:
        sys.exit("bench: docmerge merge failed:\n" + merged.stderr)
    check = subprocess.run([docmerge, "count", output], stdout=subprocess.PIPE, text=True)
    expected = count * (last - 1)
    got = check.stdout.split("\t")[0]
    if got != str(expected):
        print("  warning: the merged document has %s pages, expected %d" % (got, expected))

    floor_dir = os.path.join(folder, "floor")
    os.makedirs(floor_dir)
    start = time.monotonic()
    if office(["--convert-to", DOCX_FILTER, "--outdir", floor_dir] + sources, profile) != 0:
        sys.exit("bench: the floor conversion failed")
    floor_s = time.monotonic() - start

    return {"count": count, "pages": pages, "count_s": counted_s, "merge_s": merged_s,
            "floor_s": floor_s}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sizes", default="20x10,100x10", help="NxP list, comma separated")
    parser.add_argument("--docmerge", default=os.path.join(ROOT, "build", "bin", "docmerge"))
    parser.add_argument("--keep", action="store_true", help="keep the made documents")
    args = parser.parse_args()

    if not os.access(args.docmerge, os.X_OK):
        sys.exit("bench: no docmerge at %s (build it, or pass --docmerge)" % args.docmerge)
    if not os.access(OFFICE, os.X_OK):
        sys.exit("bench: the office is not installed (%s)" % OFFICE)
    sizes = []
    for size in args.sizes.split(","):
        n, p = size.lower().split("x")
        if int(p) < 2:
            sys.exit("bench: documents need at least 2 pages")
        sizes.append((int(n), int(p)))

    work = tempfile.mkdtemp(prefix="docmerge-bench-")
    profile = os.path.join(work, "profile")
    try:
        results = [run_size(args.docmerge, n, p, work, profile) for n, p in sizes]
    finally:
        if args.keep:
            print("documents kept in", work)
        else:
            shutil.rmtree(work, ignore_errors=True)

    print()
    print("%-8s %10s %10s %10s %12s %12s" % ("size", "floor s", "count s", "merge s", "count/floor", "merge/floor"))
    for r in results:
        print("%-8s %10.2f %10.2f %10.2f %12.2f %12.2f" % (
            "%dx%d" % (r["count"], r["pages"]), r["floor_s"], r["count_s"], r["merge_s"],
            r["count_s"] / r["floor_s"], r["merge_s"] / r["floor_s"]))
    if len(results) > 1:
        a, b = results[0], results[-1]
        print("merge time grows %.2fx from %d to %d sources (%.2fx more sources); "
              "per source %.3f s -> %.3f s"
              % (b["merge_s"] / a["merge_s"], a["count"], b["count"], b["count"] / a["count"],
                 a["merge_s"] / a["count"], b["merge_s"] / b["count"]))


if __name__ == "__main__":
    main()
