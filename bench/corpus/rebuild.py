#!/usr/bin/env python3
"""Rebuilds the large document corpus from manifest.tsv.

Every row names a public repository, a path in it, a commit and the file's SHA-256. The
repositories must be present as bare git directories under MIRRORS/<owner>+<name>/repo (where
the mirror tool puts them); each file is taken with `git show COMMIT:PATH`, checked against its
SHA-256 and written to OUT under the row's file name. Files that are missing or differ are listed
and make the exit status 1; nothing else is written for them.

The "exercises" column was derived from each file's name and first bytes when the corpus was
picked: it says what the file is meant to show, not what was checked.

  python3 bench/corpus/rebuild.py [--manifest bench/corpus/manifest.tsv]
                                  [--mirrors /work/.mirror] [--out /work/corpus-large]
"""
import argparse
import csv
import hashlib
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--manifest", default=os.path.join(HERE, "manifest.tsv"))
    parser.add_argument("--mirrors", default="/work/.mirror")
    parser.add_argument("--out", default="/work/corpus-large")
    args = parser.parse_args()

    os.makedirs(args.out, exist_ok=True)
    written, problems = 0, []
    with open(args.manifest, newline="", encoding="utf-8") as f:
        for row in csv.DictReader(f, delimiter="\t"):
            name = row["file"]
            if os.sep in name or name.startswith("."):
                problems.append("%s: bad file name" % name)
                continue
            git = os.path.join(args.mirrors, row["source_repo"].replace("/", "+"), "repo")
            if not os.path.isdir(git):
                problems.append("%s: no mirror of %s at %s" % (name, row["source_repo"], git))
                continue
            got = subprocess.run(["git", "-C", git, "show", "%s:%s" % (row["commit"], row["path_in_repo"])],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE)
            if got.returncode != 0:
                problems.append("%s: %s" % (name, got.stderr.decode(errors="replace").strip()))
                continue
            if hashlib.sha256(got.stdout).hexdigest() != row["sha256"]:
                problems.append("%s: SHA-256 differs from the manifest" % name)
                continue
            target = os.path.join(args.out, name)
            with open(target + ".part", "wb") as out:
                out.write(got.stdout)
            os.replace(target + ".part", target)
            written += 1
    print("%d files written to %s" % (written, args.out))
    for problem in problems:
        print("missing: " + problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
