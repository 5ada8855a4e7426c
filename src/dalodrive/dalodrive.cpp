#include "dalodrive.h"

#include <QDir>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryFile>
#include <QUrl>

#include <cerrno>
#include <unistd.h>

#include "dalorecords.h"

Q_LOGGING_CATEGORY(lcDaloDrive, "dalodrive.drive", QtInfoMsg)

using namespace zyl::dalo;

namespace {

const char kTempPrefix[] = ".dalo-part-";
const int kMaxNameTries = 10000;

bool isInside(const QString &path, const QString &base)
{
    return path == base || path.startsWith(base + QLatin1Char('/'));
}

QString numberedName(const QString &name, int n)
{
    if (n == 0)
        return name;
    const QFileInfo info(name);
    const QString base = info.completeBaseName();
    if (base.isEmpty() || info.suffix().isEmpty())
        return QStringLiteral("%1(%2)").arg(name).arg(n);
    return QStringLiteral("%1(%2).%3").arg(base).arg(n).arg(info.suffix());
}

// The data of source in a hidden temporary file of folder; null on failure.
std::unique_ptr<QTemporaryFile> copyToTemporary(const QString &source, const QString &folder)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly))
        return nullptr;
    auto out = std::make_unique<QTemporaryFile>(folder + QLatin1Char('/') + QLatin1String(kTempPrefix)
                                                + QStringLiteral("XXXXXX"));
    if (!out->open())
        return nullptr;
    char chunk[64 * 1024];
    for (;;) {
        const qint64 n = in.read(chunk, sizeof chunk);
        if (n < 0 || (n > 0 && out->write(chunk, n) != n))
            return nullptr;
        if (n == 0)
            break;
    }
    if (!out->flush() || ::fsync(out->handle()) != 0)
        return nullptr;
    out->setPermissions(in.permissions());
    return out;
}

} // namespace

DaloDrive::DaloDrive(const QString &root)
    : m_root(QDir::cleanPath(QDir(root).absolutePath()))
{
}

void DaloDrive::setUser(const QString &userId)
{
    m_user = userId;
    qCInfo(lcDaloDrive) << (userId.isEmpty() ? QStringLiteral("signed out") : QStringLiteral("serving ") + userId);
}

QString DaloDrive::folderName(const QString &userId)
{
    QString name = QString::fromLatin1(QUrl::toPercentEncoding(userId));
    if (name.startsWith(QLatin1Char('.')))
        name.replace(0, 1, QStringLiteral("%2E"));
    return name;
}

int DaloDrive::readRequest(const QByteArray &payload, Request *request)
{
    if (!DaloRecords::fromBytes(payload, &request->frame))
        return DaloResultCode::FailedOnRpc;
    const QString method = QString::fromStdString(request->frame.method);
    const QString type = QString::fromStdString(request->frame.recordType);
    if (type.isEmpty() || type != DaloRecords::argumentType(method))
        return DaloResultCode::FailedOnMethodNoFound;
    const QByteArray record = QByteArray::fromStdString(request->frame.record);
    bool ok = false;
    if (type == QLatin1String("UploadFilesToCloudArg"))
        ok = DaloRecords::fromBytes(record, &request->upload);
    else if (type == QLatin1String("OpenVirtualCloudDiskArg"))
        ok = DaloRecords::fromBytes(record, &request->open);
    else
        ok = DaloRecords::fromBytes(record, &request->cache);
    return ok ? int(DaloResultCode::Succeeded) : int(DaloResultCode::FailedOnInvalidParameters);
}

