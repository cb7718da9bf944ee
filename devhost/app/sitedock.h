// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/session/session.h>

#include <QHash>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTreeWidget;

/// Shows the simulated site and controls it: plug and unplug devices, arm faults, and see the pictures stored in the
/// hardware.
class SiteDock : public QWidget
{
    Q_OBJECT

public:
    /// The session must outlive the widget.
    explicit SiteDock(Simulation::Session &session, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void retranslate();
    /// Shows changes of the site. Must be called, since the hardware sends no notifications.
    void refresh();
    void refreshDevices();
    void refreshPictures();
    void refreshFaults();
    QString selectedAddress() const;
    void togglePlug();
    void armFault();
    void clearFaults();

    Simulation::Session &m_session;
    QTimer m_refreshTimer;
    QTreeWidget *m_devices = nullptr;
    QPushButton *m_plugButton = nullptr;
    QLabel *m_faultTitle = nullptr;
    QComboBox *m_operation = nullptr;
    QComboBox *m_kind = nullptr;
    QLabel *m_callLabel = nullptr;
    QSpinBox *m_call = nullptr;
    QPushButton *m_armButton = nullptr;
    QPushButton *m_clearButton = nullptr;
    QLabel *m_faultState = nullptr;
    QLabel *m_pictureTitle = nullptr;
    QListWidget *m_pictures = nullptr;
    /// Keyed by QImage::cacheKey(), so that only new pictures are scaled.
    QHash<qint64, QPixmap> m_thumbs;
    /// The pictures in the list, each as its key and name.
    QStringList m_shown;
};
