// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"
#include <support/panelfixture.h>

#include <udiskselectwidget.h>

#include <QAccessible>
#include <QHelpEvent>
#include <QListWidget>
#include <QLocale>
#include <QSet>
#include <QTextDocument>
#include <QToolTip>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

QString nameOf(QObject *object)
{
    return QAccessible::queryAccessibleInterface(object)->text(QAccessible::Name);
}

QString labelOf(QWidget *widget)
{
    for (const auto &relation : QAccessible::queryAccessibleInterface(widget)->relations(QAccessible::Label))
        return relation.first->text(QAccessible::Name);
    return QString();
}

QStringList cellNames(QTableWidget *table, int tableRow)
{
    QAccessibleTableInterface *cells = QAccessible::queryAccessibleInterface(table)->tableInterface();
    QStringList names;
    for (int column = 0; column < cells->columnCount(); ++column)
        names.append(cells->cellAt(tableRow, column)->text(QAccessible::Name));
    return names;
}

QStringList headerNames(QTableWidget *table)
{
    QAccessibleTableInterface *cells = QAccessible::queryAccessibleInterface(table)->tableInterface();
    QStringList names;
    for (int column = 0; column < cells->columnCount(); ++column)
        names.append(cells->columnDescription(column));
    return names;
}

} // namespace

/// What the panel tells a screen reader.
class TstPanelAccessibility : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void selector_is_labelled_device();
    void table_and_its_headers_are_named();
    void row_buttons_are_named_with_their_project();
    void names_follow_an_edit();
    void names_follow_the_language();
    void every_control_has_a_name_of_its_own();
    void list_of_disks_is_named_by_its_title();
    void tool_tip_shows_what_does_not_fit();
    void tool_tip_without_comment_begins_with_the_path();
    void tool_tip_shows_markup_as_it_is();

private:
    /// What appears where the pointer rests on the first row.
    QString toolTipAt(int column) const
    {
        QTableWidget *table = m_panel->table();
        const QPoint point = table->visualItemRect(table->item(0, column)).center();
        QHelpEvent rest(QEvent::ToolTip, point, table->viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(table->viewport(), &rest);
        return QToolTip::text();
    }
    QStringList buttonNames(const QString &project) const
    {
        QStringList names;
        for (QToolButton *button : m_panel->rowButtons(m_panel->names().indexOf(project)))
            names.append(nameOf(button));
        return names;
    }
};

void TstPanelAccessibility::selector_is_labelled_device()
{
    QCOMPARE(labelOf(m_panel->deviceCombo()), QStringLiteral("Device"));
}

void TstPanelAccessibility::table_and_its_headers_are_named()
{
    QCOMPARE(nameOf(m_panel->table()), QStringLiteral("Project file"));
    QCOMPARE(headerNames(m_panel->table()),
             QStringList({QStringLiteral("Project file"), QStringLiteral("Comment"), QStringLiteral("Operations")}));
}

void TstPanelAccessibility::row_buttons_are_named_with_their_project()
{
    // "%1" must stay what it is.
    const QStringList projects{QStringLiteral("Evening show"), QStringLiteral("50%1 & more")};
    for (const QString &project : projects)
        list(project);
    for (const QString &project : projects) {
        QCOMPARE(buttonNames(project),
                 QStringList({QStringLiteral("Edit, ") + project, QStringLiteral("Apply, ") + project,
                              QStringLiteral("Save as, ") + project, QStringLiteral("Delete, ") + project}));
        QCOMPARE(cellNames(m_panel->table(), m_panel->names().indexOf(project)),
                 QStringList({project, QStringLiteral("a comment"), QStringLiteral("Operations, ") + project}));
    }
}

