// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/model_global.h>

#include <QImage>
#include <QSize>
#include <QString>

#include <mutex>

namespace Model {

/// Stands for a picture of a device's gallery: a background or a logo (the host's spelling). Any thread.
class HOST_MODEL_EXPORT Materail
{
public:
    enum MaterailType { Background = 0, Logo = 1 };
    /// Keys of the maps passed to query a material.
    enum ParameterType { Name = 0, Size = 1, Picture = 2 };

    /// `size` is in pixels; `deviceIp` names the device whose hardware holds the picture.
    Materail(MaterailType type, quint8 keyNo, const QString &name, const QSize &size, const QString &deviceIp);

    int getType() const { return m_type; }
    /// The hardware's number of the picture, unique among those of its type.
    quint8 getKeyNo() const { return m_keyNo; }
    QString getName() const { return m_name; }
    QSize size() const { return m_size; }
    QString deviceIp() const { return m_deviceIp; }
    /// The key of the picture in the image store.
    QString imageKey() const;

    void setThumb(const QImage &thumb);
    QImage thumb() const;

private:
    const MaterailType m_type;
    const quint8 m_keyNo;
    const QString m_name;
    const QSize m_size;
    const QString m_deviceIp;
    mutable std::mutex m_mutex;
    QImage m_thumb;
};

} // namespace Model
