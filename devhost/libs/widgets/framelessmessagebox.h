// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/framelessdialog.h>

#include <QMessageBox>

namespace HX {
namespace Widgets {

/// Stands for the host's message boxes.
///
/// The static functions run the box modally and return the pressed button. A box closed without a button returns its
/// escape button: Cancel if it has one, else No, else its only button, else NoButton; never the button that applies
/// something. Its buttons follow a change of the language, and its text can be set while it is open; one that is too
/// long for the screen is scrolled. Assistive technology gets the text as the box's description. User-interface thread
/// only.
class HOST_WIDGETS_EXPORT FramelessMessageBox : public FramelessDialog
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText) // As QMessageBox has it. clazy:exclude=qproperty-without-notify

public:
    enum Kind { Information, Warning, Question };
    Q_ENUM(Kind)

    static QMessageBox::StandardButton information(QWidget *parent, const QString &title, const QString &text,
                                                   QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                                   QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    static QMessageBox::StandardButton warning(QWidget *parent, const QString &title, const QString &text,
                                               QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                               QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    static QMessageBox::StandardButton question(QWidget *parent, const QString &title, const QString &text,
                                                QMessageBox::StandardButtons buttons = QMessageBox::Yes |
                                                                                       QMessageBox::No,
                                                QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

    Kind kind() const;
    QString text() const;
    void setText(const QString &text);
    QMessageBox::StandardButtons standardButtons() const;
    /// The widget of a standard button; null if the box does not have it.
    QAbstractButton *button(QMessageBox::StandardButton which) const;
    /// The answer of a box with these buttons that is closed without one.
    static QMessageBox::StandardButton escapeAnswer(QMessageBox::StandardButtons buttons);

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    FramelessMessageBox(Kind kind, QWidget *parent, const QString &title, const QString &text,
                        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton);
    ~FramelessMessageBox() override;
    static QMessageBox::StandardButton run(Kind kind, QWidget *parent, const QString &title, const QString &text,
                                           QMessageBox::StandardButtons buttons,
                                           QMessageBox::StandardButton defaultButton);

    void retranslateUi();
    void fitToText();
    static QString kindText(Kind kind);
    static QString buttonText(QMessageBox::StandardButton which);

    class Private;
    Private *const d;
};

} // namespace Widgets
} // namespace HX
