#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

#include "vdocumentmerger_export.h"

// The add-on's process-wide output settings, and the file helpers several widgets and the
// merge engine share. The settings live for the life of the process and start from fixed
// defaults; nothing is read from or written to disk.
class VDOCUMENTMERGER_EXPORT VMEnv : public QObject {
    Q_OBJECT
public:
    // Created on the first call; owned by the module, released by releaseInstance().
    static VMEnv *instance();
    // Deletes the object made by instance() and forgets it; the next instance() makes a new one.
    static void releaseInstance();

    QString outputName() const;
    void setOutputName(const QString &name);
    // Extension of the merged file without its dot: "docx", "doc" or "zyl".
    QString outputSuffix() const;
    void setOutputSuffix(const QString &suffix);
    // 0: the first file's folder, 1: the custom folder, 2: the cloud drive.
    int location() const;
    void setLocation(int location);
    QString customDir() const;
    void setCustomDir(const QString &dir);

    // This process's working tree below the user's private root (see VMWorkFolders); created
    // with the first working path. Empty when no private folder can be made.
    static QString tempRoot();
    // A path in the working folder of the given kind (0 "handycopy", 1 "tempsplit",
    // 2 "mergedest", anything else "misc") whose name no entry of that folder uses yet:
    // "<baseName>_<yyyyMMddHHmmss>.<suffix>", then "(1)", "(2)", ... before the dot.
    // Creates the folder when missing; empty when it cannot. Safe to call from worker threads.
    static QString workFilePath(const QString &baseName, const QString &suffix, int kind);
    static QString workFilePath(const QString &baseName, const QString &suffix, int kind,
                                const QDateTime &now);
    // workFilePath() with filePath's complete base name and suffix, in native separators.
    static QString workCopyPath(const QString &filePath, int kind);
    static QString workFolderName(int kind);
    // Removes the folder and everything in it; a missing folder or a link is left alone.
    static void removeDirRecursively(const QString &path);
    // Reveals the file (or opens the folder) in the desktop's file manager without waiting
    // for it. Returns false only when nothing exists at path.
    static bool showInExplorer(const QString &path);
    // Opens the document with the word processor's launcher from the host's resources
    // folder, or with the desktop's default handler when there is none or it fails to start.
    static void openDocument(const QString &path);

private:
    VMEnv();
    ~VMEnv() override;

    QString m_outputName;
    QString m_outputSuffix;
    int m_location = 0;
    QString m_customDir;
};