QByteArray DaloDrive::handle(const QByteArray &payload, QString *folderToReveal)
{
    folderToReveal->clear();
    Request request;
    DaloReplyFrame reply;
    reply.resultCode = readRequest(payload, &request);
    reply.requestId = request.frame.requestId;
    if (reply.resultCode != DaloResultCode::Succeeded) {
        qCWarning(lcDaloDrive) << "refused a request:" << reply.resultCode;
        return DaloRecords::toBytes(reply);
    }
    const std::string &method = request.frame.method;
    if (method == "uploadFilesToCloud") {
        const UploadFilesToCloudResult result = upload(request.upload);
        reply.resultCode = result.resultCode;
        reply.result = DaloRecords::toBytes(result).toStdString();
    } else if (method == "openVirtualCloudDisk") {
        const OpenVirtualCloudDiskResult result = open(request.open);
        reply.resultCode = result.resultCode;
        reply.result = DaloRecords::toBytes(result).toStdString();
        if (result.resultCode == DaloResultCode::Succeeded)
            *folderToReveal = QString::fromStdString(result.localFolder);
    } else {
        const GetCloudFileCachePathResult result = cachePath(request.cache);
        reply.resultCode = result.resultCode;
        reply.result = DaloRecords::toBytes(result).toStdString();
    }
    return DaloRecords::toBytes(reply);
}

int DaloDrive::checkUser(const std::string &userId) const
{
    if (m_user.isEmpty())
        return DaloResultCode::FailedOnNotLogined;
    if (QString::fromStdString(userId) != m_user)
        return DaloResultCode::FailedOnAccountChanged;
    return DaloResultCode::Succeeded;
}

bool DaloDrive::splitCloudPath(const std::string &cloudPath, QStringList *parts)
{
    const QString path = QString::fromStdString(cloudPath);
    if (path.isEmpty() || path.contains(QChar(0)) || path.startsWith(QLatin1Char('/'))
        || path.startsWith(QLatin1Char('\\')) || (path.size() > 1 && path.at(1) == QLatin1Char(':')))
        return false;
    parts->clear();
    const QStringList steps = path.split(QRegularExpression(QStringLiteral("[/\\\\]")), Qt::SkipEmptyParts);
    for (const QString &step : steps) {
        if (step == QLatin1String(".."))
            return false;
        if (step != QLatin1String("."))
            parts->append(step);
    }
    return !parts->isEmpty();
}

int DaloDrive::resolveFolder(const QString &base, const QStringList &parts, bool create, QString *folder)
{
    if (create && !QDir().mkpath(base))
        return DaloResultCode::FailedOnDaloInternalError;
    const QString canonicalBase = QFileInfo(base).canonicalFilePath();
    if (canonicalBase.isEmpty())
        return DaloResultCode::FailedOnInvalidParameters;
    QString current = base;
    for (const QString &part : parts) {
        current += QLatin1Char('/') + part;
        const QFileInfo step(current);
        if (step.isSymLink() || step.exists()) {
            // A link is followed only while it stays inside the drive.
            if (!step.isDir() || !isInside(step.canonicalFilePath(), canonicalBase))
                return DaloResultCode::FailedOnInvalidParameters;
        } else if (!create) {
            return DaloResultCode::FailedOnInvalidParameters;
        } else if (!QDir().mkdir(current)) {
            return DaloResultCode::FailedOnDaloInternalError;
        }
    }
    *folder = current;
    return DaloResultCode::Succeeded;
}

int DaloDrive::copyInto(const QString &source, const QString &folder, QString *finalName)
{
    const std::unique_ptr<QTemporaryFile> temp = copyToTemporary(source, folder);
    if (!temp)
        return DaloResultCode::FailedOnDaloInternalError;
    const QString name = QFileInfo(source).fileName();
    for (int n = 0; n < kMaxNameTries; ++n) {
        const QString candidate = numberedName(name, n);
        // A hard link never replaces an existing name, so two uploads cannot take the same one.
        if (::link(QFile::encodeName(temp->fileName()).constData(),
                   QFile::encodeName(folder + QLatin1Char('/') + candidate).constData()) == 0) {
            *finalName = candidate;
            return DaloResultCode::Succeeded;
        }
        if (errno != EEXIST) {
            qCWarning(lcDaloDrive) << "cannot name the copy of" << source << ":" << qt_error_string(errno);
            return DaloResultCode::FailedOnDaloInternalError;
        }
    }
    return DaloResultCode::FailedOnDaloInternalError;
}

