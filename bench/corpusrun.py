#!/usr/bin/env python3
"""Runs docmerge over a folder of documents and checks each merged page against its source.

For each document: `docmerge count`; then one `docmerge merge` of a small known document
followed by pages 1-2, the known document and a middle page, the known document and the last
page. Source and output are exported to PDF by the office (private profile) and split into
pages by pdftotext; every merged page must carry the text of the source page it comes from
(difflib ratio >= 0.9) and keep its page size and orientation. When the combined merge fails,
each range is merged on its own to find the one at fault. The source must be unchanged
(SHA-256), a failed merge must leave no output, and every step has a time limit after which
its whole process group is killed.

  nice -n 10 python3 bench/corpusrun.py FOLDER [--docmerge build/bin/docmerge] [--jobs 2]
                                        [--work DIR] [--limit N] [--minutes M] [--report FILE.tsv]
                                        [--format source|docx|doc|zyl]

The merged document is written in the source's own format (.odt sources as .zyl) unless
--format names one: a format the source is not in adds the office's conversion to the merge.

Prints a table (documents, counted, merged exactly, merged with differences, failed, hung,
refused, and protected: the documents docmerge's log names as protected, which the merger
refuses by design) and, for each failure, the document, the range and the reason.
"""
import argparse
import concurrent.futures
import difflib
import glob
import hashlib
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OFFICE = "/usr/lib/libreoffice/program/soffice.bin"
SUFFIXES = (".doc", ".docx", ".odt", ".zyl")
SIMILAR = 0.9
SIZE_TOLERANCE = 3.0  # points

KNOWN_FODT = """<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.2"
 office:mimetype="application/vnd.oasis.opendocument.text">
 <office:body><office:text>
  <text:p>Known leading page of the corpus run.</text:p>
  <text:p>Every merged range follows one copy of this page.</text:p>
 </office:text></office:body></office:document>
"""


class Timeout(Exception):
    def __init__(self, message, out=""):
        super().__init__(message)
        self.out = out


def run(cmd, timeout, cwd=None, env=None):
    """Runs cmd in its own process group; on timeout kills the whole group (office included)."""
    proc = subprocess.Popen(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=cwd, env=env,
                            start_new_session=True)
    try:
        out, err = proc.communicate(timeout=timeout)
    except subprocess.TimeoutExpired:
        out = kill_group(proc)
        raise Timeout("%s took more than %d s" % (os.path.basename(cmd[0]), timeout), out.decode(errors="replace"))
    # The office may leave helpers in the group after a crash of its parent.
    kill_group(proc)
    return proc.returncode, out.decode(errors="replace"), err.decode(errors="replace")


