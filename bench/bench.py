#!/usr/bin/env python3
"""Times docmerge against the office's own floor.

Makes N documents of P pages with the office, then times, in one run:
  - docmerge count over the N documents,
  - docmerge merge of pages 2 to 9 of each, and checks that the merged document has
    exactly the chosen pages, in order, by their texts,
  - the floor: the same office loading each source once and saving it once
    (soffice --headless --convert-to over the same files, one office process).
Then, unless told otherwise:
  - the whole merge of four documents of the shared corpus against their floor,
  - single operations of the word-processor server on a 300-page document (zylbench).
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
CORPUS = os.environ.get("VDM_SHARED_DIR", os.path.join(os.path.dirname(ROOT), "shared")) + "/corpus"
CORPUS_MERGE = ["bug65649.docx", "parentinvguid.doc", "toc.docx", "lorem-ipsum.docx"]

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


def floor_time(files, folder, profile):
    """The office loading each file once and saving it once as .docx."""
    os.makedirs(folder)
    start = time.monotonic()
    if office(["--convert-to", DOCX_FILTER, "--outdir", folder] + files, profile) != 0:
        sys.exit("bench: the floor conversion failed")
    return time.monotonic() - start


def page_texts(path, folder, profile):
    """The text of each page of a document, as the office prints it."""
    if office(["--convert-to", "pdf", "--outdir", folder, path], profile) != 0:
        sys.exit("bench: the office could not print %s" % path)
    pdf = os.path.join(folder, os.path.splitext(os.path.basename(path))[0] + ".pdf")
    text = subprocess.run(["pdftotext", "-enc", "UTF-8", pdf, "-"], stdout=subprocess.PIPE, text=True)
    if text.returncode != 0:
        sys.exit("bench: pdftotext failed on %s" % pdf)
    pages = text.stdout.split("\f")
    # pdftotext ends every page with a form feed, the last one included.
    if pages and not pages[-1].strip():
        pages.pop()
    return [" ".join(p.split()) for p in pages]


def check_merged(output, count, first, last, folder, profile):
    """Fails unless the merged document holds exactly pages first..last of each source, in order."""
    pages = page_texts(output, folder, profile)
    wanted = ["Document %d page %d." % (n, p) for n in range(1, count + 1) for p in range(first, last + 1)]
    if len(pages) != len(wanted):
        sys.exit("bench: the merged document has %d pages, expected %d" % (len(pages), len(wanted)))
    for i, (page, want) in enumerate(zip(pages, wanted)):
        if not page.startswith(want):
            sys.exit("bench: merged page %d reads '%s...', expected '%s'" % (i + 1, page[:40], want))


def run_size(docmerge, count, pages, work, profile, env):
    folder = os.path.join(work, "%dx%d" % (count, pages))
    os.makedirs(folder)
    print("making %d documents of %d pages ..." % (count, pages), flush=True)
    sources = make_documents(folder, count, pages, profile)

    counted_s, counted = timed([docmerge, "count"] + sources, env=env)
    lines = counted.stdout.splitlines()
    if counted.returncode != 0 or any(not l.startswith("%d\t" % pages) for l in lines):
        sys.exit("bench: docmerge count failed:\n" + counted.stdout + counted.stderr)

    output = os.path.join(folder, "merged.docx")
    last = min(9, pages)
    merged_s, merged = timed([docmerge, "merge", "-o", output]
                             + ["%s:2-%d" % (s, last) for s in sources], env=env)
    if merged.returncode != 0:
        sys.exit("bench: docmerge merge failed:\n" + merged.stderr)

    floor_s = floor_time(sources, os.path.join(folder, "floor"), profile)
    check_merged(output, count, 2, last, os.path.join(folder, "check"), profile)

    return {"count": count, "pages": pages, "count_s": counted_s, "merge_s": merged_s,
            "floor_s": floor_s}


def run_corpus(docmerge, work, profile, env):
    """Whole merge of real documents, against the office loading and saving the same files."""
    sources = [os.path.join(CORPUS, name) for name in CORPUS_MERGE]
    missing = [s for s in sources if not os.path.isfile(s)]
    if missing:
        sys.exit("bench: corpus documents missing: %s" % ", ".join(missing))
    folder = os.path.join(work, "corpus")
    os.makedirs(folder)
    print("merging %d corpus documents whole ..." % len(sources), flush=True)
    merged_s, merged = timed([docmerge, "merge", "-o", os.path.join(folder, "merged.docx")] + sources, env=env)
    if merged.returncode != 0:
        sys.exit("bench: docmerge merge of the corpus failed:\n" + merged.stderr)
    floor_s = floor_time(sources, os.path.join(folder, "floor"), profile)
    return {"merge_s": merged_s, "floor_s": floor_s}


def run_operations(zylbench, work, profile, env, pages=300):
    """Single operations of the server on a long document."""
    print("timing single operations on a %d-page document ..." % pages, flush=True)
    folder = os.path.join(work, "operations")
    os.makedirs(folder)
    long_doc = make_documents(os.path.join(folder, "long"), 1, pages, profile)[0]
    inserted = make_documents(os.path.join(folder, "short"), 1, 10, profile)[0]
    _, done = timed([zylbench, long_doc, inserted], env=env)
    if done.returncode != 0:
        sys.exit("bench: zylbench failed:\n" + done.stderr)
    rows = []
    for line in done.stdout.splitlines():
        name, seconds, after = line.split("\t")
        rows.append((name, float(seconds), int(after)))
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--sizes", default="20x10,100x10", help="NxP list, comma separated")
    parser.add_argument("--docmerge", default=os.path.join(ROOT, "build", "bin", "docmerge"))
    parser.add_argument("--zylbench", help="the single-operation timer (default: beside docmerge)")
    parser.add_argument("--no-corpus", action="store_true", help="skip the corpus merge")
    parser.add_argument("--no-operations", action="store_true", help="skip the single operations")
    parser.add_argument("--keep", action="store_true", help="keep the made documents")
    args = parser.parse_args()

    if not os.access(args.docmerge, os.X_OK):
        sys.exit("bench: no docmerge at %s (build it, or pass --docmerge)" % args.docmerge)
    zylbench = args.zylbench or os.path.join(os.path.dirname(os.path.abspath(args.docmerge)), "zylbench")
    if not args.no_operations and not os.access(zylbench, os.X_OK):
        sys.exit("bench: no zylbench at %s (build it, or pass --zylbench or --no-operations)" % zylbench)
    if not os.access(OFFICE, os.X_OK):
        sys.exit("bench: the office is not installed (%s)" % OFFICE)
    sizes = []
    for size in args.sizes.split(","):
        if not size:
            continue
        n, p = size.lower().split("x")
        if int(p) < 2:
            sys.exit("bench: documents need at least 2 pages")
        sizes.append((int(n), int(p)))

    work = tempfile.mkdtemp(prefix="docmerge-bench-")
    profile = os.path.join(work, "profile")
    # A working folder of its own: other programs clean the shared one up when they end.
    env = dict(os.environ, TMPDIR=os.path.join(work, "tmp"))
    os.makedirs(env["TMPDIR"])
    try:
        results = [run_size(args.docmerge, n, p, work, profile, env) for n, p in sizes]
        corpus = None if args.no_corpus else run_corpus(args.docmerge, work, profile, env)
        operations = [] if args.no_operations else run_operations(zylbench, work, profile, env)
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
    if corpus:
        print("%-8s %10.2f %10s %10.2f %12s %12.2f" % (
            "corpus", corpus["floor_s"], "-", corpus["merge_s"], "-", corpus["merge_s"] / corpus["floor_s"]))
    if len(results) > 1:
        a, b = results[0], results[-1]
        print("merge time grows %.2fx from %d to %d sources (%.2fx more sources); "
              "per source %.3f s -> %.3f s"
              % (b["merge_s"] / a["merge_s"], a["count"], b["count"], b["count"] / a["count"],
                 a["merge_s"] / a["count"], b["merge_s"] / b["count"]))
    print("merged documents hold exactly the chosen pages, in order")
    if operations:
        print()
        print("%-24s %10s %8s" % ("operation (300 pages)", "s", "pages"))
        for name, seconds, after in operations:
            print("%-24s %10.3f %8d" % (name, seconds, after))


if __name__ == "__main__":
    main()
