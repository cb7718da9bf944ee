// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>
#include <QQueue>
#include <QString>
#include <QTimer>

#include <functional>

class QAbstractButton;
class QDialog;
class QWidget;

/// Drives the window like an operator: presses buttons or keys, answers dialogs, waits and takes screenshots.
///
/// Throws a TourFailure on anything unexpected. User-interface thread.
class OperatorHand : public QObject
{
    Q_OBJECT

public:
    /// Pictures go into `pictureDirectory`, which must exist.
    OperatorHand(QWidget *window, const QString &pictureDirectory);

    /// Handles the next modal dialog with `act`; several calls are used in their order. The waiting dialog does not
    /// count.
    void onNextDialog(const std::function<void(QDialog *)> &act);
    /// Expects a message box with that text and presses the button with that text.
    void onNextBox(const QString &text, const QString &button);
    /// Expects a file dialog, enters those paths and accepts.
    void onNextFileDialog(const QStringList &paths);

    /// Presses the visible, enabled button with that text below `parent`.
    void press(QWidget *parent, const QString &text);
    static void press(QAbstractButton *button);

    /// Presses a key in the topmost window.
    void pressKey(Qt::Key key);
    /// Types into the focused widget of that window.
    void type(const QString &text);
    /// Presses Tab until the widget called `name` (by its label if it has one, else by its accessible name) has the
    /// focus. Each widget on the way must be visible.
    void tabTo(const QString &name);
    /// The number of keys pressed since the last call.
    int takeKeyCount();

    /// Runs the event loop until `condition` holds.
    void waitUntil(const std::function<bool()> &condition, const QString &what, int timeoutMs = 120000);
    /// Runs the event loop until every expected dialog was answered and the waiting dialog is hidden.
    void waitUntilIdle();

    /// Saves the window, with any dialogs in front of it, as NAME.png.
    void takePicture(const QString &name);

private:
    void answerDialog();
    QWidget *frontWindow() const;
    void sendKey(int key, const QString &text);

    QWidget *const m_window;
    const QString m_pictureDirectory;
    QQueue<std::function<void(QDialog *)>> m_answers;
    QTimer m_poll;
    bool m_answering = false;
    QString m_failure;
    int m_keys = 0;
};

/// Describes the first failure.
class TourFailure
{
public:
    explicit TourFailure(const QString &text)
        : m_text(text)
    {}
    QString text() const { return m_text; }

private:
    QString m_text;
};
