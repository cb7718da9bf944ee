#pragma once

#include <core/icore.h>

#include <QPlainTextEdit>

namespace Core {

/// The last messages of the log and the operations that ran on devices, oldest first.
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
