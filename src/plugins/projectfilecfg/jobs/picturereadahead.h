#pragma once

#include "operationresultcodes.h"
#include "packagedpicture.h"
#include "picturedecoder.h"

#include <QImage>
#include <QString>
#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

/// The pictures of a package, one after the other, for an apply to an online device: while one is sent, the next one is
/// decoded on a thread of its own. What is wrong with that one comes to light at its turn, when it is read as if
/// nothing had been done before. Use it only on the thread that created it.
class PictureReadAhead
{
public:
    struct Picture
    {
        PackagedPicture packaged;
        /// Where it was extracted; empty if that failed, which is no reason to leave the device without it.
        QString extractedPath;
        /// LoadSuccess, or the code with which the apply ends: those of PackagedPicture::open(), and
        /// LoadGalleryFileError if it cannot be decoded.
        LoadResultCode code;
        /// Of that code.
        QString reason;
        /// Null unless it is of the gallery and was read.
        QImage image;
    };

    /// `device` is the package's device description. Extracts the pictures to `folder`, where others expect them.
    PictureReadAhead(PackageReader &package, const Model::Device &device, const QString &folder);

    bool hasNext() const { return m_nNext < m_entries.size(); }
    /// The next one in the archive's order, also if it is outside the gallery.
    Picture next();

private:
    void decodeAhead(const QString &entry);
    LoadResultCode read(PackagedPicture &picture, QImage &image, QString *reason);

    PackageReader &m_package;
    const Model::Device &m_device;
    const QString m_folder;
    PictureDecoder m_decoder;
    QStringList m_entries;
    int m_nNext = 0;
};

} // namespace Internal
} // namespace ProjectFileCfg