void TstPanelAccessibility::names_follow_an_edit()
{
    list(QStringLiteral("Matinee"));
    expectProperties(QStringLiteral("Evening show"), QString());
    clickRow(QStringLiteral("Matinee"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    settle();
    QCOMPARE(buttonNames(QStringLiteral("Evening show")).value(1), QStringLiteral("Apply, Evening show"));
}

void TstPanelAccessibility::names_follow_the_language()
{
    list(QStringLiteral("Evening show"));
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    settle();
    QCOMPARE(labelOf(m_panel->deviceCombo()), QStringLiteral("设备"));
    QCOMPARE(nameOf(m_panel->table()), QStringLiteral("项目文件"));
    QCOMPARE(headerNames(m_panel->table()),
             QStringList({QStringLiteral("项目文件"), QStringLiteral("备注"), QStringLiteral("操作")}));
    QCOMPARE(buttonNames(QStringLiteral("Evening show")),
             QStringList({QStringLiteral("编辑, Evening show"), QStringLiteral("应用, Evening show"),
                          QStringLiteral("另存为, Evening show"), QStringLiteral("删除, Evening show")}));
    QCOMPARE(cellNames(m_panel->table(), 0).at(2), QStringLiteral("操作, Evening show"));
}

void TstPanelAccessibility::every_control_has_a_name_of_its_own()
{
    list(QStringLiteral("Matinee"));
    list(QStringLiteral("Evening show"));
    QSet<QString> names;
    for (QWidget *control : m_panel->widget->findChildren<QWidget *>()) {
        if (control->focusPolicy() == Qt::NoFocus || !control->isVisible())
            continue;
        const QString name = control == m_panel->deviceCombo() ? labelOf(control) : nameOf(control);
        QVERIFY2(!name.isEmpty(), control->metaObject()->className());
        QVERIFY2(!names.contains(name), qPrintable(name));
        names.insert(name);
    }
    QCOMPARE(names.count(), 1 + 5 + 2 * 4);
}

void TstPanelAccessibility::list_of_disks_is_named_by_its_title()
{
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    const UDiskSelectWidget dialog(nullptr);
    const QString name = nameOf(dialog.findChild<QListWidget *>());
    QCOMPARE(name, QCoreApplication::translate("UDiskSelectWidget", "Please select the destination U disk"));
    QVERIFY(name != QStringLiteral("Please select the destination U disk"));
}

void TstPanelAccessibility::tool_tip_shows_what_does_not_fit()
{
    const QString name = QString(60, QLatin1Char('W'));
    const QString comment = QString(100, QLatin1Char('M'));
    list(name, comment);
    const QFileInfo file(projectFile(name));
    const QString facts = QDir::toNativeSeparators(file.filePath()) + QStringLiteral("\n1 KiB, ") +
                          QLocale().toString(file.lastModified(), QLocale::ShortFormat);
    QCOMPARE(toolTipAt(0), name + QLatin1Char('\n') + facts);
    QCOMPARE(toolTipAt(1), comment + QLatin1Char('\n') + facts);

    // What the file has become, although the list was not read again.
    QFile grown(projectFile(name));
    const QPair<qint64, QString> sizes[] = {{0, QStringLiteral("0 KiB")},
                                            {1, QStringLiteral("1 KiB")},
                                            {1024, QStringLiteral("1 KiB")},
                                            {1025, QStringLiteral("2 KiB")},
                                            {1024 * 1024 - 1, QStringLiteral("1,024 KiB")},
                                            {1024 * 1024, QStringLiteral("1.0 MiB")},
                                            {5 * 1024 * 1024 + 512 * 1024, QStringLiteral("5.5 MiB")}};
    for (const auto &size : sizes) {
        QVERIFY(grown.resize(size.first));
        QVERIFY2(toolTipAt(0).contains(QLatin1Char('\n') + size.second + QStringLiteral(", ")),
                 qPrintable(toolTipAt(0)));
    }
    QVERIFY(grown.remove());
    QCOMPARE(toolTipAt(0), name + QLatin1Char('\n') + QDir::toNativeSeparators(file.filePath()));
}

void TstPanelAccessibility::tool_tip_without_comment_begins_with_the_path()
{
    const QString name = QStringLiteral("Evening show");
    list(name, QString());
    QVERIFY2(toolTipAt(1).startsWith(QDir::toNativeSeparators(projectFile(name))), qPrintable(toolTipAt(1)));
}

void TstPanelAccessibility::tool_tip_shows_markup_as_it_is()
{
    const QString comment = QStringLiteral("<img src='/etc/hosts'><b>bold</b>");
    list(QStringLiteral("Evening show"), comment);
    QTextDocument shown;
    shown.setHtml(toolTipAt(1));
    QVERIFY2(shown.toPlainText().startsWith(comment), qPrintable(shown.toPlainText()));
}

TEST_MAIN(TstPanelAccessibility)
#include "tst_panelaccessibility.moc"
