#pragma once

#include "operationresultcodes.h"

#include <QSize>
#include <QString>

#include <memory>

class QIODevice;

namespace Model {
class Device;
class Materail;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// A picture of a package as an apply to an online device takes it: where its name puts it, and its content, which
/// comes from the open package alone.
class PackagedPicture
{
public:
    /// `device` is the one that the package describes.
    PackagedPicture(const QString &entry, const Model::Device &device);

    QString entry() const { return m_entry; }
    bool isLogo() const;
    /// In one of the two folders of the gallery: these are sent. Others are extracted, and not used.
    bool isOfGallery() const;
    /// Under which it is sent: "LOGO_7", "BKG_300".
    QString name() const;
    /// The first of the device's pictures of that kind and number; null when there is none, or it is of no gallery.
    std::shared_ptr<Model::Materail> materail() const { return m_materail; }

    /// Takes the content out of the package, and looks at what its header says. A large one goes to a nameless file
    /// in `folder`, if there is room. LoadDecompressFailed when it cannot be read to its end, with the right CRC;
    /// LoadImageContentError when its width or height is below 1; LoadGalleryFileError when it is of the gallery and
    /// has no place there, or another size than its place. Else LoadSuccess, and content() stands at its beginning.
    LoadResultCode open(PackageReader &package, const QString &folder);
    std::shared_ptr<QIODevice> content() const { return m_content; }
    QSize size() const { return m_size; }

private:
    bool takeContent(PackageReader &package, const QString &folder);

    QString m_entry;
    /// Where the entry leads, and so what it is.
    QString m_path;
    std::shared_ptr<Model::Materail> m_materail;
    std::shared_ptr<QIODevice> m_content;
    QSize m_size;
};

} // namespace Internal
} // namespace ProjectFileCfg
