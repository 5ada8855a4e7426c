#pragma once

#include <QByteArray>
#include <QString>

#include "cloudargs_types.h"
#include "daloipc_types.h"

// The drives behind the drive service: under the drive root, one folder per user id, and
// beside them (in ".cache") the cache folders. Requests are served only for the signed-in
// user, and nothing is written outside that user's folders.
class DaloDrive {
public:
    // One request frame and the record it carries; only the record of its method is filled.
    struct Request {
        zyl::dalo::DaloRequestFrame frame;
        zyl::dalo::UploadFilesToCloudArg upload;
        zyl::dalo::OpenVirtualCloudDiskArg open;
        zyl::dalo::GetCloudFileCachePathArg cache;
    };

    explicit DaloDrive(const QString &root);

    // Empty: nobody is signed in.
    void setUser(const QString &userId);
    QString user() const { return m_user; }

    // Answers one request frame with a reply frame. folderToReveal gets the drive folder of a
    // successful open request, else it is cleared.
    QByteArray handle(const QByteArray &payload, QString *folderToReveal);

    // Reads a request frame and its record. Returns Succeeded, or the code a reply carries:
    // FailedOnRpc for an unreadable frame, FailedOnMethodNoFound for an unknown method or a
    // record of another method, FailedOnInvalidParameters for an unreadable record.
    static int readRequest(const QByteArray &payload, Request *request);

    zyl::dalo::UploadFilesToCloudResult upload(const zyl::dalo::UploadFilesToCloudArg &arg);
    zyl::dalo::OpenVirtualCloudDiskResult open(const zyl::dalo::OpenVirtualCloudDiskArg &arg);
    zyl::dalo::GetCloudFileCachePathResult cachePath(const zyl::dalo::GetCloudFileCachePathArg &arg);

    // The folder name of a user id: percent-encoded, never starting with a dot.
    static QString folderName(const QString &userId);

private:
    int checkUser(const std::string &userId) const;
    // The cloud path as a list of folder names; false when it is empty, absolute or climbs.
    static bool splitCloudPath(const std::string &cloudPath, QStringList *parts);
    // Walks parts down from base, creating missing folders when create is set. Fails with
    // FailedOnInvalidParameters when a step is missing or leads outside base.
    static int resolveFolder(const QString &base, const QStringList &parts, bool create, QString *folder);
    // The signed-in user's folder for a cloud path, after the user and the path were checked.
    int userFolder(const std::string &userId, const std::string &cloudPath, bool create, QStringList *parts,
                   QString *folder) const;
    // Copies source into folder under its own name or the next free "name(n).ext";
    // the file appears under its final name only when complete.
    static int copyInto(const QString &source, const QString &folder, QString *finalName);
    static int syncCache(const QString &driveFolder, const QString &cacheFolder);

    QString m_root;
    QString m_user;
};
