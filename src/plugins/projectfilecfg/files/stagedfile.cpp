#include "stagedfile.h"

#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

bool writeWhole(QFile &file, const QByteArray &content)
{
    if (file.write(content) != content.size() || !file.flush())
        return false;
    file.close();
    return file.error() == QFileDevice::NoError;
}

} // namespace Internal
} // namespace ProjectFileCfg
