#pragma once

#include <QDateTime>
#include <QString>

#include "vdocumentmerger_engine_export.h"

// The working folders, private to the user and to this process.
//
// The system temporary folder is shared by every user of the machine, so working copies go to a
// per-user root, "<temp>/vdocumentmerger-<uid>", mode 0700, used only when it is a real folder
// owned by the user (else a fresh private folder of this process). Below it each process works
// in a tree named after its process id and removes only that tree; trees whose process no longer
// runs are removed when the root is first used. Every function is safe on any thread.
class VDOCUMENTMERGER_ENGINE_EXPORT VMWorkFolders {
public:
    // This process's tree; created with its parents when a working path is asked for. Empty
    // when no private root can be had at all.
    static QString processRoot();
    // The private per-user root (made and checked on the first call).
    static QString userRoot();

    // 0 "handycopy", 1 "tempsplit", 2 "mergedest", anything else "misc".
    static QString folderName(int kind);
    // "<baseName>_<yyyyMMddHHmmss>.<suffix>" in the kind's folder, then "(1)", "(2)", ... before
    // the dot until no entry of that folder has the name. Creates the folder. Empty when the
    // folder cannot be created.
    static QString filePath(const QString &baseName, const QString &suffix, int kind,
                            const QDateTime &now);
    // filePath() now, with filePath's complete base name and suffix, in native separators.
    static QString copyPath(const QString &filePath, int kind);

    // Removes the folder and everything in it; links are removed, never followed.
    static void removeRecursively(const QString &path);
    // Removes this process's tree, and a fallback root of its own with it.
    static void removeProcessRoot();

    // The root under tempPath for the user uid: the usual name when that is (or can be made) a
    // real folder owned by uid with mode 0700, else a fresh private folder beside it. Empty
    // when neither can be made.
    static QString privateRoot(const QString &tempPath, uint uid);
    // Removes the trees below root whose process no longer runs, and one left with this
    // process's id by an earlier process.
    static void removeStaleTrees(const QString &root);
};
