#pragma once

#include <QObject>
#include <QQueue>
#include <QString>
#include <QTimer>

#include <functional>

class QAbstractButton;
class QDialog;
class QWidget;

/// Works the window as an operator would: presses buttons, answers dialogs, waits and takes pictures.
///
/// What does not go as expected throws a TourFailure. User-interface thread.
class OperatorHand : public QObject
{
    Q_OBJECT

public:
    /// Pictures go into `pictureDirectory`, which must exist.
    OperatorHand(QWidget *window, const QString &pictureDirectory);

    /// What to do with the next modal dialog; several are answered in this order. The waiting dialog is none of them.
    void onNextDialog(const std::function<void(QDialog *)> &act);
    /// The next dialog must be a message box with that text; presses the button with that text.
    void onNextBox(const QString &text, const QString &button);
    /// The next dialog must be a file dialog; enters those paths and accepts.
    void onNextFileDialog(const QStringList &paths);

    /// Presses the visible, enabled button with that text below `parent`.
    void press(QWidget *parent, const QString &text);
    static void press(QAbstractButton *button);

    /// Lets the program run until `condition` holds.
    void waitUntil(const std::function<bool()> &condition, const QString &what, int timeoutMs = 120000);
    /// Lets the program run until every dialog that was announced has come and the waiting dialog is gone.
    void waitUntilIdle();

    /// Saves the window with the dialogs that stand before it as NAME.png.
    void takePicture(const QString &name);

private:
    void answerDialog();

    QWidget *const m_window;
    const QString m_pictureDirectory;
    QQueue<std::function<void(QDialog *)>> m_answers;
    QTimer m_poll;
    bool m_answering = false;
    QString m_failure;
};

/// Says what did not go as expected.
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