int DaloDrive::userFolder(const std::string &userId, const std::string &cloudPath, bool create,
                          QStringList *parts, QString *folder) const
{
    const int user = checkUser(userId);
    if (user != DaloResultCode::Succeeded)
        return user;
    if (!splitCloudPath(cloudPath, parts))
        return DaloResultCode::FailedOnInvalidParameters;
    return resolveFolder(m_root + QLatin1Char('/') + folderName(m_user), *parts, create, folder);
}

UploadFilesToCloudResult DaloDrive::upload(const UploadFilesToCloudArg &arg)
{
    UploadFilesToCloudResult result;
    bool sourcesOk = !arg.srcFiles.empty();
    for (const std::string &source : arg.srcFiles)
        sourcesOk = sourcesOk && QFileInfo(QString::fromStdString(source)).isFile();
    QStringList parts;
    QString folder;
    result.resultCode = checkUser(arg.userId);
    if (result.resultCode == DaloResultCode::Succeeded && !sourcesOk)
        result.resultCode = DaloResultCode::FailedOnInvalidParameters;
    if (result.resultCode == DaloResultCode::Succeeded)
        result.resultCode = userFolder(arg.userId, arg.cloudPath, arg.createWhenNoExists, &parts, &folder);
    for (const std::string &source : arg.srcFiles) {
        if (result.resultCode != DaloResultCode::Succeeded)
            break;
        QString name;
        result.resultCode = copyInto(QString::fromStdString(source), folder, &name);
        if (result.resultCode == DaloResultCode::Succeeded)
            result.cloudFiles.push_back((parts.join(QLatin1Char('/')) + QLatin1Char('/') + name).toStdString());
    }
    result.__isset.cloudFiles = true;
    return result;
}

OpenVirtualCloudDiskResult DaloDrive::open(const OpenVirtualCloudDiskArg &arg)
{
    OpenVirtualCloudDiskResult result;
    QStringList parts;
    QString folder;
    result.resultCode = userFolder(arg.userId, arg.cloudPath, arg.createWhenNoExists, &parts, &folder);
    if (result.resultCode == DaloResultCode::Succeeded)
        result.__set_localFolder(folder.toStdString());
    return result;
}

GetCloudFileCachePathResult DaloDrive::cachePath(const GetCloudFileCachePathArg &arg)
{
    GetCloudFileCachePathResult result;
    QStringList parts;
    QString driveFolder;
    result.resultCode = userFolder(arg.userId, arg.cloudPath, false, &parts, &driveFolder);
    if (result.resultCode != DaloResultCode::Succeeded)
        return result;
    QString cacheFolder;
    result.resultCode = resolveFolder(m_root + QStringLiteral("/.cache/") + folderName(m_user), parts, true,
                                      &cacheFolder);
    if (result.resultCode == DaloResultCode::Succeeded)
        result.resultCode = syncCache(driveFolder, cacheFolder);
    if (result.resultCode == DaloResultCode::Succeeded)
        result.__set_cacheFolder(cacheFolder.toStdString());
    return result;
}

int DaloDrive::syncCache(const QString &driveFolder, const QString &cacheFolder)
{
    const QDir::Filters filter = QDir::Files | QDir::NoSymLinks;
    QSet<QString> current;
    const QFileInfoList files = QDir(driveFolder).entryInfoList(filter);
    for (const QFileInfo &file : files) {
        current.insert(file.fileName());
        const QFileInfo cached(cacheFolder + QLatin1Char('/') + file.fileName());
        if (cached.exists() && cached.size() == file.size() && cached.lastModified() == file.lastModified())
            continue;
        const std::unique_ptr<QTemporaryFile> temp = copyToTemporary(file.filePath(), cacheFolder);
        if (!temp)
            return DaloResultCode::FailedOnDaloInternalError;
        temp->setFileTime(file.lastModified(), QFileDevice::FileModificationTime);
        QFile::remove(cached.filePath());
        if (!temp->rename(cached.filePath()))
            return DaloResultCode::FailedOnFileLocking;
        temp->setAutoRemove(false);
    }
    const QFileInfoList stale = QDir(cacheFolder).entryInfoList(filter | QDir::Hidden);
    for (const QFileInfo &file : stale) {
        if (!current.contains(file.fileName()))
            QFile::remove(file.filePath());
    }
    return DaloResultCode::Succeeded;
}
