// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/icore.h>

#include <QPlainTextEdit>

namespace Core {

/// The last log messages and device operations, oldest first.
class LogView : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit LogView(QWidget *parent = nullptr);

private:
    void addMessage(QtMsgType type, const QString &text);
    void addOperation(ICore::OperatorDeviceType type, const QString &text);
    void addLine(const QString &colour, const QString &kind, const QString &text);
};

} // namespace Core
