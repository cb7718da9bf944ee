// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/icenterwidget.h>

class QComboBox;
class QLabel;

namespace SettingCfg {

/// The page of the General sub-mode: the language and the program's directories.
class GeneralWidget : public Corvel::Widgets::ICenterWidget
{
    Q_OBJECT

public:
    explicit GeneralWidget(QWidget *parent = nullptr);

    void retranslateUi() override;

private:
    QLabel *m_title;
    QLabel *m_languageLabel;
    QComboBox *m_language;
    QLabel *m_devicesLabel;
    QLabel *m_devices;
    QLabel *m_extractionLabel;
    QLabel *m_extraction;
};

} // namespace SettingCfg
