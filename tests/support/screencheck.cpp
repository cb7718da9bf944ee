// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "screencheck.h"

#include "pseudolanguage.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDockWidget>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTextDocument>
#include <QToolButton>

#include <functional>

namespace TestSupport {

namespace {

QString described(const QWidget *widget, const QString &text)
{
    return QStringLiteral("%1 %2 \"%3\"")
        .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName(), text);
}

QList<QWidget *> visibleWidgets(QWidget *window)
{
    QList<QWidget *> visible{window};
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        // Dialogs are windows of their own.
        if (widget->isVisible() && widget->window() == window)
            visible.append(widget);
    }
    return visible;
}

/// Every text of the model, with its column's and row's headers; nothing of a row that is not shown.
QStringList textsOf(const QAbstractItemModel *model)
{
    if (!model)
        return QStringList();
    QStringList texts;
    for (int column = 0; column < model->columnCount(); ++column) {
        texts.append(model->headerData(column, Qt::Horizontal).toString());
        for (int row = 0; row < model->rowCount(); ++row) {
            for (const int role : {int(Qt::DisplayRole), int(Qt::AccessibleTextRole)})
                texts.append(model->index(row, column).data(role).toString());
        }
    }
    return texts;
}

/// Without markup and invisible places for line breaks.
QString asShown(QString text)
{
    if (Qt::mightBeRichText(text)) {
        QTextDocument shown;
        shown.setHtml(text);
        text = shown.toPlainText();
    }
    return text.remove(QChar(0x200B));
}

QStringList textsOf(const QWidget *widget)
{
    QStringList texts{widget->toolTip(), widget->statusTip(), widget->accessibleName(),
                      widget->accessibleDescription()};
    if (widget->isWindow() || qobject_cast<const QDockWidget *>(widget))
        texts.append(widget->windowTitle());
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        texts.append(label->text());
    else if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        texts.append(button->text());
    else if (const auto *group = qobject_cast<const QGroupBox *>(widget))
        texts.append(group->title());
    else if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        texts += textsOf(combo->model());
    else if (const auto *view = qobject_cast<const QAbstractItemView *>(widget))
        texts += qobject_cast<const QHeaderView *>(view) ? QStringList() : textsOf(view->model());
    if (const auto *button = qobject_cast<const QToolButton *>(widget)) {
        if (button->menu()) {
            for (const QAction *action : button->menu()->actions())
                texts.append(action->text());
        }
    }
    for (QString &text : texts)
        text = asShown(text);
    texts.removeAll(QString());
    return texts;
}

/// Looks for widgets that have too little room.
class Clipping
{
public:
    explicit Clipping(QWidget *window)
    {
        for (const QWidget *widget : visibleWidgets(window)) {
            if (const auto *label = qobject_cast<const QLabel *>(widget))
                lookAt(label, label->text(), neededBy(label), label->size());
            else if (const auto *button = qobject_cast<const QPushButton *>(widget))
                lookAt(button, button->text(), textSize(button, button->text()), contentsSize(button));
            else if (const auto *tool = qobject_cast<const QToolButton *>(widget))
                lookAt(tool, tool->text(), iconAndTextSize(tool), tool->size());
            else if (const auto *other = qobject_cast<const QAbstractButton *>(widget))
                lookAt(other, other->text(), other->sizeHint(), other->size());
            else if (const auto *combo = qobject_cast<const QComboBox *>(widget))
                lookAt(combo, combo->currentText(), textSize(combo, combo->currentText()), fieldSize(combo));
            else if (const auto *header = qobject_cast<const QHeaderView *>(widget))
                lookAt(header);
            if (widget != window && !isScrolled(widget) && !widget->parentWidget()->rect().contains(widget->geometry()))
                complain(widget, QStringLiteral("outside of its parent"), widget->geometry().size(),
                         widget->parentWidget()->size());
        }
    }

    QStringList complaints() const { return m_complaints; }

private:
    /// What stands in a viewport is scrolled to.
    static bool isScrolled(const QWidget *widget)
    {
        const QWidget *parent = widget->parentWidget();
        return qobject_cast<const QAbstractScrollArea *>(parent) ||
               qobject_cast<const QAbstractScrollArea *>(parent->parentWidget());
    }

    static QSize textSize(const QWidget *widget, const QString &text)
    {
        return widget->fontMetrics().size(Qt::TextShowMnemonic, text);
    }

    static QSize neededBy(const QLabel *label)
    {
        return label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
    }

    /// The style draws a frame around the icon, four pixels and the text.
    static QSize iconAndTextSize(const QToolButton *button)
    {
        if (button->toolButtonStyle() == Qt::ToolButtonTextUnderIcon)
            return button->sizeHint();
        const int frame = 2 * button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button);
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
        return textSize(button, button->text()) + QSize(icon + frame, frame);
    }

    static QSize contentsSize(const QPushButton *button)
    {
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        return button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size();
    }

    /// The field minus the one-pixel margin that the style keeps on each side.
    static QSize fieldSize(const QComboBox *combo)
    {
        QStyleOptionComboBox option;
        option.initFrom(combo);
        option.subControls = QStyle::SC_All;
        option.currentText = combo->currentText();
        const QRect field =
            combo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, combo);
        return field.adjusted(1, 0, -1, 0).size();
    }

    void lookAt(const QWidget *widget, const QString &text, const QSize &needed, const QSize &given)
    {
        if (text.isEmpty() || (needed.width() <= given.width() && needed.height() <= given.height()))
            return;
        if (needed.height() > given.height() || !isInToolTip(widget, text))
            complain(widget, text, needed, given);
    }

    /// In that of the widget or of what it is a part of.
    static bool isInToolTip(const QWidget *widget, const QString &text)
    {
        for (; widget; widget = widget->parentWidget()) {
            if (asShown(widget->toolTip()).contains(text))
                return true;
        }
        return false;
    }

    void lookAt(const QHeaderView *header)
    {
        for (int section = 0; section < header->count(); ++section) {
            const QString text = header->model()->headerData(section, header->orientation()).toString();
            const QSize needed(header->sectionSizeHint(section), header->sizeHint().height());
            lookAt(header, text, needed, QSize(header->sectionSize(section), header->height()));
        }
    }

    void complain(const QWidget *widget, const QString &text, const QSize &needed, const QSize &given)
    {
        const auto in = [](const QSize &size) {
            return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
        };
        m_complaints.append(
            QStringLiteral("%1 needs %2 and has %3").arg(described(widget, text), in(needed), in(given)));
    }

    QStringList m_complaints;
};

} // namespace

QStringList ScreenCheck::texts(QWidget *window)
{
    QStringList texts;
    for (const QWidget *widget : visibleWidgets(window))
        texts += textsOf(widget);
    return texts;
}

QStringList ScreenCheck::untranslated(QWidget *window, const QStringList &ofTheUser)
{
    static const QRegularExpression letter(QStringLiteral("\\p{L}"), QRegularExpression::UseUnicodePropertiesOption);
    QStringList found;
    for (const QWidget *widget : visibleWidgets(window)) {
        for (const QString &text : textsOf(widget)) {
            QString rest = text;
            for (const QString &name : ofTheUser)
                rest.remove(name);
            if (PseudoLanguage::untranslatedIn(rest).contains(letter))
                found.append(described(widget, text));
        }
    }
    return found;
}

QStringList ScreenCheck::clipped(QWidget *window)
{
    return Clipping(window).complaints();
}

} // namespace TestSupport
