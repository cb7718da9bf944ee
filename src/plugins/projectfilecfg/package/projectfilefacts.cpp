#include "projectfilefacts.h"

#include <QStandardPaths>

namespace ProjectFileCfg {
namespace Internal {
namespace ProjectFileFacts {

QString documentsPath()
{
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0);
}

QString projectFilesPath()
{
    return documentsPath() +
           QStringLiteral("/%1/%2/ProjectFiles/").arg(QStringLiteral("Velmora"), QStringLiteral("Tarvo"));
}

bool hasPackageExtension(const QString &path)
{
    return path.endsWith(packageExtension, Qt::CaseInsensitive);
}

static QString pictureEntry(QLatin1String folder, int keyNo)
{
    return QStringLiteral("%1/%1_%2.png").arg(folder, QString::number(keyNo));
}

QString backgroundEntry(int keyNo)
{
    return pictureEntry(backgroundFolder, keyNo);
}

QString logoEntry(int keyNo)
{
    return pictureEntry(logoFolder, keyNo);
}

} // namespace ProjectFileFacts
} // namespace Internal
} // namespace ProjectFileCfg
