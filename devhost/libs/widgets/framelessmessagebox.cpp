// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/framelessmessagebox.h>

#include <simulation/journal.h>
#include <utils/icon.h>

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMap>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace HX {
namespace Widgets {

namespace {

/// The supported buttons in display order.
const QMessageBox::StandardButton buttonOrder[] = {QMessageBox::Yes, QMessageBox::Ok,     QMessageBox::Retry,
                                                   QMessageBox::No,  QMessageBox::Cancel, QMessageBox::Close};

QString iconName(FramelessMessageBox::Kind kind)
{
    switch (kind) {
    case FramelessMessageBox::Information:
        return QStringLiteral("box_information");
    case FramelessMessageBox::Warning:
        return QStringLiteral("box_warning");
    case FramelessMessageBox::Question:
        break;
    }
    return QStringLiteral("box_question");
}

QString operationName(FramelessMessageBox::Kind kind)
{
    switch (kind) {
    case FramelessMessageBox::Information:
        return Simulation::Operations::informationBox;
    case FramelessMessageBox::Warning:
        return Simulation::Operations::warningBox;
    case FramelessMessageBox::Question:
        return Simulation::Operations::questionBox;
    }
    return QString();
}

/// Lets long paths and names wrap, which contain no blanks.
QString withBreakOpportunities(const QString &text)
{
    const int longestRun = 24;
    const QChar zeroWidthSpace(0x200B);
    QString result;
    int run = 0;
    for (const QChar character : text) {
        run = character.isSpace() ? 0 : run + 1;
        if (run > longestRun && !character.isLowSurrogate() && !character.isMark()) {
            result.append(zeroWidthSpace);
            run = 1;
        }
        result.append(character);
    }
    return result;
}

constexpr int widestText = 520; // pixels

/// The label, or an area that scrolls it if it is higher than half of the screen.
QWidget *fittingTheScreen(QLabel *label)
{
    label->ensurePolished();
    const int highest = label->screen()->availableGeometry().height() / 2;
    if (label->heightForWidth(widestText) <= highest)
        return label;
    auto *area = new QScrollArea(label->parentWidget());
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    area->setWidget(label);
    area->setFixedSize(widestText + area->verticalScrollBar()->sizeHint().width(), highest);
    return area;
}

} // namespace

class FramelessMessageBox::Private
{
public:
    Kind kind = Information;
    QString text;
    QLabel *icon = nullptr;
    QLabel *message = nullptr;
    QMessageBox::StandardButtons buttons;
    QMap<QMessageBox::StandardButton, QPushButton *> buttonWidgets;
    QMessageBox::StandardButton answer = QMessageBox::NoButton;
};

FramelessMessageBox::FramelessMessageBox(Kind kind, QWidget *parent, const QString &title, const QString &text,
                                         QMessageBox::StandardButtons buttons,
                                         QMessageBox::StandardButton defaultButton)
    : FramelessDialog(parent)
    , d(new Private)
{
    d->kind = kind;
    d->buttons = buttons;
    d->answer = escapeAnswer(buttons);
    setObjectName(QStringLiteral("FramelessMessageBox"));
    setWindowTitle(title);
    setBottomBarVisible(false);

    d->icon = new QLabel(this);
    const int iconSize = 32;
    d->icon->setPixmap(Corvel::Utils::Icon::fromTheme(iconName(kind), QString()).pixmap(iconSize, iconSize));
    d->message = new QLabel(this);
    d->message->setObjectName(QStringLiteral("FramelessMessageBoxText"));
    d->message->setTextFormat(Qt::PlainText);
    d->message->setWordWrap(true);
    d->message->setMinimumWidth(320);
    d->message->setMaximumWidth(widestText);
    setText(text);

    auto *messageRow = new QHBoxLayout;
    messageRow->setContentsMargins(24, 24, 24, 24);
    messageRow->setSpacing(16);
    messageRow->addWidget(d->icon, 0, Qt::AlignTop);
    messageRow->addWidget(fittingTheScreen(d->message), 1, Qt::AlignVCenter);

    auto *buttonBar = new QWidget(this);
    buttonBar->setObjectName(QStringLiteral("FramelessDialogBottomBar"));
    buttonBar->setAttribute(Qt::WA_StyledBackground);
    auto *buttonRow = new QHBoxLayout(buttonBar);
    buttonRow->setContentsMargins(16, 10, 16, 10);
    buttonRow->setSpacing(12);
    buttonRow->addStretch();
    for (const QMessageBox::StandardButton which : buttonOrder) {
        if (!buttons.testFlag(which))
            continue;
        auto *button = new QPushButton(buttonBar);
        connect(button, &QPushButton::clicked, this, [this, which]() {
            d->answer = which;
            accept();
        });
        buttonRow->addWidget(button);
        d->buttonWidgets.insert(which, button);
    }

    auto *layout = new QVBoxLayout;
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(messageRow, 1);
    layout->addWidget(buttonBar);
    setLayout(layout);

    retranslateUi();
    // Unless the caller chose a default, Return answers the same as Escape.
    QPushButton *chosen = d->buttonWidgets.value(defaultButton, d->buttonWidgets.value(d->answer));
    if (chosen) {
        chosen->setDefault(true);
        chosen->setFocus();
    }
}

FramelessMessageBox::~FramelessMessageBox()
{
    delete d;
}

void FramelessMessageBox::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    FramelessDialog::changeEvent(event);
}

void FramelessMessageBox::showEvent(QShowEvent *event)
{
    fitToText();
    FramelessDialog::showEvent(event);
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void FramelessMessageBox::retranslateUi()
{
    d->icon->setAccessibleName(kindText(d->kind));
    for (auto button = d->buttonWidgets.cbegin(); button != d->buttonWidgets.cend(); ++button)
        button.value()->setText(buttonText(button.key()));
}

QString FramelessMessageBox::kindText(Kind kind)
{
    switch (kind) {
    case Information:
        return tr("Information");
    case Warning:
        return tr("Warning");
    case Question:
        break;
    }
    return tr("Question");
}

QString FramelessMessageBox::buttonText(QMessageBox::StandardButton which)
{
    switch (which) {
    case QMessageBox::Yes:
        return tr("Yes");
    case QMessageBox::No:
        return tr("No");
    case QMessageBox::Cancel:
        return tr("Cancel");
    case QMessageBox::Retry:
        return tr("Retry");
    case QMessageBox::Close:
        return tr("Close");
    default:
        return tr("OK");
    }
}

QMessageBox::StandardButton FramelessMessageBox::escapeAnswer(QMessageBox::StandardButtons buttons)
{
    for (const QMessageBox::StandardButton harmless : {QMessageBox::Cancel, QMessageBox::No}) {
        if (buttons.testFlag(harmless))
            return harmless;
    }
    for (const QMessageBox::StandardButton only : buttonOrder) {
        if (buttons == only)
            return only;
    }
    return QMessageBox::NoButton;
}

QMessageBox::StandardButton FramelessMessageBox::run(Kind kind, QWidget *parent, const QString &title,
                                                     const QString &text, QMessageBox::StandardButtons buttons,
                                                     QMessageBox::StandardButton defaultButton)
{
    Simulation::Journal::instance()->record(
        operationName(kind),
        {{QStringLiteral("title"), title}, {QStringLiteral("text"), text}, {QStringLiteral("buttons"), int(buttons)}});
    // Deleting the parent while the box is open deletes the box.
    const QPointer<FramelessMessageBox> box =
        new FramelessMessageBox(kind, parent, title, text, buttons, defaultButton);
    box->exec();
    if (!box)
        return escapeAnswer(buttons);
    const QMessageBox::StandardButton answer = box->d->answer;
    delete box;
    return answer;
}

QMessageBox::StandardButton FramelessMessageBox::information(QWidget *parent, const QString &title, const QString &text,
                                                             QMessageBox::StandardButtons buttons,
                                                             QMessageBox::StandardButton defaultButton)
{
    return run(Information, parent, title, text, buttons, defaultButton);
}

QMessageBox::StandardButton FramelessMessageBox::warning(QWidget *parent, const QString &title, const QString &text,
                                                         QMessageBox::StandardButtons buttons,
                                                         QMessageBox::StandardButton defaultButton)
{
    return run(Warning, parent, title, text, buttons, defaultButton);
}

QMessageBox::StandardButton FramelessMessageBox::question(QWidget *parent, const QString &title, const QString &text,
                                                          QMessageBox::StandardButtons buttons,
                                                          QMessageBox::StandardButton defaultButton)
{
    return run(Question, parent, title, text, buttons, defaultButton);
}

FramelessMessageBox::Kind FramelessMessageBox::kind() const
{
    return d->kind;
}

QString FramelessMessageBox::text() const
{
    return d->text;
}

void FramelessMessageBox::setText(const QString &text)
{
    d->text = text;
    d->message->setText(withBreakOpportunities(text));
    d->message->setAccessibleName(text);
    setAccessibleDescription(text);
    if (isVisible())
        fitToText();
}

void FramelessMessageBox::fitToText()
{
    // Each widget around the label answers for it only once its own layout knows the new text.
    for (QWidget *widget = d->message->parentWidget(); widget != parentWidget(); widget = widget->parentWidget()) {
        if (widget->layout())
            widget->layout()->activate();
    }
    // Not adjustSize(), which stops at two thirds of the screen.
    const int width = sizeHint().width();
    resize(width, layout()->totalHeightForWidth(width));
}

QMessageBox::StandardButtons FramelessMessageBox::standardButtons() const
{
    return d->buttons;
}

QAbstractButton *FramelessMessageBox::button(QMessageBox::StandardButton which) const
{
    return d->buttonWidgets.value(which);
}

} // namespace Widgets
} // namespace HX
