// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "imagestorager.h"

#include <simulation/operation.h>

ImageStorager *ImageStorager::instance()
{
    static ImageStorager storager;
    return &storager;
}

StoredImage ImageStorager::load(const QString &imageKey, QImage::Format format) const
{
    const Simulation::Outcome outcome = Simulation::beginOperation(
        Simulation::Operations::loadImage,
        {{QStringLiteral("imageKey"), imageKey}, {QStringLiteral("format"), static_cast<int>(format)}});
    if (outcome != Simulation::Outcome::Done)
        return StoredImage();
    std::unique_lock<std::mutex> locker(m_mutex);
    const QImage image = m_images.value(imageKey);
    locker.unlock();
    return StoredImage(image.convertToFormat(format));
}

void ImageStorager::store(const QString &imageKey, const QImage &image)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_images.insert(imageKey, image);
}

void ImageStorager::remove(const QString &imageKey)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_images.remove(imageKey);
}

void ImageStorager::clear()
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_images.clear();
}