def kill_group(proc):
    if proc.pid <= 0:
        return b""
    try:
        os.killpg(proc.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    try:
        return proc.communicate(timeout=10)[0] or b""
    except (subprocess.TimeoutExpired, ValueError):
        return b""


def sha256(path):
    with open(path, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


class Office:
    """soffice --convert-to pdf with one private profile per worker."""

    def __init__(self, profile, timeout):
        self.profile = profile
        self.timeout = timeout

    def to_pdf(self, files, outdir, filter_name="pdf"):
        cmd = [OFFICE, "--headless", "--invisible", "--nologo", "--norestore", "--nolockcheck",
               "-env:UserInstallation=file://" + self.profile, "--convert-to", filter_name,
               "--outdir", outdir] + files
        for _ in range(2):  # a fresh profile exits with 81 once
            code, _, _ = run(cmd, self.timeout)
            if code != 81:
                break
        return code


def pdf_pages(pdf, timeout):
    """Text and size (w, h in points) of every page of pdf."""
    code, info, _ = run(["pdfinfo", "-f", "1", "-l", "100000", pdf], timeout)
    if code != 0:
        return None
    sizes = [(float(w), float(h)) for w, h in
             re.findall(r"^Page\s+\d+ size:\s+([\d.]+) x ([\d.]+)", info, re.M)]
    code, text, _ = run(["pdftotext", "-enc", "UTF-8", pdf, "-"], timeout)
    if code != 0:
        return None
    # A file name field shows the name of the document it is in: the source's in the source, the
    # merged document's once merged. Both read as one word.
    stem = os.path.splitext(pdf)[0]
    for document in glob.glob(glob.escape(stem) + ".*"):
        if document != pdf:
            for own in (document, os.path.basename(document)):
                text = re.sub(r"(?<![\w/.])" + re.escape(own) + r"(?!\w)", " ownfilename ", text)
    texts = text.split("\f")
    return [(texts[i] if i < len(texts) else "", sizes[i]) for i in range(len(sizes))]


def words(text):
    # Numbers compare as one word: page-number and page-count fields rightly show the merged
    # document's values, and on a short page they alone would sink the ratio.
    return ["#" if w.isdigit() else w for w in re.findall(r"\w+", text.lower())]


def similarity(a, b):
    wa, wb = words(a), words(b)
    if not wa and not wb:
        return 1.0
    matcher = difflib.SequenceMatcher(None, wa, wb, autojunk=False)
    if matcher.real_quick_ratio() < SIMILAR or matcher.quick_ratio() < SIMILAR:
        return matcher.quick_ratio()
    ratio = matcher.ratio()
    if ratio >= SIMILAR:
        return ratio
    # pdftotext reads frames, text boxes and table cells in an order that shifts with small moves.
    return max(ratio, difflib.SequenceMatcher(None, sorted(wa), sorted(wb), autojunk=False).ratio())


def same_size(a, b):
    return abs(a[0] - b[0]) <= SIZE_TOLERANCE and abs(a[1] - b[1]) <= SIZE_TOLERANCE


def ranges_for(pages):
    middle = (pages + 1) // 2
    ranges = []
    for r in [(1, min(2, pages)), (middle, middle), (pages, pages)]:
        if r not in ranges:
            ranges.append(r)
    return ranges


def range_text(r):
    return str(r[0]) if r[0] == r[1] else "%d-%d" % r


class Runner:
    def __init__(self, args, known, known_pages):
        self.args = args
        self.known = known
        self.known_pages = known_pages
        self.protected = {}  # path: protection type

    def docmerge(self, argv, timeout):
        env = dict(os.environ, QT_LOGGING_RULES="vzyl.*=true;vzyl.*.debug=false;vdocumentmerger.engine.warning=true")
        return run([self.args.docmerge] + argv, timeout, env=env)

    def prepare(self, paths, slot):
        """Counts and exports a batch of sources with one docmerge and one office; returns
        {path: (pages or None, pdf pages or None)} for those the batch settled."""
        t = self.args.timeout
        done = {}
        counts = {}
        try:
            _, out, err = self.docmerge(["count"] + paths, t + 20 * len(paths))
            self.note_protected(err)
        except Timeout as e:
            out = e.out  # those printed before the hang are settled
        for line in out.splitlines():
            value, _, name = line.partition("\t")
            if name in paths:
                counts[name] = int(value) if value.isdigit() else None
        folder = tempfile.mkdtemp(prefix="batch-", dir=self.args.work)
        copies = []
        for i, path in enumerate(paths):
            copy = os.path.join(folder, "%d%s" % (i, os.path.splitext(path)[1].lower()))
            shutil.copyfile(path, copy)
            copies.append(copy)
        office = Office(os.path.join(self.args.work, "profile-%d" % slot), t + 20 * len(paths))
        try:
            office.to_pdf(copies, folder)
            finished = True
        except Timeout:
            finished = False
        for i, path in enumerate(paths):
            pdf = os.path.join(folder, "%d.pdf" % i)
            pages = pdf_pages(pdf, t) if os.path.exists(pdf) else None
            if path in counts and (pages is not None or finished):
                done[path] = (counts[path], pages)
        shutil.rmtree(folder, ignore_errors=True)
        return done

    def document(self, path, slot, prepared=None):
        """Everything for one document; returns a result dict."""
        name = os.path.basename(path)
        res = {"document": name, "state": "", "pages": None, "pdf_pages": None, "failures": [],
               "seconds": 0.0}
        start = time.monotonic()
        work = tempfile.mkdtemp(prefix="doc-", dir=self.args.work)
        office = Office(os.path.join(self.args.work, "profile-%d" % slot), self.args.timeout)
        before = sha256(path)
        try:
            self.check(path, work, office, res, prepared)
        except Timeout as e:
            res["state"] = "hung"
            res["failures"].append(("-", str(e)))
        finally:
            if sha256(path) != before:
                res["state"] = "failed"
                res["failures"].append(("-", "the source changed"))
            shutil.rmtree(work, ignore_errors=True)
            res["seconds"] = round(time.monotonic() - start, 1)
        return res

    def check(self, path, work, office, res, prepared):
        t = self.args.timeout
        if prepared:
            counted, source = prepared
        else:
            counted, source = self.count_and_export(path, work, office, res)
        res["pages"] = counted
        res["pdf_pages"] = len(source) if source is not None else None

        if counted is None:
            if source is None:
                res["state"] = "refused"  # neither the office nor docmerge reads it
            elif path in self.protected:
                res["state"] = "protected"
                res["failures"].append(("count", "protected (type %s): the merger refuses it by design; the office "
                                        "exports %d page(s)" % (self.protected[path], len(source))))
            else:
                res["state"] = "failed"
                res["failures"].append(("count", "docmerge cannot count it; the office exports %d page(s)"
                                        % len(source)))
            return
        if source is None:
            res["state"] = "failed"
            res["failures"].append(("count", "counted %d page(s) but the office exports no PDF" % counted))
            return
        if counted != len(source):
            res["failures"].append(("count", "counted %d page(s), the office's PDF has %d" % (counted, len(source))))

        ranges = ranges_for(counted)
        merged, reason = self.merge(path, ranges, work, "all")
        if merged is None:
            res["state"] = "failed"
            # Find the range at fault.
            for r in ranges:
                one, why = self.merge(path, [r], work, range_text(r))
                if one is None:
                    res["failures"].append((range_text(r), why))
            if not any(f[0] != "count" for f in res["failures"]):
                res["failures"].append(("all", reason + " (each range alone merges)"))
            return
        office.to_pdf([merged], work)
        out_pdf = os.path.splitext(merged)[0] + ".pdf"
        output = pdf_pages(out_pdf, t) if os.path.exists(out_pdf) else None
        if output is None:
            res["state"] = "failed"
            res["failures"].append(("all", "the office cannot export the merged document"))
            return
        if len(output) == self.expected_pages(ranges):
            self.compare(source, output, ranges, res)
        else:
            # Pages after a range that came out too long or too short would all seem wrong: each
            # range is merged and compared on its own to name the one at fault.
            res["failures"].append(("all", "the output has %d page(s), expected %d"
                                    % (len(output), self.expected_pages(ranges))))
            for r in ranges:
                one, why = self.merge(path, [r], work, range_text(r))
                pages = None
                if one is not None:
                    office.to_pdf([one], work)
                    one_pdf = os.path.splitext(one)[0] + ".pdf"
                    pages = pdf_pages(one_pdf, t) if os.path.exists(one_pdf) else None
                if pages is None:
                    res["failures"].append((range_text(r), why or "the office cannot export the merged document"))
                else:
                    self.compare(source, pages, [r], res, range_text(r))
        if not res["failures"]:
            res["state"] = "exact"
        else:
            res["state"] = "differs"
            if not self.stable_source(path, work, office, source):
                res["failures"].append(("source", "the office's own export of the unchanged source lays its "
                                        "pages out differently from one run to the next"))

    def stable_source(self, path, work, office, source):
        """Whether a second export of the source gives the same pages as the first."""
        again = os.path.join(work, "again" + os.path.splitext(path)[1].lower())
        shutil.copyfile(path, again)
        office.to_pdf([again], work)
        pdf = os.path.splitext(again)[0] + ".pdf"
        pages = pdf_pages(pdf, self.args.timeout) if os.path.exists(pdf) else None
        return pages is not None and len(pages) == len(source) and all(
            similarity(a[0], b[0]) >= SIMILAR for a, b in zip(pages, source))

    def note_protected(self, err):
        """The documents that docmerge's log names as protected: refused by design."""
        for line in err.splitlines():
            found = re.search(r"engine: (.*) is protected \(type (-?\d+)\)", line)
            if found:
                self.protected[found.group(1)] = found.group(2)

    def count_and_export(self, path, work, office, res):
        t = self.args.timeout
        code, out, err = self.docmerge(["count", "--json", path], t)
        self.note_protected(err)
        counted = None
        try:
            files = json.loads(out)["files"]
            if files and files[0]["success"]:
                counted = files[0]["pages"]
        except (ValueError, KeyError, IndexError, TypeError):
            if code not in (0, 1):
                res["failures"].append(("count", "docmerge exited %d: %s" % (code, err.strip()[-200:])))
        src_copy = os.path.join(work, "source" + os.path.splitext(path)[1].lower())
        shutil.copyfile(path, src_copy)
        office.to_pdf([src_copy], work)
        src_pdf = os.path.join(work, "source.pdf")
        return counted, (pdf_pages(src_pdf, t) if os.path.exists(src_pdf) else None)

    def merge(self, path, ranges, work, tag):
        out = os.path.join(work, "merged-%s.%s" % (tag.replace("-", "_"), self.output_format(path)))
        if os.path.exists(out):
            os.remove(out)
        argv = ["merge", "--json", "-o", out]
        for r in ranges:
            argv += [self.known, "%s:%d-%d" % (path, r[0], r[1])]
        code, stdout, err = self.docmerge(argv, self.args.timeout * (1 + len(ranges)))
        if code == 0 and os.path.exists(out):
            return out, ""
        lines = err.strip().splitlines()
        reason = next((l for l in reversed(lines) if l.startswith("docmerge:")), "exit %d" % code)
        server = [l for l in lines if l.startswith("vzyl.server:") and " ready on pipe " not in l
                  and "not ready yet" not in l]
        if server:
            # The first call that failed, or the office the server ended, says why; what the
            # server did after it rarely does.
            signs = (" failed", "killing it", "did not finish", "is gone", "cannot", "nothing was inserted")
            failed = [l for l in server if any(sign in l for sign in signs)]
            reason += " [%s]" % (failed[0] if failed else server[-1])
        engine = [l for l in lines if l.startswith("vdocumentmerger.engine")]
        if engine:
            reason += " [%s]" % engine[0]
        try:
            result = json.loads(stdout)
            if result.get("error") and result["error"] not in reason:
                reason += " (JSON: %s)" % result["error"]
        except ValueError:
            pass
        if os.path.exists(out):
            reason += "; a failed merge left an output"
        return None, reason

    def output_format(self, path):
        """The merged document's format: the source's own unless one is forced. Saving in another
        format is the office's conversion, whose differences are not the merge's."""
        if self.args.format != "source":
            return self.args.format
        suffix = os.path.splitext(path)[1].lower()
        return {".docx": "docx", ".doc": "doc"}.get(suffix, "zyl")

    def expected_pages(self, ranges):
        return sum(self.known_pages + r[1] - r[0] + 1 for r in ranges)

    def compare(self, source, output, ranges, res, label="all"):
        expected = []  # (range, source page or None for the known page)
        for r in ranges:
            expected += [(r, None)] * self.known_pages
            expected += [(r, p) for p in range(r[0], r[1] + 1)]
        if len(output) != len(expected):
            res["failures"].append((label, "the output has %d page(s), expected %d" % (len(output), len(expected))))
        bad = {}
        for i, (r, page) in enumerate(expected):
            if page is None or i >= len(output):
                continue
            if page > len(source):
                bad.setdefault(r, []).append("the office's PDF of the source has no page %d" % page)
                continue
            text, size = output[i]
            src_text, src_size = source[page - 1]
            ratio = similarity(src_text, text)
            if ratio < SIMILAR:
                bad.setdefault(r, []).append("page %d text %.0f %% similar" % (page, 100 * ratio))
            if not same_size(size, src_size):
                bad.setdefault(r, []).append("page %d is %.0fx%.0f pt, source %.0fx%.0f pt"
                                             % (page, size[0], size[1], src_size[0], src_size[1]))
        for r in ranges:
            if r in bad:
                res["failures"].append((range_text(r), "; ".join(bad[r])))


def make_known(work, timeout):
    fodt = os.path.join(work, "known.fodt")
    with open(fodt, "w", encoding="utf-8") as f:
        f.write(KNOWN_FODT)
    office = Office(os.path.join(work, "profile-known"), timeout)
    office.to_pdf([fodt], work, "docx:MS Word 2007 XML")
    known = os.path.join(work, "known.docx")
    office.to_pdf([known], work)
    pages = pdf_pages(os.path.join(work, "known.pdf"), timeout)
    if not os.path.exists(known) or not pages:
        sys.exit("corpusrun: the office cannot make the known document")
    return known, len(pages)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder")
    parser.add_argument("--docmerge", default=os.path.join(ROOT, "build", "bin", "docmerge"))
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--timeout", type=int, default=120, help="seconds per step")
    parser.add_argument("--batch", type=int, default=12, help="sources counted and exported per office start")
    parser.add_argument("--work", default=None)
    parser.add_argument("--limit", type=int, default=0)
    parser.add_argument("--format", default="source", choices=("source", "docx", "doc", "zyl"),
                        help="format of the merged documents (default: the source's own)")
    parser.add_argument("--minutes", type=float, default=0, help="start no new batch after this time")
    parser.add_argument("--report", default=None, help="write one line per document here (TSV)")
    args = parser.parse_args()
    args.docmerge = os.path.abspath(args.docmerge)
    args.work = os.path.abspath(args.work or tempfile.mkdtemp(prefix="corpusrun-"))
    os.makedirs(args.work, exist_ok=True)

    docs = sorted(os.path.join(args.folder, n) for n in os.listdir(args.folder)
                  if n.lower().endswith(SUFFIXES) and os.path.isfile(os.path.join(args.folder, n)))
    # A run cut short by --minutes still covers every kind of document.
    random.Random(11).shuffle(docs)
    if args.limit:
        docs = docs[:args.limit]
    known, known_pages = make_known(args.work, args.timeout)
    runner = Runner(args, known, known_pages)

    results = []
    slots = list(range(args.jobs))

    def in_slot(function, *a):
        slot = slots.pop()
        try:
            return function(*a, slot)
        finally:
            slots.append(slot)

    deadline = time.monotonic() + 60 * args.minutes if args.minutes else None

    def chunk_task(chunk, slot):
        if deadline and time.monotonic() > deadline:
            return [{"document": os.path.basename(p), "state": "not run", "pages": None, "pdf_pages": None,
                     "failures": [], "seconds": 0.0} for p in chunk]
        prepared = runner.prepare(chunk, slot)
        return [runner.document(p, slot, prepared.get(p)) for p in chunk]

    def guarded(chunk, slot):
        try:
            return chunk_task(chunk, slot)
        except Exception as e:  # a fault of the runner itself is reported, not fatal
            return [{"document": os.path.basename(p), "state": "failed", "pages": None, "pdf_pages": None,
                     "failures": [("-", "runner error: %r" % e)], "seconds": 0.0} for p in chunk]

    with concurrent.futures.ThreadPoolExecutor(args.jobs) as pool:
        chunks = [docs[i:i + args.batch] for i in range(0, len(docs), args.batch)]
        for done in pool.map(lambda chunk: in_slot(guarded, chunk), chunks):
            for res in done:
                results.append(res)
                if res["state"] != "not run":
                    print("%-8s %6.1fs  %s  %s" % (res["state"], res["seconds"], res["document"],
                                                   " || ".join("%s: %s" % f for f in res["failures"])),
                          file=sys.stderr, flush=True)

    states = [r["state"] for r in results]
    ran = [r for r in results if r["state"] != "not run"]
    table = [("documents", len(ran)),
             ("counted", sum(1 for r in ran if r["pages"] is not None)),
             ("merged exactly", states.count("exact")),
             ("merged with differences", states.count("differs")),
             ("failed", states.count("failed")),
             ("hung", states.count("hung")),
             ("refused (the office cannot open it either)", states.count("refused")),
             ("protected (refused by design)", states.count("protected"))]
    if len(ran) < len(results):
        table.append(("not run (time limit)", len(results) - len(ran)))
    print("| what | documents |\n|---|---|")
    for what, n in table:
        print("| %s | %d |" % (what, n))
    print("\nseconds: total %.0f, slowest %s" % (sum(r["seconds"] for r in results),
          max(results, key=lambda r: r["seconds"])["document"] if results else "-"))
    print("\n| document | range | reason |\n|---|---|---|")
    for r in results:
        for rng, why in r["failures"]:
            print("| %s | %s | %s |" % (r["document"], rng, why))
    if args.report:
        with open(args.report, "w", encoding="utf-8") as f:
            f.write("document\tstate\tpages\tpdf_pages\tseconds\tfailures\n")
            for r in results:
                f.write("%s\t%s\t%s\t%s\t%s\t%s\n" % (
                    r["document"], r["state"], r["pages"], r["pdf_pages"], r["seconds"],
                    " || ".join("%s: %s" % f for f in r["failures"])))
    return 0 if all(s in ("exact", "refused", "protected", "not run") for s in states) else 1


if __name__ == "__main__":
    sys.exit(main())
