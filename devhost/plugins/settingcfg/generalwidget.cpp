// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/generalwidget.h>

#include <core/icore.h>
#include <core/language.h>

#include <QComboBox>
#include <QDir>
#include <QGridLayout>
#include <QLabel>
#include <QStyledItemDelegate>

namespace SettingCfg {

GeneralWidget::GeneralWidget(QWidget *parent)
    : ICenterWidget("General.Central", parent)
    , m_title(new QLabel(this))
    , m_languageLabel(new QLabel(this))
    , m_language(new QComboBox(this))
    , m_devicesLabel(new QLabel(this))
    , m_devices(new QLabel(this))
    , m_extractionLabel(new QLabel(this))
    , m_extraction(new QLabel(this))
{
    m_title->setObjectName(QStringLiteral("PageTitle"));
    m_language->setItemDelegate(new QStyledItemDelegate(m_language));
    m_language->setFixedSize(300, 36);
    const QVector<Core::Language> languages = Core::languages();
    for (const Core::Language &language : languages)
        m_language->addItem(language.name, language.code);
    m_languageLabel->setBuddy(m_language);
    connect(m_language, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { Core::switchLanguage(m_language->itemData(index).toString()); });
    for (QLabel *path : {m_devices, m_extraction}) {
        path->setTextFormat(Qt::PlainText);
        path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    for (QLabel *label : {m_languageLabel, m_devicesLabel, m_extractionLabel})
        label->setObjectName(QStringLiteral("QuietText"));

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setHorizontalSpacing(24);
    layout->setVerticalSpacing(18);
    layout->addWidget(m_title, 0, 0, 1, 3);
    layout->addWidget(m_languageLabel, 1, 0);
    layout->addWidget(m_language, 1, 1);
    layout->addWidget(m_devicesLabel, 2, 0);
    layout->addWidget(m_devices, 2, 1, 1, 2);
    layout->addWidget(m_extractionLabel, 3, 0);
    layout->addWidget(m_extraction, 3, 1, 1, 2);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(4, 1);
    GeneralWidget::retranslateUi();
}

void GeneralWidget::retranslateUi()
{
    m_title->setText(tr("General"));
    m_languageLabel->setText(tr("Language"));
    m_devicesLabel->setText(tr("Device configurations"));
    m_extractionLabel->setText(tr("Extracted packages"));
    m_devices->setText(QDir::toNativeSeparators(Core::ICore::deviceConfigFilePath()));
    m_extraction->setText(QDir::toNativeSeparators(Core::ICore::ExtractJsonPath()));
    m_language->setCurrentIndex(m_language->findData(Core::ICore::overrideLanguage()));
}

} // namespace SettingCfg
