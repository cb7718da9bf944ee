// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>
#include <utils/id.h>

#include <QIcon>
#include <QObject>
#include <QString>

class QWidget;

namespace Core {

/// Stands for the interface common to all modes. User-interface thread only. The virtual functions are in the order of
/// the host's vtable.
class HOST_CORE_EXPORT IMode : public QObject
{
    Q_OBJECT

public:
    explicit IMode(QObject *parent = nullptr);
    ~IMode() override;

    virtual bool hasNavigationBar() const;
    virtual bool hasDeviceToolBar() const;
    virtual bool isVisible() const;
    /// Sets every text again; the host calls it after each change of the language.
    virtual void retranslateUi() = 0;
    /// The mode's own tool bar; null for none.
    virtual QWidget *toolBar() const = 0;
    virtual void updateInputVideo();

    /// Modes are sorted by this value, ascending.
    int priority() const { return m_priority; }
    void setPriority(int priority) { m_priority = priority; }
    HX::Utils::Id id() const { return m_id; }
    void setId(const HX::Utils::Id &id) { m_id = id; }
    QIcon icon() const { return m_icon; }
    void setIcon(const QIcon &icon) { m_icon = icon; }
    QString displayName() const { return m_displayName; }
    void setDisplayName(const QString &name) { m_displayName = name; }
    /// Whether the mode's button can be pressed.
    bool enabled() const { return m_enabled; }
    void setEnabled(bool enabled) { m_enabled = enabled; }
    /// Whether the mode is shown; maintained by its manager.
    void setVisible(bool visible) { m_visible = visible; }

private:
    int m_priority = 0;
    HX::Utils::Id m_id;
    QIcon m_icon;
    QString m_displayName;
    // Most modes want true: false makes a mode that does not set it stand out.
    bool m_enabled = false;
    bool m_visible = true;
};

} // namespace Core
