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

} // namespace ProjectFileFacts
} // namespace Internal
} // namespace ProjectFileCfg
