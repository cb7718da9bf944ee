// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <imagestorager/imagestorager_global.h>

#include <QHash>
#include <QImage>
#include <QString>

#include <mutex>

/// Stands for a picture from the host's image store: pixels in the requested format.
class HOST_IMAGESTORAGER_EXPORT StoredImage
{
public:
    StoredImage() = default;
    explicit StoredImage(const QImage &image)
        : m_image(image)
    {}
    bool isNull() const { return m_image.isNull(); }
    QImage toImage() const { return m_image; }

private:
    QImage m_image;
};

/// Stands for the host's store of pictures, keyed by `Model::Materail::imageKey`. Any thread.
class HOST_IMAGESTORAGER_EXPORT ImageStorager
{
public:
    static ImageStorager *instance();

    /// The picture in that format; a null picture if the key is not in the store.
    StoredImage load(const QString &imageKey, QImage::Format format) const;

    void store(const QString &imageKey, const QImage &image);
    void remove(const QString &imageKey);
    void clear();

private:
    mutable std::mutex m_mutex;
    QHash<QString, QImage> m_images;
};
